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
struct LineToken;
class TIffCompiler;

class WcpAssembler {
public:
    WcpAssembler(IffTokenSource& tokens, TIffWriter& writer, const TIffCompiler& owner, WcpLineMemo& memo);
    ~WcpAssembler();
    WcpAssembler(const WcpAssembler&) = delete;
    WcpAssembler& operator=(const WcpAssembler&) = delete;

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
    // Assembles the fresh listing lines that come next as long as each is read whole by itself, keeping
    // what a repeated line does in the memo. True when a "}" ended the function's body; false when the
    // token path goes on.
    bool AssembleListingLines(int& depth);
    // What a line does, its words into `words` (count in `count`); Kind::Tokens for a line to be read by
    // the token path.
    WcpLineMemo::Kind ReadListingLine(std::string_view line,
                                      std::span<std::uint32_t, kWcpMaxNativeOperands + 1> words,
                                      std::size_t& count);
    // The words of a whole instruction or game-function call, its indentation already passed, into `words`:
    // Kind::Words with its ";", an open kind for an "if" or "else" whose ";" may follow on a later line,
    // Kind::Tokens for any other line.
    WcpLineMemo::Kind ReadSimpleLine(std::string_view line,
                                     std::span<std::uint32_t, kWcpMaxNativeOperands + 1> words,
                                     std::size_t& count) const;
    void EmitBytes(std::span<const std::uint8_t> bytes) {
        code_.insert(code_.end(), bytes.begin(), bytes.end());
    }
    void EmitWord(std::uint32_t word);

    IffTokenSource& tokens_;         // the assembler's token reader, constants and error path
    TIffWriter& writer_;             // the writer of the chunk being assembled
    const TIffCompiler& owner_;      // the textual-IFF assembler, whose output limit holds here too
    WcpLineMemo& memo_;              // the words of lines assembled before, kept for the whole run
    std::vector<std::uint8_t> code_; // the function record being assembled
    // The words of the operands "v0" to "v31" by operand kind, as the registers' constants resolve.
    std::array<std::array<std::uint32_t, 32>, 3> registerWords_{};
    std::vector<LineToken> lineTokens_; // room for the tokens of a listing line read by the token path
};

} // namespace velkor
