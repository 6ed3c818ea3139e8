// Decoding and assembling again: the side files of a decode are written into a folder and the text is
// assembled there, as velkorc does with a decoded file beside its side files.
#pragma once

#include "iff/iff_decoder.h"
#include "tests/support/assemble.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

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

// A folder of its own under the temporary folder for a fuzz target's side files, made on first use and
// removed at exit; `name` and the process id name it, so parallel runs stay apart.
inline const std::filesystem::path& FuzzSideFolder(const std::string& name) {
    static const std::filesystem::path folder = [&] {
        std::filesystem::path p =
            std::filesystem::temp_directory_path() / (name + "-" + std::to_string(getpid()));
        std::filesystem::create_directories(p);
        return p;
    }();
    // Registered once the path is made, so that it runs before the path is destroyed.
    [[maybe_unused]] static const bool removedAtExit = [] {
        return std::atexit([] {
                   std::error_code ec;
                   std::filesystem::remove_all(folder, ec);
               }) == 0;
    }();
    return folder;
}

} // namespace velkor::test
