// Velkor's own registry where there is no system registry: a text file with one "[key path]" section
// per key and one "name=value" line per value, in stored order. Bytes the ini format cannot carry are
// written as "%" and two hexadecimal digits ("%" itself, control characters, and in names "=", "[", "]",
// ";" and blanks at either end); an empty value name is written "@". The file is read afresh at every
// access and replaced atomically at every change. A change rewrites only the lines it changes: comments,
// further sections of a key, duplicate values and lines that are not understood stay as they were.
#pragma once

#include "platform/registry.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// One value of a key.
struct RegistryValue {
    std::string name; // the value name as first spelt
    std::string data; // its text
};

// One key with its values in stored order.
struct RegistryKey {
    std::string path;                  // normalised key path ("Software\velkor\mru")
    std::vector<RegistryValue> values; // its values in stored order
};

// The keys of a store file in stored order, each key and each value name once (the first wins). Any
// bytes parse; what is not understood is skipped.
std::vector<RegistryKey> ParseRegistryStore(std::string_view text);
std::string FormatRegistryStore(const std::vector<RegistryKey>& keys);

class RegistryFileStore : public Registry {
public:
    // An empty `file` means the store file in force at each access: $VELKOR_REGISTRY when set, else
    // registry.ini in the user's configuration folder.
    explicit RegistryFileStore(std::filesystem::path file = {}) : file_(std::move(file)) {}

    std::filesystem::path FileName() const;

    bool KeyExists(std::string_view key) const override;
    bool OpenKey(std::string_view key, bool canCreate) override;
    std::vector<std::string> ValueNames(std::string_view key) const override;
    std::optional<std::string> ReadString(std::string_view key, std::string_view name) const override;
    void WriteString(std::string_view key, std::string_view name, std::string_view value) override;
    bool DeleteValue(std::string_view key, std::string_view name) override;
    bool DeleteKey(std::string_view key) override;

private:
    std::vector<RegistryKey> Load() const;
    // Runs `change` on the store's text and writes the text back when it returns true.
    template <typename Change>
    bool Modify(Change&& change);

    std::filesystem::path file_; // the store file; empty for the one the environment names
};

} // namespace velkor
