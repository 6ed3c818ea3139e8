// velkorc compile: the linked textual IFF of a unit.
#include "cli/cli.h"
#include "cli/unit_compiler.h"
#include "compiler/compiler.h"
#include "platform/text_file.h"

#include <iostream>

namespace velkor::cli {

int RunCompile(const Options& options) {
    UnitCompiler run;
    try {
        run = PrepareUnitCompiler(options, false);
        if (!options.output.empty()) run.policy.CheckNotInput(options.output);
    } catch (const EInOutError& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }
    TCompiler& c = *run.compiler;
    std::optional<std::string> linked = CompileAndLink(c);
    if (!linked) return kExitReported;

    if (options.output.empty()) {
        std::cout << *linked << std::flush;
    } else {
        try {
            WriteFileAtomic(options.output, *linked);
        } catch (const EInOutError& e) {
            PrintMessage(e.what());
            return kExitUsage;
        }
    }
    return c.ErrorCount > 0 ? kExitReported : kExitOk;
}

} // namespace velkor::cli
