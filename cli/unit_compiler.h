// The compiler set up as velkorc's compile, build and symbols commands use it.
#pragma once

#include "cli/cli.h"
#include "compiler/build_text.h"
#include "platform/output_policy.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace velkor {
class TCompiler;
}

namespace velkor::cli {

struct UnitCompiler {
    std::unique_ptr<TCompiler> compiler; // ready for Compile
    std::filesystem::path folder;        // the unit's own folder, as found on disk
    OutputPolicy policy;                 // where the unit's binary files (and those of #FILE units) may go
};

// Loads the unit and prepares a compiler for it: options applied, messages to stderr, the search path
// (the unit's own folder, each -I, then "$compiler$\lib") and #FILE outputs placed as `asm` places files
// and refused where `asm` refuses them.
// Throws EInOutError when the unit cannot be read.
UnitCompiler PrepareUnitCompiler(const Options& options, bool symbolsOnly);

// Compile, Finish and Link: the linked text, or nothing when an error ended the run (the compiler has
// reported its own errors; any other failure's message is printed here).
std::optional<std::string> CompileAndLink(TCompiler& compiler);
// The same for a build: the text with the listing left out where it can be read in its place.
std::optional<TBuildText> CompileAndLinkForBuild(TCompiler& compiler);

} // namespace velkor::cli
