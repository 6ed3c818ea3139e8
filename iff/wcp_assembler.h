// The instruction assembler: turns the functions of a WCP_ASM block into the binary function records of the
// game's script machine. It reads the block from the textual-IFF assembler's token source, reports through
// that source's error path, and writes each finished record into the chunk being assembled.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "iff/wcp_line_memo.h"
#include "iff/wcp_opcodes.h"

namespace velkor {

class IffTokenSource;
class TIffWriter;
class TIffCompiler;

class WcpAssembler {
public:
    WcpAssembler(IffTokenSource& tokens, TIffWriter& writer, const TIffCompiler& owner, WcpLineMemo& memo)
        : tokens_(tokens), writer_(writer), owner_(owner), memo_(memo) {}

    // Called after the keyword WCP_ASM: the braced block of "func" definitions. Defines the register names
    // v0 to v31 as constants, which stay defined for the rest of the text.
    void AssembleWcpAsm();

private:
    void AssembleFunction();
    // The count's parameter descriptors, written straight to the chunk.
    void WriteParameterDescriptors(std::string_view function, std::uint32_t count);
    void AssembleBlock();
    void EmitInstruction(int index, std::span<const std::uint8_t> kinds, bool semicolonRequired);
    void EmitNativeCall(std::string_view name);
    std::uint32_t ReadOperand(int kind);
    // The word of an operand's text, its constant resolved already.
    static std::uint32_t OperandWord(int kind, std::string_view text);
    // A whole line of the usual kind (an instruction or game-function call with its operands and ";"),
    // assembled as the token path would; false, having written nothing, for any other line.
    bool AssembleSimpleLine(std::string_view line);
    // The words of such a line, its indentation already passed, into `words`; false for any other line.
    bool ReadSimpleLine(std::string_view line, std::span<std::uint32_t, kWcpMaxNativeOperands + 1> words,
                        std::size_t& count) const;
    void EmitWord(std::uint32_t word);

    IffTokenSource& tokens_;         // the assembler's token reader, constants and error path
    TIffWriter& writer_;             // the writer of the chunk being assembled
    const TIffCompiler& owner_;      // the textual-IFF assembler, whose output limit holds here too
    WcpLineMemo& memo_;              // the words of lines assembled before, kept for the whole run
    std::vector<std::uint8_t> code_; // the function record being assembled
    // The words of the operands "v0" to "v31" by operand kind, as the registers' constants resolve.
    std::array<std::array<std::uint32_t, 32>, 3> registerWords_{};
};

} // namespace velkor
