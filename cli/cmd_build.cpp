// velkorc build: compile a unit and assemble its linked text into the binary files it names.
#include "cli/cli.h"
#include "cli/output_files.h"
#include "cli/unit_compiler.h"
#include "compiler/compiler.h"
#include "iff/iff_compiler.h"
#include "platform/exception.h"

#include <iostream>

namespace velkor::cli {

int RunBuild(const Options& options) {
    UnitCompiler run;
    try {
        run = PrepareUnitCompiler(options, false);
    } catch (const EInOutError& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }
    TCompiler& c = *run.compiler;
    // Files of #FILE units are announced like the unit's own.
    c.OnFileWritten = [](const std::filesystem::path& path, std::size_t size) {
        std::cout << WrittenFileLine(path, size) << std::endl;
    };
    std::optional<TBuildText> linked = CompileAndLinkForBuild(c);
    if (!linked) return kExitReported;
    // A unit with errors is not assembled: its text may name files it would then overwrite half-made.
    if (c.ErrorCount > 0) return kExitReported;
    // The unit's lists are in the linked text now, and its listing beside it: the compiler's memory is
    // given back before the assembler needs its own.
    run.compiler.reset();

    TIffCompiler assembler;
    assembler.OnMessage = [&](int level, const std::string& line) {
        if (level <= options.verbosity) PrintMessage(line);
    };
    const auto feed = SetAssemblerInput(assembler, *linked, run.folder);
    try {
        return AssembleFiles(assembler, options, run.policy);
    } catch (const Exception& e) {
        PrintMessage(e.what());
        return kExitReported;
    }
}

} // namespace velkor::cli
