#include "platform/ini_file.h"

#include "platform/executable_path.h"
#include "platform/numbers.h"
#include "platform/text_file.h"
#include "platform/user_folders.h"

#include <cstdlib>
#include <mutex>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace velkor {

namespace {

// Serialises read-modify-write cycles of this process, so two threads writing at once lose nothing.
std::mutex& WriteMutex() {
    static std::mutex mutex;
    return mutex;
}

bool IsWritableFolder(const fs::path& folder) {
#ifdef _WIN32
    return _waccess(folder.c_str(), 2) == 0;
#else
    return ::access(folder.c_str(), W_OK) == 0;
#endif
}

} // namespace

IniDocument TIniFile::Load() const {
    try {
        return IniDocument(LoadTextFile(path_));
    } catch (const EInOutError&) {
        return IniDocument();
    }
}

template <typename Change>
void TIniFile::Modify(Change&& change) {
    std::lock_guard lock(WriteMutex());
    std::error_code ec;
    // An existing file that cannot be read must not be replaced by one holding only the new value.
    IniDocument doc = fs::exists(path_, ec) ? IniDocument(LoadTextFile(path_)) : IniDocument();
    if (!change(doc)) return;
    if (fs::path folder = path_.parent_path(); !folder.empty()) fs::create_directories(folder, ec);
    WriteFileAtomic(path_, doc.Text());
}

std::string TIniFile::ReadString(std::string_view section, std::string_view key,
                                 std::string_view fallback) const {
    auto value = Load().Value(section, key);
    return value ? *value : std::string(fallback);
}

std::int32_t TIniFile::ReadInteger(std::string_view section, std::string_view key,
                                   std::int32_t fallback) const {
    auto value = Load().Value(section, key);
    return value ? StrToIntDef(*value, fallback) : fallback;
}

bool TIniFile::ReadBool(std::string_view section, std::string_view key, bool fallback) const {
    return ReadInteger(section, key, fallback ? 1 : 0) != 0;
}

void TIniFile::WriteString(std::string_view section, std::string_view key, std::string_view value) {
    Modify([&](IniDocument& doc) {
        doc.SetValue(section, key, value);
        return true;
    });
}

void TIniFile::WriteInteger(std::string_view section, std::string_view key, std::int32_t value) {
    WriteString(section, key, std::to_string(value));
}

void TIniFile::WriteBool(std::string_view section, std::string_view key, bool value) {
    WriteString(section, key, value ? "1" : "0");
}

std::vector<std::string> TIniFile::ReadSections() const {
    return Load().Sections();
}

std::vector<std::string> TIniFile::ReadSection(std::string_view section) const {
    std::vector<std::string> keys;
    for (auto& entry : Load().Entries(section)) keys.push_back(std::move(entry.key));
    return keys;
}

std::vector<IniEntry> TIniFile::ReadSectionValues(std::string_view section) const {
    return Load().Entries(section);
}

void TIniFile::EraseSection(std::string_view section) {
    Modify([&](IniDocument& doc) { return doc.EraseSection(section); });
}

void TIniFile::DeleteKey(std::string_view section, std::string_view key) {
    Modify([&](IniDocument& doc) { return doc.DeleteKey(section, key); });
}

bool TIniFile::SectionExists(std::string_view section) const {
    return Load().HasSection(section);
}

bool TIniFile::ValueExists(std::string_view section, std::string_view key) const {
    return Load().Value(section, key).has_value();
}

fs::path IniFilePath() {
    if (const char* explicitPath = std::getenv("VELKOR_INI"); explicitPath && *explicitPath)
        return explicitPath;
    fs::path beside = ExecutableFolder();
    if (IsWritableFolder(beside)) return beside / "velkor.ini";
    return UserConfigFolder() / "velkor.ini";
}

} // namespace velkor
