// The game objects of textual IFF: the text is assembled in memory (no file is written) and each output
// block read back through the IFF reader, so a compiled unit, a decoded page or a hand-written text give
// their objects the way the binary files would. Names the text hashes with crc32 name their objects.
#pragma once

#include "iff/map_objects.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

struct TMapSource {
    std::vector<TMapObject> objects; // of every output block, in text order; ordinals count across blocks
    std::string fileName;            // the output block the first object stands in; empty when none
    std::vector<std::string> errors; // the assembler's messages when the text did not assemble
};

// True when the text is textual IFF: its first word, after blanks and // comments, is IFF.
bool IsTextualIff(std::string_view text);

// FILE values are looked up relative to `baseFolder`. Never throws for a text that fails to assemble:
// the objects of the blocks before the error are kept and the error is in `errors`.
TMapSource MapObjectsFromText(std::string text, const std::filesystem::path& baseFolder);

} // namespace velkor
