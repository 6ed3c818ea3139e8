// Where velkorc puts the binary files that an assembled text names.
#pragma once

#include "cli/cli.h"
#include "platform/output_policy.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace velkor {
class TIffCompiler;
}

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

// Runs the assembler, which has its input and message sink, writing each file it finishes where
// PlaceOutputFile puts it and `policy` allows (so the files before an error are kept) and printing its
// WrittenFileLine to stdout. A file that cannot be written ends the run: the ones after it are not written
// either. Returns the exit status: kExitUsage after a failed write, kExitReported after an assembler error,
// else kExitOk.
int AssembleFiles(TIffCompiler& assembler, const Options& options, const OutputPolicy& policy);

} // namespace velkor::cli
