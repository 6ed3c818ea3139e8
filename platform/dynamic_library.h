// Libraries loaded while the program runs, for extensions: opened once and never unloaded.
#pragma once

#include <string>

namespace velkor {

// The suffix of a loadable library on this system.
#ifdef _WIN32
inline constexpr const char* kLibrarySuffix = ".dll";
#else
inline constexpr const char* kLibrarySuffix = ".so";
#endif

// Loads the library `file` (a path with a folder) with its symbols available to the libraries loaded
// after it; null when it cannot be loaded, with the system's reason in `reason` when given.
void* OpenLibrary(const std::string& file, std::string* reason);

// The address of the exported function `name` of `library`; null when it has none.
void* LibrarySymbol(void* library, const char* name);

// The running executable's own module, which extensions resolve the host's functions from.
void* ExecutableModule();

} // namespace velkor
