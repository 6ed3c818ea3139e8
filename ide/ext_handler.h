// Extension libraries: shared objects loaded by path and never unloaded. Each gets control once through
// its entry `extern "C" void init_ext(void* hostModule)` and reaches the IDE through the executable's
// exports extGetMainForm, extGetApplication and extGetActiveEdit (ide/velkor_extension.h).
#pragma once

#include <string>

namespace velkor {

// Loads the library and calls its init_ext with the executable's module handle. Returns an empty text
// on success, else the message to show: "Could not load library \"<path>\": not found!" when the loader
// refuses the file. `reason`, when given, receives the loader's own explanation of a refusal.
// A name without a folder is looked for beside the executable first, where the Plugins tab lists them.
std::string LoadExtension(const std::string& path, std::string* reason = nullptr);

// "Shared libraries (*.so)|*.so" for the dialogs, and the pattern the Plugins tab lists.
extern const char* const kExtensionFilter;
extern const char* const kExtensionDefaultExt;
extern const char* const kExtensionSuffix;

} // namespace velkor
