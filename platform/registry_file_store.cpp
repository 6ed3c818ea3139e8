#include "platform/registry_file_store.h"

#include "platform/ini_document.h"
#include "platform/strings.h"
#include "platform/text_file.h"
#include "platform/user_folders.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

namespace fs = std::filesystem;

namespace velkor {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr std::string_view kEmptyName = "@";

void AppendEscaped(std::string& out, char c) {
    auto byte = static_cast<unsigned char>(c);
    out += '%';
    out += kHexDigits[byte >> 4];
    out += kHexDigits[byte & 0x0F];
}

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

std::string EscapeName(std::string_view name) {
    if (name.empty()) return std::string(kEmptyName);
    std::string out;
    out.reserve(name.size());
    for (size_t i = 0; i < name.size(); ++i) {
        char c = name[i];
        bool atEnd = i == 0 || i + 1 == name.size();
        if (c == '%' || IsControl(c) || c == '=' || c == '[' || c == ']' || c == ';' || (c == ' ' && atEnd) ||
            (name == kEmptyName))
            AppendEscaped(out, c);
        else
            out += c;
    }
    return out;
}

std::string EscapeValue(std::string_view value) {
    std::string out;
    out.reserve(value.size());
    for (char c : value) {
        if (c == '%' || IsControl(c))
            AppendEscaped(out, c);
        else
            out += c;
    }
    return out;
}

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// "%" followed by anything but two hexadecimal digits stays as written.
std::string Unescape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && HexValue(text[i + 1]) >= 0 &&
            HexValue(text[i + 2]) >= 0) {
            out += static_cast<char>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2]));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::string UnescapeName(std::string_view text) {
    return text == kEmptyName ? std::string() : Unescape(text);
}

std::vector<RegistryKey>::iterator FindKey(std::vector<RegistryKey>& keys, std::string_view path) {
    return std::find_if(keys.begin(), keys.end(),
                        [&](const RegistryKey& k) { return SameText(k.path, path); });
}

// The sections of the document that hold the key, as spelt in the file, first one first.
std::vector<std::string> SectionsOf(const IniDocument& doc, std::string_view path) {
    std::vector<std::string> found;
    for (auto& name : doc.Sections())
        if (SameText(NormaliseKeyPath(UnescapeName(name)), path)) found.push_back(std::move(name));
    return found;
}

// The spelling of the value name in that section of the document; empty when the section has none.
std::string EntryOf(const IniDocument& doc, std::string_view section, std::string_view name) {
    for (auto& entry : doc.Entries(section))
        if (SameText(UnescapeName(entry.key), name)) return std::move(entry.key);
    return {};
}

// Serialises read-modify-write cycles of this process.
std::mutex& WriteMutex() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

std::vector<RegistryKey> ParseRegistryStore(std::string_view text) {
    std::vector<RegistryKey> keys;
    std::unordered_map<std::string, size_t> keyIndex;            // upper-cased path -> index in keys
    std::vector<std::unordered_set<std::string>> valueNamesSeen; // per key: upper-cased value names
    for (const auto& section : IniDocument(text).Contents()) {
        std::string path = NormaliseKeyPath(UnescapeName(section.name));
        auto [it, added] = keyIndex.try_emplace(UpperCase(path), keys.size());
        if (added) {
            keys.push_back({std::move(path), {}});
            valueNamesSeen.emplace_back();
        }
        RegistryKey& key = keys[it->second];
        auto& seen = valueNamesSeen[it->second];
        for (const auto& entry : section.entries) {
            std::string name = UnescapeName(entry.key);
            if (seen.insert(UpperCase(name)).second)
                key.values.push_back({std::move(name), Unescape(entry.value)});
        }
    }
    return keys;
}

std::string FormatRegistryStore(const std::vector<RegistryKey>& keys) {
    std::string text;
    for (const auto& key : keys) {
        if (!text.empty()) text += "\r\n";
        text += '[';
        text += EscapeName(key.path);
        text += "]\r\n";
        for (const auto& value : key.values) {
            text += EscapeName(value.name);
            text += '=';
            text += IniValueText(EscapeValue(value.data));
            text += "\r\n";
        }
    }
    return text;
}

fs::path RegistryFileStore::FileName() const {
    if (!file_.empty()) return file_;
    if (const char* named = std::getenv("VELKOR_REGISTRY"); named && *named) return named;
    return UserConfigFolder() / "registry.ini";
}

std::vector<RegistryKey> RegistryFileStore::Load() const {
    try {
        return ParseRegistryStore(LoadTextFile(FileName()));
    } catch (const EInOutError&) {
        return {};
    }
}

template <typename Change>
bool RegistryFileStore::Modify(Change&& change) {
    std::lock_guard lock(WriteMutex());
    fs::path file = FileName();
    std::error_code ec;
    // An existing store that cannot be read must not be replaced by one holding only the change.
    IniDocument doc = fs::exists(file, ec) ? IniDocument(LoadTextFile(file)) : IniDocument();
    if (!change(doc)) return false;
    if (fs::path folder = file.parent_path(); !folder.empty()) fs::create_directories(folder, ec);
    WriteFileAtomic(file, doc.Text());
    return true;
}

bool RegistryFileStore::KeyExists(std::string_view key) const {
    if (NormaliseKeyPath(key).empty()) return true;
    auto keys = Load();
    return std::any_of(keys.begin(), keys.end(),
                       [&](const RegistryKey& k) { return IsKeyAtOrBelow(k.path, key); });
}

bool RegistryFileStore::OpenKey(std::string_view key, bool canCreate) {
    if (KeyExists(key)) return true;
    if (!canCreate) return false;
    Modify([&](IniDocument& doc) {
        doc.AddSection(EscapeName(NormaliseKeyPath(key)));
        return true;
    });
    return true;
}

std::vector<std::string> RegistryFileStore::ValueNames(std::string_view key) const {
    std::vector<std::string> names;
    auto keys = Load();
    if (auto it = FindKey(keys, NormaliseKeyPath(key)); it != keys.end())
        for (auto& value : it->values) names.push_back(std::move(value.name));
    return names;
}

std::optional<std::string> RegistryFileStore::ReadString(std::string_view key, std::string_view name) const {
    auto keys = Load();
    auto it = FindKey(keys, NormaliseKeyPath(key));
    if (it == keys.end()) return std::nullopt;
    for (auto& value : it->values)
        if (SameText(value.name, name)) return std::move(value.data);
    return std::nullopt;
}

void RegistryFileStore::WriteString(std::string_view key, std::string_view name, std::string_view value) {
    Modify([&](IniDocument& doc) {
        const std::string path = NormaliseKeyPath(key);
        const std::vector<std::string> sections = SectionsOf(doc, path);
        // The first section of the key is the one read first: a value set there wins over any later one.
        const std::string section = sections.empty() ? EscapeName(path) : sections.front();
        std::string entry = EntryOf(doc, section, name);
        doc.SetValue(section, entry.empty() ? EscapeName(name) : entry, EscapeValue(value));
        return true;
    });
}

bool RegistryFileStore::DeleteValue(std::string_view key, std::string_view name) {
    const std::string path = NormaliseKeyPath(key);
    return Modify([&](IniDocument& doc) {
        return doc.DeleteEntriesWhere([&](std::string_view section, std::string_view entry) {
            return SameText(UnescapeName(entry), name) &&
                   SameText(NormaliseKeyPath(UnescapeName(section)), path);
        });
    });
}

bool RegistryFileStore::DeleteKey(std::string_view key) {
    return Modify([&](IniDocument& doc) {
        bool erased = false;
        for (const std::string& section : doc.Sections())
            if (IsKeyAtOrBelow(NormaliseKeyPath(UnescapeName(section)), key))
                erased = doc.EraseSection(section) || erased;
        return erased;
    });
}

} // namespace velkor
