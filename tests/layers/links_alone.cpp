// Linked with one layer and those below it. With the IFF layer it also assembles a text holding an
// instruction listing, decodes the file and assembles the decoded text again, so the textual-IFF assembler,
// the instruction assembler and the decoder are known to work without the compiler.
#ifdef VELKOR_IFF_LAYER
#include "iff/iff_compiler.h"
#include "iff/iff_decoder.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::vector<std::uint8_t> Assemble(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    velkor::TIffCompiler assembler;
    assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& out, const std::string&) { bytes = out; };
    assembler.SetInputText(text);
    assembler.Compile();
    return bytes;
}

} // namespace

int main() {
    const std::vector<std::uint8_t> bytes = Assemble(
        "IFF \"a.iff\" { FORM \"MISN\" { CHUNK \"FUNC\" { WCP_ASM { func main { return v8; } } } } }");
    // FORM header 12 bytes, chunk header 8, then name hash, 0, parameter count, body size, one instruction
    // of one operand.
    if (bytes.size() != 44) {
        std::fprintf(stderr, "assembled %zu bytes, expected 44\n", bytes.size());
        return 1;
    }
    const velkor::DecodedIff decoded = velkor::DecodeIff(bytes, "a.iff", 1024);
    if (Assemble(decoded.text) != bytes) {
        std::fprintf(stderr, "the decoded text assembles into other bytes:\n%s\n", decoded.text.c_str());
        return 1;
    }
    return 0;
}
#else
int main() {
    return 0;
}
#endif
