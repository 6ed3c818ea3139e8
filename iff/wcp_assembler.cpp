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
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace velkor {

namespace {

// Descriptors are handed to the writer this many at a time, so that a long run never sits in memory twice.
constexpr std::size_t kDescriptorSlice = std::size_t{1} << 14;

} // namespace

WcpAssembler::WcpAssembler(IffTokenSource& tokens, TIffWriter& writer, const TIffCompiler& owner,
                           WcpLineMemo& memo)
    : tokens_(tokens), writer_(writer), owner_(owner), memo_(memo) {}

WcpAssembler::~WcpAssembler() = default;

void WcpAssembler::AssembleWcpAsm() {
    tokens_.Expect("{");
    tokens_.TakeSplice();
    memo_.BeginBlock();
    for (int r = 0; r < 32; ++r) tokens_.DefineConstant("v" + std::to_string(r), std::to_string(r));
    // An earlier constant of the same name (or name checksum) wins, so each register is looked up once.
    for (int r = 0; r < 32; ++r) {
        const std::string_view text = tokens_.ResolveConstant("v" + std::to_string(r));
        for (int kind : {okValue, okConstant, okLabel})
            registerWords_[static_cast<std::size_t>(kind)][static_cast<std::size_t>(r)] =
                kind == okConstant && !text.empty() && (text[0] == '+' || text[0] == '-')
                    ? kNoValue // a sign joins the next token: such a register takes the token path
                    : OperandWord(kind, text);
    }
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
        if (AssembleListingLines(depth)) return;
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
    const std::uint32_t word = OperandWord(kind, text);
    tokens_.NextIs(',');
    return word;
}

std::uint32_t WcpAssembler::OperandWord(int kind, std::string_view text) {
    if (kind == okLabel) {
        // The first character in the lowest byte, so that the file shows the label in text order.
        if (text.size() == 4)
            return ReadLittleEndian32(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), 4));
        return NameHash(text);
    }
    const std::int32_t value = StrToIntDef(text, kNoValue);
    return value == kNoValue ? NameHash(text) : static_cast<std::uint32_t>(value);
}

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

constexpr auto kWordCharacters = [] {
    std::array<std::uint8_t, 256> kinds{}; // 1: may start a name, 2: may continue one
    for (int c = 'a'; c <= 'z'; ++c) kinds[static_cast<std::size_t>(c)] = 3;
    for (int c = 'A'; c <= 'Z'; ++c) kinds[static_cast<std::size_t>(c)] = 3;
    kinds['_'] = 3;
    for (int c = '0'; c <= '9'; ++c) kinds[static_cast<std::size_t>(c)] = 2;
    return kinds;
}();
bool IsWordStart(char c) {
    return (kWordCharacters[static_cast<unsigned char>(c)] & 1) != 0;
}
bool IsWordChar(char c) {
    return kWordCharacters[static_cast<unsigned char>(c)] != 0;
}

// What may follow an operand or name for its token to end there as the token path reads it.
bool EndsToken(std::string_view line, std::size_t at) {
    return at == line.size() || IsBlank(line[at]) || line[at] == ',' || line[at] == ';';
}

} // namespace

namespace {

using Kind = WcpLineMemo::Kind;

// A line of these kinds starts with a name or a brace, so the token path's look for a "," or ";" behind an
// open line finds neither there.
bool StartsWithoutPunctuation(Kind kind) {
    return kind == Kind::Words || kind == Kind::OpenOperand || kind == Kind::OpenKeyword ||
           kind == Kind::BlockBegin || kind == Kind::BlockEnd;
}

constexpr std::size_t kReleaseEvery = 1024; // lines

} // namespace

// Each line does here what the token path would do with its tokens; a line the token path would refuse,
// or read past its end, is left to it.
bool WcpAssembler::AssembleListingLines(int& depth) {
    Kind open = Kind::Unknown; // the open line before, while the token path would look for its "," or ";"
    std::array<std::uint32_t, kWcpMaxNativeOperands + 1> words;
    for (std::size_t lines = 1;; ++lines) {
        const SplicedLine* line = tokens_.FreshSplicedLine();
        Kind kind = Kind::Tokens;
        std::size_t count = 0;
        const WcpLineMemo::Line* kept = nullptr;
        if (line && line->id == SplicedLine::kOnce) {
            kind = ReadListingLine(line->text, words, count);
        } else if (line) {
            WcpLineMemo::Line& known = memo_.Of(line->id);
            if (known.kind == Kind::Unknown) {
                kind = ReadListingLine(line->text, words, count);
                memo_.Keep(known, kind, std::span(words).first(count));
            } else {
                kind = known.kind;
                kept = &known;
            }
        }
        if (open != Kind::Unknown) {
            const Kind before = std::exchange(open, Kind::Unknown);
            if (!StartsWithoutPunctuation(kind)) {
                if (before == Kind::OpenOperand) tokens_.NextIs(',');
                tokens_.NextIs(';');
                continue;
            }
        }
        switch (kind) {
        case Kind::Words:
        case Kind::OpenOperand:
        case Kind::OpenKeyword:
            if (kept)
                EmitBytes(memo_.Bytes(*kept));
            else
                for (std::size_t k = 0; k < count; ++k) EmitWord(words[k]);
            tokens_.SkipSplicedLine();
            if (kind != Kind::Words) open = kind;
            break;
        case Kind::BlockBegin:
            EmitWord(kWcpBlockBegin);
            ++depth;
            tokens_.SkipSplicedLine();
            break;
        case Kind::BlockEnd:
            tokens_.SkipSplicedLine();
            if (depth == 0) return true;
            EmitWord(kWcpBlockEnd);
            --depth;
            break;
        case Kind::Blank: tokens_.PassSplicedLine(); break;
        default: return false;
        }
        if (lines % kReleaseEvery == 0) tokens_.ReleaseSpliced();
    }
}

WcpLineMemo::Kind WcpAssembler::ReadListingLine(std::string_view line,
                                                std::span<std::uint32_t, kWcpMaxNativeOperands + 1> words,
                                                std::size_t& count) {
    count = 0;
    std::size_t from = 0;
    // The indentation eight blanks at a time.
    while (from + 8 <= line.size() && std::memcmp(line.data() + from, "        ", 8) == 0) from += 8;
    while (from < line.size() && IsBlank(line[from])) ++from;
    if (from < line.size() && IsWordStart(line[from])) {
        const Kind kind = ReadSimpleLine(line.substr(from), words, count);
        if (kind != Kind::Tokens) return kind;
    }
    if (!ReadLineTokens(line, lineTokens_)) return Kind::Tokens;
    if (lineTokens_.empty()) return Kind::Blank;
    if (lineTokens_.size() == 1 && lineTokens_[0].kind == tkDelimiter) {
        if (lineTokens_[0].text == "{") return Kind::BlockBegin;
        if (lineTokens_[0].text == "}") return Kind::BlockEnd;
    }
    return Kind::Tokens;
}

// The token path reads the same tokens here: names, plain numbers and strings, blanks and "," between
// them, ";" at the end with nothing behind it.
WcpLineMemo::Kind WcpAssembler::ReadSimpleLine(std::string_view line,
                                               std::span<std::uint32_t, kWcpMaxNativeOperands + 1> out,
                                               std::size_t& outCount) const {
    std::size_t i = 0;
    const std::size_t n = line.size();
    auto skipBlanks = [&] {
        while (i < n && IsBlank(line[i])) ++i;
    };
    const std::size_t nameStart = i;
    while (i < n && IsWordChar(line[i])) ++i;
    if (!EndsToken(line, i)) return Kind::Tokens;
    const std::string_view name = line.substr(nameStart, i - nameStart);
    const WcpMnemonic* m = FindWcpMnemonicNoCase(name);
    // An "if" or "else" may end without ";": the token path then looks for it on the lines that follow.
    const bool mayStayOpen = m && !m->semicolonRequired;
    std::array<std::uint32_t, kWcpMaxNativeOperands> words{};
    std::size_t count = 0;
    bool comma = false; // a "," stands behind the last operand
    const std::size_t most = m ? m->operandCount : kWcpMaxNativeOperands;
    for (;;) {
        skipBlanks();
        if (i == n) {
            if (!mayStayOpen || count != m->operandCount || comma) return Kind::Tokens;
            break;
        }
        if (line[i] == ';') break;
        if (count == most) return Kind::Tokens;
        const int kind = m ? m->kinds[count] : static_cast<int>(okValue);
        const std::size_t start = i;
        std::string_view token;
        std::uint32_t word = 0;
        if (line[i] == '"') {
            const std::size_t close = line.find('"', i + 1);
            if (close == std::string_view::npos) return Kind::Tokens;
            token = line.substr(i + 1, close - i - 1);
            i = close + 1;
        } else if (IsWordStart(line[i])) {
            while (i < n && IsWordChar(line[i])) ++i;
            token = line.substr(start, i - start);
        } else if (line[i] >= '0' && line[i] <= '9') {
            while (i < n && line[i] >= '0' && line[i] <= '9') ++i;
            token = line.substr(start, i - start);
        } else {
            return Kind::Tokens;
        }
        if (!EndsToken(line, i)) return Kind::Tokens;
        // The registers as written by the code generator.
        if (line[start] == 'v' && token.size() >= 2 && token.size() <= 3 && token[1] >= '0' &&
            token[1] <= '9' &&
            (token.size() == 2 || (token[1] != '0' && token[2] >= '0' && token[2] <= '9')) &&
            (token.size() == 2 ? token[1] - '0' : (token[1] - '0') * 10 + (token[2] - '0')) < 32) {
            const int r = token.size() == 2 ? token[1] - '0' : (token[1] - '0') * 10 + (token[2] - '0');
            word = registerWords_[static_cast<std::size_t>(kind)][static_cast<std::size_t>(r)];
            if (kind == okConstant && word == static_cast<std::uint32_t>(kNoValue)) return Kind::Tokens;
        } else {
            const std::string_view text = tokens_.ResolveConstant(token);
            if (kind == okConstant && !text.empty() && (text[0] == '+' || text[0] == '-'))
                return Kind::Tokens;
            word = OperandWord(kind, text);
        }
        words[count++] = word;
        skipBlanks();
        comma = i < n && line[i] == ',';
        if (comma) ++i;
    }
    if (m && count != m->operandCount) return Kind::Tokens;
    Kind result = Kind::Words;
    if (i == n) {
        result = count == 0 ? Kind::OpenKeyword : Kind::OpenOperand;
    } else {
        ++i; // the ";"
        skipBlanks();
        if (i != n) return Kind::Tokens;
    }
    if (m) {
        const auto opcodes = WcpOpcodeWords();
        if (m->index < 0 || static_cast<std::size_t>(m->index) >= opcodes.size()) return Kind::Tokens;
        out[0] = opcodes[static_cast<std::size_t>(m->index)];
    } else {
        out[0] = (NameHash(name) & 0xFFFFFF00u) | static_cast<std::uint32_t>(4 * count);
    }
    std::copy_n(words.begin(), count, out.begin() + 1);
    outCount = count + 1;
    return result;
}

void WcpAssembler::EmitWord(std::uint32_t word) {
    const auto bytes = LittleEndian32(word);
    code_.insert(code_.end(), bytes.begin(), bytes.end());
}

} // namespace velkor
