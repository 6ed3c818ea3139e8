// Textual IFF and WCP_ASM listings from hostile bytes: every input must assemble or end in EIffCompiler,
// without a crash, a hang or a runaway allocation. The first byte picks the scanner class. Each input is
// assembled twice, rows of plain numbers read straight from the text and then item by item through the
// general token path: both must give the same files, messages and error.
#include "iff/iff_compiler.h"
#include "scanner/scanner.h"
#include "tests/fuzz/fuzz_check.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct Outcome {
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files;
    std::vector<std::string> messages;
    std::string error;

    bool operator==(const Outcome&) const = default;
};

Outcome Assemble(std::string_view text, bool fastValueRows) {
    using namespace velkor;
    Outcome out;
    TIffCompiler assembler;
    assembler.FastValueRows = fastValueRows;
    // A count in a short text may ask for gigabytes; the limit's refusal is the same path at any size.
    assembler.MaxOutputSize = 64u << 20;
    assembler.OnMessage = [&](int, const std::string& line) { out.messages.push_back(line); };
    assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& bytes, const std::string& name) {
        // Only the first bytes of a large output: a short text can ask for a lot of them.
        out.files.emplace_back(
            name, std::vector<std::uint8_t>(bytes.begin(),
                                            bytes.begin() + static_cast<std::ptrdiff_t>(
                                                                std::min<std::size_t>(bytes.size(), 4096))));
        for (int shift = 0; shift < 64; shift += 8)
            out.files.back().second.push_back(static_cast<std::uint8_t>(bytes.size() >> shift));
    };
    // A folder that does not exist: FILE values find nothing relative to it.
    assembler.SetInputText(text, "/nonexistent-velkor-fuzz-folder");
    try {
        assembler.Compile();
    } catch (const EIffCompiler& e) {
        out.error = e.what();
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velkor;
    if (size == 0) return 0;
    SetScannerClass((data[0] & 1) ? ScannerClass::Fast : ScannerClass::Standard);
    std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
    velkor::fuzz::Check(Assemble(text, true) == Assemble(text, false), "the two ways to read rows differ");
    return 0;
}
