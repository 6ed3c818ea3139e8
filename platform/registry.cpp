#include "platform/registry.h"

#include "platform/strings.h"

#ifdef _WIN32
#include "platform/windows_registry.h"
#else
#include "platform/layered_registry.h"
#include "platform/registry_file_store.h"
#include "platform/wine_registry.h"
#endif

namespace velkor {

std::string NormaliseKeyPath(std::string_view key) {
    std::string path;
    path.reserve(key.size());
    for (size_t i = 0; i < key.size(); ++i) {
        if (key[i] != '\\') {
            path += key[i];
        } else if (!path.empty() && path.back() != '\\') {
            path += '\\';
        }
    }
    if (!path.empty() && path.back() == '\\') path.pop_back();
    return path;
}

bool IsKeyAtOrBelow(std::string_view key, std::string_view ancestor) {
    std::string k = NormaliseKeyPath(key);
    std::string a = NormaliseKeyPath(ancestor);
    if (a.empty()) return true;
    if (k.size() < a.size() || !SameText(std::string_view(k).substr(0, a.size()), a)) return false;
    return k.size() == a.size() || k[a.size()] == '\\';
}

Registry& MachineRegistry() {
#ifdef _WIN32
    static WindowsRegistry registry;
    return registry;
#else
    static RegistryFileStore own;
    static WineRegistry wine;
    static LayeredRegistry registry(own, wine);
    return registry;
#endif
}

} // namespace velkor
