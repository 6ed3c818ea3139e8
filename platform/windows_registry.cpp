#ifdef _WIN32

#include "platform/windows_registry.h"

#include <windows.h>

#include <optional>

namespace velkor {

namespace {

// The 32-bit view first: the games' installers and the original tools were 32-bit programs, so on 64-bit
// Windows their keys lie under Wow6432Node. A key found only in the 64-bit view (written by a 64-bit
// program, such as reg.exe run by hand) is used from there.
constexpr REGSAM kViews[] = {KEY_WOW64_32KEY, KEY_WOW64_64KEY};
// Longer strings than this are not settings; refusing them keeps a damaged registry from exhausting memory.
constexpr DWORD kMaxValueSize = 1u << 20;

// An open key, closed with the object.
class KeyHandle {
public:
    KeyHandle() = default;
    ~KeyHandle() {
        if (key_) RegCloseKey(key_);
    }
    KeyHandle(const KeyHandle&) = delete;
    KeyHandle& operator=(const KeyHandle&) = delete;
    HKEY* Out() { return &key_; }
    HKEY Get() const { return key_; }

private:
    HKEY key_ = nullptr; // the open key, or null
};

// The view in which the key exists; nothing when it exists in neither.
std::optional<REGSAM> ViewOf(const std::string& path) {
    for (REGSAM view : kViews) {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_QUERY_VALUE | view, &key) ==
            ERROR_SUCCESS) {
            RegCloseKey(key);
            return view;
        }
    }
    return std::nullopt;
}

bool Open(std::string_view key, REGSAM access, KeyHandle& handle) {
    std::string path = NormaliseKeyPath(key);
    auto view = ViewOf(path);
    return view &&
           RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, access | *view, handle.Out()) == ERROR_SUCCESS;
}

bool Create(std::string_view key, KeyHandle& handle) {
    std::string path = NormaliseKeyPath(key);
    REGSAM view = ViewOf(path).value_or(kViews[0]);
    return RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE | view,
                           nullptr, handle.Out(), nullptr) == ERROR_SUCCESS;
}

} // namespace

bool WindowsRegistry::KeyExists(std::string_view key) const {
    KeyHandle handle;
    return Open(key, KEY_READ, handle);
}

bool WindowsRegistry::OpenKey(std::string_view key, bool canCreate) {
    KeyHandle handle;
    return canCreate ? Create(key, handle) : Open(key, KEY_READ, handle);
}

std::vector<std::string> WindowsRegistry::ValueNames(std::string_view key) const {
    std::vector<std::string> names;
    KeyHandle handle;
    if (!Open(key, KEY_READ, handle)) return names;
    DWORD maxName = 0;
    if (RegQueryInfoKeyA(handle.Get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         &maxName, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        return names;
    std::string buffer(static_cast<size_t>(maxName) + 1, '\0');
    for (DWORD i = 0;; ++i) {
        DWORD length = static_cast<DWORD>(buffer.size());
        LONG rc = RegEnumValueA(handle.Get(), i, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (rc != ERROR_SUCCESS) break;
        names.emplace_back(buffer.data(), length);
    }
    return names;
}

std::optional<std::string> WindowsRegistry::ReadString(std::string_view key, std::string_view name) const {
    KeyHandle handle;
    if (!Open(key, KEY_READ, handle)) return std::nullopt;
    std::string valueName(name);
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExA(handle.Get(), valueName.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
        return std::nullopt;
    if ((type != REG_SZ && type != REG_EXPAND_SZ) || size > kMaxValueSize) return std::nullopt;
    std::string data(size, '\0');
    if (RegQueryValueExA(handle.Get(), valueName.c_str(), nullptr, &type,
                         reinterpret_cast<BYTE*>(data.data()), &size) != ERROR_SUCCESS)
        return std::nullopt;
    data.resize(size < data.size() ? size : data.size());
    while (!data.empty() && data.back() == '\0') data.pop_back();
    return data;
}

void WindowsRegistry::WriteString(std::string_view key, std::string_view name, std::string_view value) {
    KeyHandle handle;
    if (!Create(key, handle)) throw ERegistry("Registry: Failed to create key " + std::string(key));
    std::string valueName(name);
    std::string data(value);
    if (RegSetValueExA(handle.Get(), valueName.c_str(), 0, REG_SZ,
                       reinterpret_cast<const BYTE*>(data.c_str()),
                       static_cast<DWORD>(data.size() + 1)) != ERROR_SUCCESS)
        throw ERegistry("Registry: Failed to set data for '" + valueName + "'");
}

bool WindowsRegistry::DeleteValue(std::string_view key, std::string_view name) {
    KeyHandle handle;
    if (!Open(key, KEY_SET_VALUE, handle)) return false;
    return RegDeleteValueA(handle.Get(), std::string(name).c_str()) == ERROR_SUCCESS;
}

bool WindowsRegistry::DeleteKey(std::string_view key) {
    std::string path = NormaliseKeyPath(key);
    auto view = ViewOf(path);
    if (!view) return false;
    {
        KeyHandle handle;
        if (!Open(path, DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE, handle))
            return false;
        RegDeleteTreeA(handle.Get(), nullptr);
    }
    return RegDeleteKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), *view, 0) == ERROR_SUCCESS;
}

} // namespace velkor

#endif
