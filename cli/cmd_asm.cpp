// velkorc asm: assemble a textual-IFF file into the binary files it names.
#include "cli/cli.h"
#include "cli/output_files.h"
#include "compiler/scanner.h"
#include "iff/iff_compiler.h"
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

    bool writeFailed = false;
    assembler.OnMessage = [&](int level, const std::string& line) {
        if (level <= options.verbosity) PrintMessage(line);
    };
    // Each file is written as soon as its block is finished, so the files before an error are kept.
    assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& bytes, const std::string& fileName) {
        try {
            std::filesystem::path path = PlaceOutputFile(fileName, options.outDir);
            WriteFileAtomic(path, bytes);
            std::cout << WrittenFileLine(path, bytes.size()) << std::endl;
        } catch (const EInOutError& e) {
            PrintMessage(e.what());
            writeFailed = true;
        }
    };

    try {
        assembler.Compile();
    } catch (const EIffCompiler&) {
        return writeFailed ? kExitUsage : kExitReported;
    } catch (const EInOutError& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }
    return writeFailed ? kExitUsage : kExitOk;
}

} // namespace velkor::cli
