// Build Iff: the IFF view's text assembled into the binary files it names.
#pragma once

#include "platform/output_policy.h"

#include <filesystem>
#include <string>

namespace velkor {

class TPageHost;

// Saves the IFF view's text as "_velkor.txt" in the temporary folder and assembles it; every message and
// a line per written file go to the output list. `FILE` values name files relative to `baseFolder` (the
// page's folder, where a decoded file's side files lie), not to the temporary folder.
void BuildIffFromView(TPageHost& host, const std::filesystem::path& baseFolder = {});

// Where an assembled file goes: a name without a folder beside the executable, a path as the resolver
// finds it.
std::filesystem::path PlaceBuiltFile(const std::string& name);

// The settings key that lets a page's text write its files anywhere ("compiler"/"allow_output_anywhere",
// off by default).
inline constexpr const char* kAllowOutputAnywhereKey = "allow_output_anywhere";

// Where the files that a page's text names may go: below the page's folder, the executable's folder and
// the named folders, unless the settings allow output anywhere; never over `source`, the page's own file.
OutputPolicy IdeOutputPolicy(const std::filesystem::path& source);

} // namespace velkor
