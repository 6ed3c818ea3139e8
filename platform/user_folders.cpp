#include "platform/user_folders.h"

#include <cstdlib>

namespace fs = std::filesystem;

namespace velkor {

namespace {
fs::path FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return (value && *value) ? fs::path(value) : fs::path();
}
} // namespace

fs::path HomeFolder() {
#ifdef _WIN32
    if (fs::path profile = FromEnvironment("USERPROFILE"); !profile.empty()) return profile;
#endif
    return FromEnvironment("HOME");
}

fs::path UserConfigFolder() {
    fs::path base = FromEnvironment("XDG_CONFIG_HOME");
#ifdef _WIN32
    if (base.empty()) base = FromEnvironment("APPDATA");
#endif
    if (base.empty()) {
        fs::path home = HomeFolder();
        // Without a home folder the current folder is the only place left that a user can find again.
        base = home.empty() ? fs::path(".config") : home / ".config";
    }
    return base / "velkor";
}

fs::path WinePrefix() {
    if (fs::path prefix = FromEnvironment("WINEPREFIX"); !prefix.empty()) return prefix;
    fs::path home = HomeFolder();
    return home.empty() ? fs::path() : home / ".wine";
}

} // namespace velkor
