#include "ide/ext_handler.h"

#include "platform/executable_path.h"
#include "platform/path_resolver.h"

#include <dlfcn.h>

#include <filesystem>

namespace velkor {

const char* const kExtensionFilter = "Shared libraries (*.so)|*.so";
const char* const kExtensionDefaultExt = ".so";
const char* const kExtensionSuffix = ".so";

namespace {

// The file handed to the loader. It must contain a "/": a bare name would make the loader search the
// system's library folders instead of the folders a user means.
std::string LibraryFile(const std::string& path) {
    std::optional<std::filesystem::path> found;
    if (!HasFolder(path)) found = FindExisting(path, ExecutableFolder());
    if (!found) found = FindExisting(path);
    if (!found) return path;
    std::error_code ec;
    const std::filesystem::path absolute = std::filesystem::absolute(*found, ec);
    return ec ? found->string() : absolute.string();
}

} // namespace

std::string LoadExtension(const std::string& path, std::string* reason) {
    // Never closed: an extension stays for the life of the process.
    void* library = dlopen(LibraryFile(path).c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!library) {
        if (reason) {
            const char* error = dlerror();
            *reason = error ? error : "";
        }
        return "Could not load library \"" + path + "\": not found!";
    }
    using InitExt = void (*)(void*);
    auto init = reinterpret_cast<InitExt>(dlsym(library, "init_ext"));
    // Calling a missing entry would end the IDE; say what is wrong with the library instead.
    if (!init) return "Library \"" + path + "\" has no entry init_ext";
    init(dlopen(nullptr, RTLD_NOW));
    return {};
}

} // namespace velkor
