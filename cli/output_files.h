// Where velkorc puts the binary files that an assembled text names.
#pragma once

#include "cli/cli.h"
#include "platform/output_policy.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace velkor::cli {

// A name without a folder goes into outDir (the current folder when empty; created when missing); a name
// with a folder is resolved relative to the current folder. Existing folders and files are matched without
// regard to letter case, as the games' sources expect.
std::filesystem::path PlaceOutputFile(std::string_view name, const std::string& outDir);

// Where the files that `source` (a unit or a text, as found on disk) names may go: the output folder, the
// source's own folder and the named folders, unless --allow-output-anywhere; never over the source itself.
OutputPolicy MakeOutputPolicy(const Options& options, const std::filesystem::path& source);

// The line velkorc prints for a written file: "** <path> ** (<size> bytes)", the size as "#,##0".
std::string WrittenFileLine(const std::filesystem::path& path, std::size_t size);

} // namespace velkor::cli
