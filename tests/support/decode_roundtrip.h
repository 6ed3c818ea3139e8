// Decoding and assembling again: the side files of a decode are written into a folder and the text is
// assembled there, as velkorc does with a decoded file beside its side files.
#pragma once

#include "iff/iff_decoder.h"
#include "tests/support/assemble.h"

#include <filesystem>
#include <fstream>

namespace velkor::test {

// The side files are removed again afterwards: replacing files that exist would make the file system
// flush each one, which slows tests that assemble thousands of decodes down to the disk's pace.
inline Assembled AssembleDecoded(const DecodedIff& decoded, const std::filesystem::path& folder,
                                 ScannerClass scanner = ScannerClass::Standard) {
    for (const SideFile& side : decoded.sideFiles) {
        std::ofstream out(folder / side.name, std::ios::binary);
        out.write(reinterpret_cast<const char*>(side.data.data()),
                  static_cast<std::streamsize>(side.data.size()));
    }
    Assembled result = Assemble(decoded.text, scanner, folder);
    std::error_code ec;
    for (const SideFile& side : decoded.sideFiles) std::filesystem::remove(folder / side.name, ec);
    return result;
}

} // namespace velkor::test
