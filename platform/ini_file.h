// The settings file. Nothing is cached: every read opens the file afresh and every write reads, changes
// and atomically replaces it, so that the IDE, velkorc and a user's editor always agree on its contents.
// A missing or unreadable file reads as all defaults; the first write creates it (and its folder).
#pragma once

#include "platform/ini_document.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TIniFile {
public:
    explicit TIniFile(std::filesystem::path path) : path_(std::move(path)) {}

    const std::filesystem::path& FileName() const { return path_; }

    std::string ReadString(std::string_view section, std::string_view key, std::string_view fallback) const;
    // Decimal, or hexadecimal after "$" or "0x"; `fallback` when absent or not a number.
    std::int32_t ReadInteger(std::string_view section, std::string_view key, std::int32_t fallback) const;
    // "0" is false, any other integer true; `fallback` when absent or not a number.
    bool ReadBool(std::string_view section, std::string_view key, bool fallback) const;

    // Writers throw EIniFile for names or values the format cannot hold and EInOutError when the file
    // cannot be written (or exists but cannot be read, so that nothing in it is lost).
    void WriteString(std::string_view section, std::string_view key, std::string_view value);
    void WriteInteger(std::string_view section, std::string_view key, std::int32_t value);
    // Written as 1 or 0.
    void WriteBool(std::string_view section, std::string_view key, bool value);

    // Section names, the keys of a section, and its keys with their values, all in file order.
    std::vector<std::string> ReadSections() const;
    std::vector<std::string> ReadSection(std::string_view section) const;
    std::vector<IniEntry> ReadSectionValues(std::string_view section) const;

    void EraseSection(std::string_view section);
    void DeleteKey(std::string_view section, std::string_view key);
    bool SectionExists(std::string_view section) const;
    bool ValueExists(std::string_view section, std::string_view key) const;

    // Every write has already reached the file; kept for callers that flush after a batch of writes.
    void UpdateFile() {}

private:
    IniDocument Load() const;
    template <typename Change>
    void Modify(Change&& change);

    std::filesystem::path path_; // the file, opened afresh at every access
};

// The settings file "velkor.ini": $VELKOR_INI when set; otherwise beside the executable when that folder
// is writable; otherwise in the user's configuration folder ($XDG_CONFIG_HOME/velkor).
std::filesystem::path IniFilePath();

} // namespace velkor
