#include "iff/wcp_assembler.h"

#include "iff/checksum.h"
#include "iff/iff_compiler.h"
#include "iff/iff_token_source.h"
#include "iff/iff_writer.h"
#include "iff/wcp_opcodes.h"
#include "platform/byte_order.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <algorithm>
#include <array>
#include <new>
#include <string>
#include <vector>

namespace velkor {

namespace {

// Descriptors are handed to the writer this many at a time, so that a long run never sits in memory twice.
constexpr std::size_t kDescriptorSlice = std::size_t{1} << 14;

} // namespace

void WcpAssembler::AssembleWcpAsm() {
    tokens_.Expect("{");
    tokens_.TakeSplice();
    for (int r = 0; r < 32; ++r) tokens_.DefineConstant("v" + std::to_string(r), std::to_string(r));
    for (;;) {
        tokens_.ReleaseSpliced();
        const std::string_view token = tokens_.Next();
        if (token == "}" && tokens_.Kind() == tkDelimiter) return;
        if (SameText(token, "func"))
            AssembleFunction();
        else
            tokens_.ExpectError("<func>", token);
    }
}

void WcpAssembler::AssembleFunction() {
    const std::string name(tokens_.Next()); // a copy: reading the count replaces the token
    if (!tokens_.IsNameKind(tokens_.Kind())) tokens_.ExpectError("<name>", name);
    code_.clear();
    EmitWord(NameHash(name));
    EmitWord(0);
    std::int32_t parameters = 0;
    tokens_.Peek();
    if (tokens_.Kind() == tkNumber) parameters = tokens_.ConvertInt(tokens_.Next());
    EmitWord(static_cast<std::uint32_t>(parameters));
    writer_.Write(code_);
    code_.clear();
    if (parameters > 0) WriteParameterDescriptors(name, static_cast<std::uint32_t>(parameters));

    const size_t sizeField = code_.size();
    EmitWord(0);
    AssembleBlock();
    const auto size = static_cast<std::uint32_t>(code_.size() - sizeField - 4);
    PutLittleEndian32(code_, sizeField, size);
    writer_.Write(code_);
    code_.clear();
}

// A count is only limited by the size of the file it goes into and by the memory that holds the file.
void WcpAssembler::WriteParameterDescriptors(std::string_view function, std::uint32_t count) {
    const std::string what =
        "func " + std::string(function) + ": " + std::to_string(count) + " parameter descriptors";
    if (writer_.GetPosition() + std::uint64_t{4} * count > owner_.MaxOutputSize)
        tokens_.Error(what + " make the " + owner_.TooLargeText());
    std::vector<std::uint8_t> slice;
    const auto word = LittleEndian32(kWcpParameterWord);
    for (std::size_t i = 0; i < std::min<std::size_t>(count, kDescriptorSlice); ++i)
        slice.insert(slice.end(), word.begin(), word.end());
    try {
        for (std::uint32_t left = count; left > 0;) {
            const std::uint32_t now = std::min<std::uint32_t>(left, kDescriptorSlice);
            writer_.Write(std::span<const std::uint8_t>(slice).first(std::size_t{4} * now));
            left -= now;
        }
    } catch (const std::bad_alloc&) {
        tokens_.Error(what + " do not fit into memory");
    }
}

// Nested blocks are followed with a depth count rather than recursion, so no listing can exhaust the stack.
void WcpAssembler::AssembleBlock() {
    tokens_.Expect("{");
    int depth = 0;
    for (;;) {
        tokens_.ReleaseSpliced();
        if (tokens_.NextIs('{')) {
            EmitWord(kWcpBlockBegin);
            ++depth;
            continue;
        }
        // The end of the text is no "}": it reads as a game-function call without a ";", whose operands
        // run into the limit of sixteen.
        const std::string_view token = tokens_.Next();
        if (token == "}" && tokens_.Kind() == tkDelimiter) {
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

void WcpAssembler::EmitInstruction(int index, std::span<const std::uint8_t> kinds, bool semicolonRequired) {
    const auto words = WcpOpcodeWords();
    if (index < 0 || static_cast<size_t>(index) >= words.size()) tokens_.Error(ERangeError().what());
    EmitWord(words[static_cast<size_t>(index)]);
    for (std::uint8_t kind : kinds) EmitWord(ReadOperand(kind));
    if (semicolonRequired)
        tokens_.Expect(";");
    else
        tokens_.NextIs(';');
}

void WcpAssembler::EmitNativeCall(std::string_view name) {
    std::array<std::uint32_t, kWcpMaxNativeOperands> operands{};
    std::uint32_t count = 0;
    // Without a ";" up to the end of the text, the end's empty tokens are operands too, until the limit.
    while (!tokens_.NextIs(';')) {
        if (count == operands.size()) tokens_.Error(ERangeError().what());
        operands[count++] = ReadOperand(okValue);
    }
    EmitWord((NameHash(name) & 0xFFFFFF00u) | (4 * count));
    for (std::uint32_t i = 0; i < count; ++i) EmitWord(operands[i]);
}

std::uint32_t WcpAssembler::ReadOperand(int kind) {
    std::string_view text = tokens_.ResolveConstant(tokens_.Next());
    std::string joined;
    if (kind == okConstant && !text.empty() && (text[0] == '+' || text[0] == '-')) {
        joined = text; // "- 5" is "-5"
        joined += tokens_.ResolveConstant(tokens_.Next());
        text = joined;
    }
    std::uint32_t word;
    if (kind == okLabel) {
        if (text.size() == 4) {
            // The first character in the lowest byte, so that the file shows the label in text order.
            word = ReadLittleEndian32(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), 4));
        } else {
            word = NameHash(text);
        }
    } else {
        std::int32_t value = StrToIntDef(text, kNoValue);
        word = value == kNoValue ? NameHash(text) : static_cast<std::uint32_t>(value);
    }
    tokens_.NextIs(',');
    return word;
}

void WcpAssembler::EmitWord(std::uint32_t word) {
    const auto bytes = LittleEndian32(word);
    code_.insert(code_.end(), bytes.begin(), bytes.end());
}

} // namespace velkor
