#include "iff/wcp_disassembler.h"

#include "iff/value_lines.h"
#include "iff/wcp_opcodes.h"
#include "platform/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

namespace velkor {

namespace {

// The assembler refuses more parameter descriptors than this.
constexpr std::uint32_t kMaxListedParameters = 255;
// Listing lines stop moving right after this many nested blocks, as the decoder's own lines do.
constexpr std::size_t kMaxIndentDepth = 32;

std::uint32_t WordAt(std::span<const std::uint8_t> data, std::size_t at) {
    return std::uint32_t{data[at]} | (std::uint32_t{data[at + 1]} << 8) |
           (std::uint32_t{data[at + 2]} << 16) | (std::uint32_t{data[at + 3]} << 24);
}

// The mnemonic a listing shows for a built-in instruction word. Where several share a word, the first in
// table order, unless another of the same operands extends its name ("op" is shown as "opc").
struct ShownMnemonic {
    std::uint32_t word;
    const WcpMnemonic* mnemonic;
};

std::vector<ShownMnemonic> MakeShownMnemonics() {
    std::vector<ShownMnemonic> shown;
    const auto words = WcpOpcodeWords();
    const auto all = WcpMnemonics();
    for (const WcpMnemonic& m : all) {
        const std::uint32_t word = words[static_cast<std::size_t>(m.index)];
        if (std::any_of(shown.begin(), shown.end(), [&](const ShownMnemonic& s) { return s.word == word; }))
            continue;
        const WcpMnemonic* pick = &m;
        for (const WcpMnemonic& other : all)
            if (other.index == m.index && other.name.size() > pick->name.size() &&
                other.name.starts_with(pick->name) && std::ranges::equal(other.Kinds(), pick->Kinds()))
                pick = &other;
        shown.push_back({word, pick});
    }
    std::sort(shown.begin(), shown.end(), [](const auto& a, const auto& b) { return a.word < b.word; });
    return shown;
}

const WcpMnemonic* ShownMnemonicOf(std::uint32_t word) {
    static const std::vector<ShownMnemonic> shown = MakeShownMnemonics();
    const auto it = std::lower_bound(shown.begin(), shown.end(), word,
                                     [](const ShownMnemonic& s, std::uint32_t w) { return s.word < w; });
    return it != shown.end() && it->word == word ? it->mnemonic : nullptr;
}

// How a function record lies in the data, as far as its header goes.
struct RecordHeader {
    std::uint32_t name = 0;
    std::uint32_t count = 0;   // the parameter count as written
    std::size_t bodyStart = 0; // offset of the first body byte
    std::size_t bodyEnd = 0;   // offset just behind the body
};

std::optional<RecordHeader> ReadHeader(std::span<const std::uint8_t> data, std::size_t at) {
    const std::size_t left = data.size() - at;
    if (left < 16 || WordAt(data, at + 4) != 0) return std::nullopt;
    RecordHeader h;
    h.name = WordAt(data, at);
    h.count = WordAt(data, at + 8);
    // A negative count is written without descriptors, the way the assembler reads one.
    const std::uint32_t descriptors = static_cast<std::int32_t>(h.count) > 0 ? h.count : 0;
    if (descriptors > kMaxListedParameters || h.count == kUnwritableInteger) return std::nullopt;
    std::size_t p = at + 12;
    if (left - 16 < std::size_t{4} * descriptors) return std::nullopt;
    for (std::uint32_t i = 0; i < descriptors; ++i, p += 4)
        if (WordAt(data, p) != kWcpParameterWord) return std::nullopt;
    const std::uint32_t size = WordAt(data, p);
    p += 4;
    if (size % 4 != 0 || size > data.size() - p) return std::nullopt;
    h.bodyStart = p;
    h.bodyEnd = p + size;
    return h;
}

// Writes one record's lines, or nothing and false when the listing cannot hold its body exactly.
class RecordWriter {
public:
    RecordWriter(std::string& out, std::string_view indent, WcpNames& names)
        : out_(out), indent_(indent), names_(names), blanks_(2 * (kMaxIndentDepth + 2), ' ') {}

    bool Write(std::span<const std::uint8_t> data, const RecordHeader& h) {
        const std::size_t start = out_.size();
        Begin(0);
        out_ += "func ";
        out_ += names_.Function(h.name);
        if (h.count != 0) {
            out_ += ' ';
            if (static_cast<std::int32_t>(h.count) > 0)
                Decimal(static_cast<std::int32_t>(h.count));
            else
                Hex(h.count);
        }
        out_ += "\r\n";
        Line(0, "{");
        std::size_t depth = 0;
        for (std::size_t p = h.bodyStart; p < h.bodyEnd;) {
            const std::uint32_t word = WordAt(data, p);
            p += 4;
            if (word == kWcpBlockBegin) {
                Line(1 + depth, "{");
                ++depth;
                continue;
            }
            if (word == kWcpBlockEnd) {
                if (depth == 0) return Undo(start);
                --depth;
                Line(1 + depth, "}");
                continue;
            }
            const std::size_t operands = (word & 0xFF) / 4;
            if (const WcpMnemonic* m = ShownMnemonicOf(word)) {
                if ((h.bodyEnd - p) / 4 < m->operandCount) return Undo(start);
                Builtin(*m, data, p, depth);
                p += 4 * std::size_t{m->operandCount};
            } else {
                if ((word & 3) != 0 || operands > static_cast<std::size_t>(kWcpMaxNativeOperands) ||
                    (h.bodyEnd - p) / 4 < operands)
                    return Undo(start);
                GameCall(word, data, p, operands, depth);
                p += 4 * operands;
            }
        }
        if (depth != 0) return Undo(start);
        Line(0, "}");
        return true;
    }

private:
    bool Undo(std::size_t start) {
        out_.resize(start);
        return false;
    }

    void Begin(std::size_t level) {
        out_ += indent_;
        out_.append(blanks_.data(), 2 * std::min(level, kMaxIndentDepth + 1));
    }
    void Line(std::size_t level, std::string_view text) {
        Begin(level);
        out_ += text;
        out_ += "\r\n";
    }

    void Decimal(std::int32_t value) {
        char buffer[16];
        const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
        Number(std::string_view(buffer, static_cast<std::size_t>(end - buffer)),
               static_cast<std::uint32_t>(value));
    }
    void Hex(std::uint32_t value) { Number("$" + IntToHex(value, 8), value); }

    // A number whose text the constant table would take for a register name is written with more leading
    // zeros until it is not.
    void Number(std::string_view text, std::uint32_t value) {
        if (ReadsAsItself(text)) {
            out_ += text;
            return;
        }
        std::string zeros = "$0";
        while (!ReadsAsItself(zeros + IntToHex(value, 8))) zeros += '0';
        out_ += zeros;
        out_ += IntToHex(value, 8);
    }

    // A register name for the registers, else a known name, else a number: a value operand reads its token
    // alone, so a negative number is written in hexadecimal. The one number the assembler reads as "no
    // number" needs a name with that very hash.
    void ValueOperand(std::uint32_t word) {
        if (word < 32) {
            out_ += 'v';
            Decimal(static_cast<std::int32_t>(word));
        } else if (const std::string* name = names_.Value(word)) {
            out_ += *name;
        } else if (word == kUnwritableInteger) {
            out_ += NameWithHash("n_", word);
        } else if (word < 0x10000) {
            Decimal(static_cast<std::int32_t>(word));
        } else {
            Hex(word);
        }
    }

    // A constant joins a leading sign with the number after it, so it is written in decimal.
    void ConstantOperand(std::uint32_t word) {
        if (const std::string* name = names_.Value(word)) {
            out_ += *name;
        } else if (word == kUnwritableInteger) {
            out_ += NameWithHash("n_", word);
        } else {
            const auto value = static_cast<std::int32_t>(word);
            if (value < 0) {
                // "-" and the number are two tokens, which the constant's reading joins.
                out_ += '-';
                const auto magnitude = static_cast<std::uint32_t>(-static_cast<std::int64_t>(value));
                Number(std::to_string(magnitude), magnitude);
            } else {
                Decimal(value);
            }
        }
    }

    void LabelOperand(std::uint32_t word) {
        out_ += '"';
        out_ += names_.Label(word);
        out_ += '"';
    }

    void Builtin(const WcpMnemonic& m, std::span<const std::uint8_t> data, std::size_t p, std::size_t depth) {
        Begin(1 + depth);
        out_ += m.name;
        const bool call = m.index == 4;
        for (std::size_t i = 0; i < m.operandCount; ++i) {
            const std::uint32_t word = WordAt(data, p + 4 * i);
            out_ += ' ';
            if (call && i == 0 && word >= 32)
                out_ += names_.Function(word);
            else if (m.kinds[i] == okLabel)
                LabelOperand(word);
            else if (m.kinds[i] == okConstant)
                ConstantOperand(word);
            else
                ValueOperand(word);
        }
        if (m.semicolonRequired) out_ += ';';
        out_ += "\r\n";
    }

    void GameCall(std::uint32_t word, std::span<const std::uint8_t> data, std::size_t p, std::size_t count,
                  std::size_t depth) {
        Begin(1 + depth);
        out_ += names_.GameFunction(word);
        for (std::size_t i = 0; i < count; ++i) {
            out_ += ' ';
            ValueOperand(WordAt(data, p + 4 * i));
        }
        out_ += ";\r\n";
    }

    std::string& out_;
    std::string_view indent_;
    WcpNames& names_;
    std::string blanks_;
};

} // namespace

const std::string* WcpNames::Known(std::uint32_t hash) const {
    if (file_)
        if (const std::string* name = file_->ByHash(hash)) return name;
    return system_ ? system_->ByHash(hash) : nullptr;
}

const std::string* WcpNames::Value(std::uint32_t hash) const {
    return Known(hash);
}

const std::string& WcpNames::Function(std::uint32_t hash) {
    auto [it, added] = functions_.try_emplace(hash);
    if (added) {
        if (const std::string* name = Known(hash))
            it->second = *name;
        else
            it->second = NameWithHash("fn_" + IntToHex(hash, 8) + "_", hash);
    }
    return it->second;
}

const std::string& WcpNames::GameFunction(std::uint32_t word) {
    const std::uint32_t key = word & 0xFFFFFF00u;
    auto [it, added] = gameFunctions_.try_emplace(key);
    if (added) {
        const std::string* name = file_ ? file_->ByInstructionWord(key) : nullptr;
        if (!name && system_) name = system_->ByInstructionWord(key);
        it->second = name ? *name : NameWithHash("wcp_" + IntToHex(key >> 8, 6) + "_", key);
    }
    return it->second;
}

const std::string& WcpNames::Label(std::uint32_t word) {
    auto [it, added] = labels_.try_emplace(word);
    if (added) {
        // The first character lies in the lowest byte.
        std::string text(4, ' ');
        for (std::size_t i = 0; i < 4; ++i) text[i] = static_cast<char>(word >> (8 * i));
        if (IsWritableId(text)) {
            it->second = std::move(text);
        } else if (const std::string* name = Known(word); name && name->size() != 4) {
            it->second = *name; // a name of four characters would be stored as its bytes
        } else if (std::optional<std::string> line = LineLabelWithHash(word)) {
            it->second = std::move(*line);
        } else {
            it->second = NameWithHash("L_" + IntToHex(word, 8) + "_", word);
        }
    }
    return it->second;
}

bool StartsWithFunctionRecord(std::span<const std::uint8_t> data) {
    return ReadHeader(data, 0).has_value();
}

std::size_t WriteFunctionRecords(std::string& out, std::string_view indent,
                                 std::span<const std::uint8_t> data, WcpNames& names) {
    std::string inner(indent);
    inner += "  ";
    RecordWriter writer(out, inner, names);
    std::size_t listed = 0;
    bool open = false;
    auto close = [&] {
        if (!open) return;
        out += indent;
        out += "}\r\n";
        open = false;
    };
    std::size_t at = 0;
    while (at < data.size()) {
        const std::optional<RecordHeader> header = ReadHeader(data, at);
        if (!header) break;
        const std::size_t before = out.size();
        const bool wasOpen = open;
        if (!open) {
            out += indent;
            out += "WCP_ASM\r\n";
            out += indent;
            out += "{\r\n";
            open = true;
        }
        if (writer.Write(data, *header)) {
            ++listed;
        } else {
            out.resize(before);
            open = wasOpen;
            close();
            WriteByteRows(out, indent, data.subspan(at, header->bodyEnd - at), "function record");
        }
        at = header->bodyEnd;
    }
    close();
    WriteByteRows(out, indent, data.subspan(at));
    return listed;
}

} // namespace velkor
