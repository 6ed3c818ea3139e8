// velkorc asm: assemble a textual-IFF file into the binary files it names.
#include "cli/cli.h"
#include "cli/output_files.h"
#include "compiler/scanner.h"
#include "iff/iff_compiler.h"
#include "platform/path_resolver.h"
#include "platform/text_file.h"

#include <iostream>

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
    const OutputPolicy policy = MakeOutputPolicy(options, text);
    assembler.OnMessage = [&](int level, const std::string& line) {
        if (level <= options.verbosity) PrintMessage(line);
    };
    // Each file is written as soon as its block is finished, so the files before an error are kept. A file
    // that cannot be written ends the run: the ones after it are not written either.
    assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& bytes, const std::string& fileName) {
        const std::filesystem::path path = PlaceOutputFile(fileName, options.outDir);
        policy.Check(path);
        WriteFileAtomic(path, bytes);
        std::cout << WrittenFileLine(path, bytes.size()) << std::endl;
    };

    try {
        assembler.Compile();
    } catch (const EIffCompiler&) {
        return kExitReported;
    } catch (const EInOutError& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }
    return kExitOk;
}

} // namespace velkor::cli
