// Where velkorc puts the binary files that an assembled text names.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace velkor::cli {

// A name without a folder goes into outDir (the current folder when empty; created when missing); a name
// with a folder is resolved relative to the current folder. Existing folders and files are matched without
// regard to letter case, as the games' sources expect.
std::filesystem::path PlaceOutputFile(std::string_view name, const std::string& outDir);

// The line velkorc prints for a written file: "** <path> ** (<size> bytes)", the size as "#,##0".
std::string WrittenFileLine(const std::filesystem::path& path, std::size_t size);

} // namespace velkor::cli
