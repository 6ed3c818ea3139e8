// The system registry on Windows, under HKEY_LOCAL_MACHINE: a key is used in the 32-bit view, where the
// games' installers and the original 32-bit tools keep their keys, else in the 64-bit view; new keys go
// into the 32-bit view.
#pragma once

#ifdef _WIN32

#include "platform/registry.h"

namespace velkor {

class WindowsRegistry : public Registry {
public:
    bool KeyExists(std::string_view key) const override;
    bool OpenKey(std::string_view key, bool canCreate) override;
    std::vector<std::string> ValueNames(std::string_view key) const override;
    // REG_SZ and REG_EXPAND_SZ values (the latter unexpanded); nothing for other types.
    std::optional<std::string> ReadString(std::string_view key, std::string_view name) const override;
    void WriteString(std::string_view key, std::string_view name, std::string_view value) override;
    bool DeleteValue(std::string_view key, std::string_view name) override;
    bool DeleteKey(std::string_view key) override;
};

} // namespace velkor

#endif
