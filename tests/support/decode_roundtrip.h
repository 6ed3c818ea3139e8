// Decoding and assembling again: the side files of a decode are written into a folder and the text is
// assembled there, as velkorc does with a decoded file beside its side files.
#pragma once

#include "iff/iff_decoder.h"
#include "platform/text_file.h"
#include "tests/support/assemble.h"

#include <filesystem>

namespace velkor::test {

inline Assembled AssembleDecoded(const DecodedIff& decoded, const std::filesystem::path& folder,
                                 ScannerClass scanner = ScannerClass::Standard) {
    for (const SideFile& side : decoded.sideFiles) WriteFileAtomic(folder / side.name, side.data);
    return Assemble(decoded.text, scanner, folder);
}

} // namespace velkor::test
