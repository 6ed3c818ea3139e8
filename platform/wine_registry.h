// The games' installation keys as Wine keeps them: read-only, from the prefix's system.reg (machine
// keys). A 32-bit installer in a 64-bit prefix writes below "Software\Wow6432Node", so both layouts are
// searched, the plain one first. "Installed To:" holds a Windows path; it is answered as the folder it
// names in the prefix.
#pragma once

#include "platform/registry.h"
#include "platform/registry_file_store.h"

#include <optional>
#include <string_view>
#include <vector>

namespace velkor {

// The string values of `key` in a Wine registry file's text, in stored order, escapes decoded (UTF-16
// escapes become UTF-8); values of other types are left out. Nothing when the key is not in the text.
// Any bytes parse; what is not understood is skipped.
std::optional<std::vector<RegistryValue>> WineKeyValues(std::string_view regText, std::string_view key);

// True when the text holds `key` or a key below it.
bool WineKeyExists(std::string_view regText, std::string_view key);

class WineRegistry : public Registry {
public:
    // Only keys at or below this one are looked up.
    static constexpr std::string_view kServedKey = "Software\\Origin Systems";

    bool KeyExists(std::string_view key) const override;
    bool OpenKey(std::string_view key, bool canCreate) override;
    std::vector<std::string> ValueNames(std::string_view key) const override;
    std::optional<std::string> ReadString(std::string_view key, std::string_view name) const override;
    // The Wine registry is never written: these throw ERegistry.
    void WriteString(std::string_view key, std::string_view name, std::string_view value) override;
    bool DeleteValue(std::string_view key, std::string_view name) override;
    bool DeleteKey(std::string_view key) override;

private:
    std::vector<RegistryValue> Values(std::string_view key) const;
};

} // namespace velkor
