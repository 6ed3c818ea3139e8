// Textual IFF and WCP_ASM listings from hostile bytes: every input must assemble or end in EIffCompiler,
// without a crash, a hang or a runaway allocation. The first byte picks the scanner class.
#include "iff/iff_compiler.h"
#include "scanner/scanner.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velkor;
    if (size == 0) return 0;
    SetScannerClass((data[0] & 1) ? ScannerClass::Fast : ScannerClass::Standard);
    std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);

    TIffCompiler assembler;
    std::size_t total = 0;
    assembler.OnMessage = [](int, const std::string&) {};
    assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& bytes, const std::string&) {
        total += bytes.size();
    };
    // A folder that does not exist: FILE values find nothing relative to it.
    assembler.SetInputText(text, "/nonexistent-velkor-fuzz-folder");
    try {
        assembler.Compile();
    } catch (const EIffCompiler&) {
    }
    return 0;
}
