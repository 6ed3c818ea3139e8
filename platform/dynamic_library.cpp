#include "platform/dynamic_library.h"

#ifdef _WIN32
#include <windows.h>

#include <filesystem>
#else
#include <dlfcn.h>
#endif

namespace velkor {

#ifdef _WIN32

void* OpenLibrary(const std::string& file, std::string* reason) {
    HMODULE library = LoadLibraryW(std::filesystem::path(file).c_str());
    if (!library && reason) *reason = "error " + std::to_string(GetLastError());
    return reinterpret_cast<void*>(library);
}

void* LibrarySymbol(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void* ExecutableModule() {
    return reinterpret_cast<void*>(GetModuleHandleW(nullptr));
}

#else

void* OpenLibrary(const std::string& file, std::string* reason) {
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!library && reason) {
        const char* error = dlerror();
        *reason = error ? error : "";
    }
    return library;
}

void* LibrarySymbol(void* library, const char* name) {
    return dlsym(library, name);
}

void* ExecutableModule() {
    return dlopen(nullptr, RTLD_NOW);
}

#endif

} // namespace velkor
