// The instruction assembler: turns the functions of a WCP_ASM block into the binary function records of the
// game's script machine, written into the chunk being assembled.
#include "codegen/wcp_opcodes.h"
#include "compiler/scanner.h"
#include "iff/checksum.h"
#include "iff/iff_compiler.h"
#include "iff/iff_writer.h"
#include "platform/numbers.h"
#include "platform/strings.h"

#include <algorithm>
#include <array>
#include <new>
#include <string>
#include <vector>

namespace velkor {

namespace {

// The integer conversion's answer for a text that is no number; such an operand is stored as its name hash,
// and so is this very number when written out.
constexpr std::int32_t kNotAnInteger = 0x0F00AAFF;

// Descriptors are handed to the writer this many at a time, so that a long run never sits in memory twice.
constexpr std::size_t kDescriptorSlice = std::size_t{1} << 14;

} // namespace

void TIffCompiler::AssembleWcpAsm() {
    Expect("{");
    for (int r = 0; r < 32; ++r) AddEntry(constants_, "v" + std::to_string(r), std::to_string(r));
    for (;;) {
        const std::string_view token = Next();
        if (token == "}" && kind_ == tkDelimiter) return;
        if (SameText(token, "func"))
            AssembleFunction();
        else
            ExpectError("<func>", token);
    }
}

void TIffCompiler::AssembleFunction() {
    const std::string name(Next()); // a copy: reading the count replaces the token
    if (!IsNameKind(kind_)) ExpectError("<name>", name);
    code_.clear();
    EmitWord(NameHash(name));
    EmitWord(0);
    std::int32_t parameters = 0;
    Peek();
    if (kind_ == tkNumber) parameters = ConvertInt(Next());
    EmitWord(static_cast<std::uint32_t>(parameters));
    writer_->Write(code_);
    code_.clear();
    if (parameters > 0) WriteParameterDescriptors(name, static_cast<std::uint32_t>(parameters));

    const size_t sizeField = code_.size();
    EmitWord(0);
    AssembleBlock();
    const auto size = static_cast<std::uint32_t>(code_.size() - sizeField - 4);
    for (int i = 0; i < 4; ++i)
        code_[sizeField + static_cast<size_t>(i)] = static_cast<std::uint8_t>(size >> (8 * i));
    writer_->Write(code_);
    code_.clear();
}

// A count is only limited by the size of the file it goes into and by the memory that holds the file.
void TIffCompiler::WriteParameterDescriptors(std::string_view function, std::uint32_t count) {
    const std::string what =
        "func " + std::string(function) + ": " + std::to_string(count) + " parameter descriptors";
    if (writer_->GetPosition() + std::uint64_t{4} * count > kMaxOutputSize)
        Error(what + " make the output file larger than 4 GB");
    std::vector<std::uint8_t> slice;
    for (std::size_t i = 0; i < std::min<std::size_t>(count, kDescriptorSlice); ++i)
        for (int b = 0; b < 4; ++b) slice.push_back(static_cast<std::uint8_t>(kWcpParameterWord >> (8 * b)));
    try {
        for (std::uint32_t left = count; left > 0;) {
            const std::uint32_t now = std::min<std::uint32_t>(left, kDescriptorSlice);
            writer_->Write(std::span<const std::uint8_t>(slice).first(std::size_t{4} * now));
            left -= now;
        }
    } catch (const std::bad_alloc&) {
        Error(what + " do not fit into memory");
    }
}

// Nested blocks are followed with a depth count rather than recursion, so no listing can exhaust the stack.
void TIffCompiler::AssembleBlock() {
    Expect("{");
    int depth = 0;
    for (;;) {
        if (NextIs('{')) {
            EmitWord(kWcpBlockBegin);
            ++depth;
            continue;
        }
        // The end of the text is no "}": it reads as a game-function call without a ";", whose operands
        // run into the limit of sixteen.
        const std::string_view token = Next();
        if (token == "}" && kind_ == tkDelimiter) {
            if (depth == 0) return;
            EmitWord(kWcpBlockEnd);
            --depth;
            continue;
        }
        if (const WcpMnemonic* m = FindWcpMnemonicNoCase(token))
            EmitInstruction(m->index, m->Kinds(), m->semicolonRequired);
        else
            EmitNativeCall(token);
    }
}

void TIffCompiler::EmitInstruction(int index, std::span<const std::uint8_t> kinds, bool semicolonRequired) {
    const auto words = WcpOpcodeWords();
    if (index < 0 || static_cast<size_t>(index) >= words.size()) Error(ERangeError().what());
    EmitWord(words[static_cast<size_t>(index)]);
    for (std::uint8_t kind : kinds) EmitWord(ReadOperand(kind));
    if (semicolonRequired)
        Expect(";");
    else
        NextIs(';');
}

void TIffCompiler::EmitNativeCall(std::string_view name) {
    std::array<std::uint32_t, kWcpMaxNativeOperands> operands{};
    std::uint32_t count = 0;
    // Without a ";" up to the end of the text, the end's empty tokens are operands too, until the limit.
    while (!NextIs(';')) {
        if (count == operands.size()) Error(ERangeError().what());
        operands[count++] = ReadOperand(okValue);
    }
    EmitWord((NameHash(name) & 0xFFFFFF00u) | (4 * count));
    for (std::uint32_t i = 0; i < count; ++i) EmitWord(operands[i]);
}

std::uint32_t TIffCompiler::ReadOperand(int kind) {
    std::string_view text = ResolveConstant(Next());
    std::string joined;
    if (kind == okConstant && !text.empty() && (text[0] == '+' || text[0] == '-')) {
        joined = text; // "- 5" is "-5"
        joined += ResolveConstant(Next());
        text = joined;
    }
    std::uint32_t word;
    if (kind == okLabel) {
        if (text.size() == 4) {
            // The first character in the lowest byte, so that the file shows the label in text order.
            word = 0;
            for (int i = 3; i >= 0; --i)
                word = (word << 8) | static_cast<std::uint8_t>(text[static_cast<size_t>(i)]);
        } else {
            word = NameHash(text);
        }
    } else {
        std::int32_t value = StrToIntDef(text, kNotAnInteger);
        word = value == kNotAnInteger ? NameHash(text) : static_cast<std::uint32_t>(value);
    }
    NextIs(',');
    return word;
}

void TIffCompiler::EmitWord(std::uint32_t word) {
    const std::uint8_t bytes[4] = {static_cast<std::uint8_t>(word), static_cast<std::uint8_t>(word >> 8),
                                   static_cast<std::uint8_t>(word >> 16),
                                   static_cast<std::uint8_t>(word >> 24)};
    code_.insert(code_.end(), bytes, bytes + 4);
}

} // namespace velkor
