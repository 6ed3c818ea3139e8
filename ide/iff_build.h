// Build Iff: the IFF view's text assembled into the binary files it names.
#pragma once

#include "platform/output_policy.h"

#include <filesystem>
#include <string>

namespace velkor {

class TPageHost;

// Saves the IFF view's text as "_velkor.txt" in the temporary folder and assembles it beside the window
// (which stays responsive and can stop it); every message and a line per written file go to the output
// list. `FILE` values name files relative to `baseFolder` (the page's folder, where a decoded file's side
// files lie), not to the temporary folder; output names without a folder go to OutputFolderFor(unitFolder).
void BuildIffFromView(TPageHost& host, const std::filesystem::path& baseFolder = {},
                      const std::filesystem::path& unitFolder = {});

// The folder of a page's unit for OutputFolderFor: the folder of its file when that file exists; none for
// a page never saved or a decoded page, whose outputs must not replace the file it was decoded from.
std::filesystem::path UnitFolderOf(const std::string& pageFile);

// The folder that output names without a folder go to for a unit file: the folder the settings name
// (section "compiler", key "outputdir", named folders expanded), else the unit's own folder, else (a page
// never saved) the executable's folder.
std::filesystem::path OutputFolderFor(const std::filesystem::path& unitFolder);

// Where an assembled file goes: a name without a folder into `outputFolder`, a path as the resolver
// finds it.
std::filesystem::path PlaceBuiltFile(const std::string& name, const std::filesystem::path& outputFolder);

// The settings key that lets a page's text write its files anywhere ("compiler"/"allow_output_anywhere",
// off by default).
inline constexpr const char* kAllowOutputAnywhereKey = "allow_output_anywhere";

// Where the files that a page's text names may go: below the page's folder, the executable's folder and
// the named folders, unless the settings allow output anywhere; never over `source`, the page's own file.
OutputPolicy IdeOutputPolicy(const std::filesystem::path& source);

} // namespace velkor
