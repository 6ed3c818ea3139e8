// velkorc asm: assemble a textual-IFF file into the binary files it names.
#include "cli/cli.h"
#include "cli/output_files.h"
#include "iff/iff_compiler.h"
#include "platform/path_resolver.h"
#include "scanner/scanner.h"

namespace velkor::cli {

int RunAsm(const Options& options) {
    SetScannerClass(options.fastScanner ? ScannerClass::Fast : ScannerClass::Standard);
    TIffCompiler assembler;
    try {
        assembler.SetInputFile(options.files.front());
    } catch (const EIffCompiler& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }

    const std::filesystem::path text = FindExisting(options.files.front()).value_or(options.files.front());
    assembler.OnMessage = [&](int level, const std::string& line) {
        if (level <= options.verbosity) PrintMessage(line);
    };
    return AssembleFiles(assembler, options, MakeOutputPolicy(options, text));
}

} // namespace velkor::cli
