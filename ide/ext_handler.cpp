#include "ide/ext_handler.h"

#include <dlfcn.h>

namespace velkor {

const char* const kExtensionFilter = "Shared libraries (*.so)|*.so";
const char* const kExtensionDefaultExt = ".so";
const char* const kExtensionSuffix = ".so";

std::string LoadExtension(const std::string& path) {
    // Never closed: an extension stays for the life of the process.
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!library) return "Could not load library \"" + path + "\": not found!";
    using InitExt = void (*)(void*);
    auto init = reinterpret_cast<InitExt>(dlsym(library, "init_ext"));
    // Calling a missing entry would end the IDE; say what is wrong with the library instead.
    if (!init) return "Library \"" + path + "\" has no entry init_ext";
    init(dlopen(nullptr, RTLD_NOW));
    return {};
}

} // namespace velkor
