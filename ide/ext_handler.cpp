#include "ide/ext_handler.h"

#include "platform/dynamic_library.h"
#include "platform/executable_path.h"
#include "platform/path_resolver.h"

#include <filesystem>

namespace velkor {

#ifdef _WIN32
const char* const kExtensionFilter = "Libraries (*.dll)|*.dll";
#else
const char* const kExtensionFilter = "Shared libraries (*.so)|*.so";
#endif
const char* const kExtensionDefaultExt = kLibrarySuffix;
const char* const kExtensionSuffix = kLibrarySuffix;

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
    void* library = OpenLibrary(LibraryFile(path), reason);
    if (!library) return "Could not load library \"" + path + "\": not found!";
    using InitExt = void (*)(void*);
    auto init = reinterpret_cast<InitExt>(LibrarySymbol(library, "init_ext"));
    // Calling a missing entry would end the IDE; say what is wrong with the library instead.
    if (!init) return "Library \"" + path + "\" has no entry init_ext";
    init(ExecutableModule());
    return {};
}

} // namespace velkor
