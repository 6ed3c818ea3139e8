// Where the running program lives: "$compiler$" names this folder, the library units and the settings
// file sit in it.
#pragma once

#include <string>
#include <string_view>

namespace velkor {

// The folder of the running executable, always ending in the native separator ("/" here, "\" on
// Windows), so that a file name can be appended directly. Falls back to the current folder when the
// system cannot tell.
std::string ExecutableFolder();

// Makes ExecutableFolder() answer `folder` (a separator is appended when missing) until called again;
// an empty folder restores the real answer. For tests only.
void SetExecutableFolderForTesting(std::string_view folder);

} // namespace velkor
