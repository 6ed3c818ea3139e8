// Build Iff: the IFF view's text assembled into the binary files it names.
#pragma once

#include <filesystem>
#include <string>

namespace velkor {

class TPageHost;

// Saves the IFF view's text as "_velkor.txt" in the temporary folder and assembles it; every message and
// a line per written file go to the output list.
void BuildIffFromView(TPageHost& host);

// Where an assembled file goes: a name without a folder beside the executable, a path as the resolver
// finds it.
std::filesystem::path PlaceBuiltFile(const std::string& name);

} // namespace velkor
