#include "iff/wcp_disassembler.h"

#include "iff/value_lines.h"
#include "iff/wcp_opcodes.h"
#include "platform/byte_order.h"
#include "platform/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

namespace velkor {

namespace {

// Listing lines stop moving right after this many nested blocks, as the decoder's own lines do.
constexpr std::size_t kMaxIndentDepth = 32;

// The mnemonic a listing shows for a built-in instruction word. Where several share a word, the first in
// table order, unless another of the same operands extends its name ("op" is shown as "opc"). Looked up for
// every instruction, so the words are hashed into a small table, and each name is kept padded so that it
// can be copied in one fixed-size move.
struct ShownMnemonic {
    std::uint32_t word = 0;
    const WcpMnemonic* mnemonic = nullptr;
    std::array<char, 8> text{}; // the name, padded with blanks
};

class ShownMnemonics {
public:
    ShownMnemonics() {
        const auto words = WcpOpcodeWords();
        const auto all = WcpMnemonics();
        for (const WcpMnemonic& m : all) {
            const std::uint32_t word = words[static_cast<std::size_t>(m.index)];
            if (Find(word)) continue;
            const WcpMnemonic* pick = &m;
            for (const WcpMnemonic& other : all)
                if (other.index == m.index && other.name.size() > pick->name.size() &&
                    other.name.starts_with(pick->name) && std::ranges::equal(other.Kinds(), pick->Kinds()))
                    pick = &other;
            std::size_t slot = Slot(word);
            while (slots_[slot].mnemonic) slot = (slot + 1) % slots_.size();
            ShownMnemonic& entry = slots_[slot];
            entry.word = word;
            entry.mnemonic = pick;
            entry.text.fill(' ');
            std::copy(pick->name.begin(), pick->name.end(), entry.text.begin());
        }
    }

    const ShownMnemonic* Find(std::uint32_t word) const {
        for (std::size_t slot = Slot(word);; slot = (slot + 1) % slots_.size()) {
            const ShownMnemonic& entry = slots_[slot];
            if (!entry.mnemonic) return nullptr;
            if (entry.word == word) return &entry;
        }
    }

private:
    static std::size_t Slot(std::uint32_t word) { return (word * 0x9E3779B1u) >> 26; }

    std::array<ShownMnemonic, 64> slots_{};
};

const ShownMnemonics& Mnemonics() {
    static const ShownMnemonics mnemonics;
    return mnemonics;
}

// The little-endian word at `at`, which the caller has checked to lie inside the data: read through a
// pointer, the four byte loads are one for the compiler.
std::uint32_t WordAt(std::span<const std::uint8_t> data, std::size_t at) {
    const std::uint8_t* const b = data.data() + at;
    return std::uint32_t{b[0]} | std::uint32_t{b[1]} << 8 | std::uint32_t{b[2]} << 16 |
           std::uint32_t{b[3]} << 24;
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
    if (left < 16 || ReadLittleEndian32(data, at + 4) != 0) return std::nullopt;
    RecordHeader h;
    h.name = ReadLittleEndian32(data, at);
    h.count = ReadLittleEndian32(data, at + 8);
    // A negative count is written without descriptors, the way the assembler reads one.
    const std::uint32_t descriptors = static_cast<std::int32_t>(h.count) > 0 ? h.count : 0;
    if (h.count == static_cast<std::uint32_t>(kNoValue)) return std::nullopt;
    std::size_t p = at + 12;
    if ((left - 16) / 4 < descriptors) return std::nullopt;
    for (std::uint32_t i = 0; i < descriptors; ++i, p += 4)
        if (ReadLittleEndian32(data, p) != kWcpParameterWord) return std::nullopt;
    const std::uint32_t size = ReadLittleEndian32(data, p);
    p += 4;
    if (size % 4 != 0 || size > data.size() - p) return std::nullopt;
    h.bodyStart = p;
    h.bodyEnd = p + size;
    return h;
}

constexpr char kSpaces[64] = {' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ',
                              ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ',
                              ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ',
                              ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' '};

// Lines are put together here and handed to the text in large pieces: a listing has a line for every few
// words of its record, and appending each piece to the text on its own would cost more than the rest.
class LineBuffer {
public:
    explicit LineBuffer(std::string& out) : out_(out), buffer_(kSize) {}

    void Put(char c) {
        if (used_ == kSize) Flush();
        buffer_[used_++] = c;
    }
    void Put(std::string_view text) {
        if (text.size() > kSize - used_) return PutAfterFlush(text);
        std::memcpy(buffer_.data() + used_, text.data(), text.size());
        used_ += text.size();
    }
    // Text of at most 4 characters, kept in a buffer of 4, copied in one fixed-size move.
    void Put4(const char* text4, std::size_t length) {
        char* at = Room(4);
        std::memcpy(at, text4, 4);
        used_ += length;
    }
    void PutSpaces(std::size_t count) {
        char* at = Room(count + 64);
        for (std::size_t done = 0; done < count; done += 64) std::memcpy(at + done, kSpaces, 64);
        used_ += count;
    }
    // Room for `count` characters at the end, to be taken with Commit.
    char* Room(std::size_t count) {
        if (count > kSize - used_) Flush();
        return buffer_.data() + used_;
    }
    void Commit(std::size_t count) { used_ += count; }
    // Takes the room up to `end`, a pointer into what Room gave.
    void CommitTo(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.data()); }

    std::size_t Size() const { return out_.size() + used_; }
    void Truncate(std::size_t size) {
        Flush();
        out_.resize(size);
    }
    void Flush() {
        out_.append(buffer_.data(), used_);
        used_ = 0;
    }

private:
    void PutAfterFlush(std::string_view text) {
        Flush();
        if (text.size() > kSize) {
            out_ += text;
            return;
        }
        std::memcpy(buffer_.data(), text.data(), text.size());
        used_ = text.size();
    }

    static constexpr std::size_t kSize = std::size_t{1} << 16;
    std::string& out_;
    std::vector<char> buffer_;
    std::size_t used_ = 0;
};

// " v0" to " v31", each with the blank in front of it, in a buffer of 4.
constexpr std::array<std::array<char, 4>, 32> kRegisterNames = [] {
    std::array<std::array<char, 4>, 32> names{};
    for (std::size_t r = 0; r < names.size(); ++r) {
        names[r].fill(' ');
        names[r][1] = 'v';
        if (r < 10) {
            names[r][2] = static_cast<char>('0' + r);
        } else {
            names[r][2] = static_cast<char>('0' + r / 10);
            names[r][3] = static_cast<char>('0' + r % 10);
        }
    }
    return names;
}();

// The ends of instruction lines, each in a buffer of 4.
constexpr char kSemicolonLineEnd[4] = {';', '\r', '\n', ' '};
constexpr char kLineEnd[4] = {'\r', '\n', ' ', ' '};

// Known names are looked up only for words at least this large: a name whose hash is smaller is so unlikely
// that the lookup for every small constant would cost more than showing such a name as its number.
constexpr std::uint32_t kSmallestNamedWord = 0x10000;

// Numbers from this size on are written in hexadecimal: in a listing they are mostly name hashes (of
// objects, of names the decoder does not know), which read better so.
constexpr std::uint32_t kLargeNumber = 10'000'000;

// Writes one record's lines, or nothing and false when the listing cannot hold its body exactly.
class RecordWriter {
public:
    RecordWriter(std::string& out, std::string_view indent, WcpNames& names)
        : out_(out), indent_(indent), names_(names) {}

    bool Write(std::span<const std::uint8_t> data, const RecordHeader& h) {
        const std::size_t start = out_.Size();
        Begin(0);
        out_.Put("func ");
        out_.Put(names_.Function(h.name));
        if (h.count != 0) {
            out_.Put(' ');
            if (static_cast<std::int32_t>(h.count) > 0)
                Decimal(h.count);
            else
                Hex(h.count);
        }
        out_.Put("\r\n");
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
            if (const ShownMnemonic* shown = mnemonics_.Find(word)) {
                const WcpMnemonic& m = *shown->mnemonic;
                if ((h.bodyEnd - p) / 4 < m.operandCount) return Undo(start);
                Builtin(*shown, data, p, depth);
                p += 4 * std::size_t{m.operandCount};
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
        out_.Flush();
        return true;
    }

private:
    bool Undo(std::size_t start) {
        out_.Truncate(start);
        return false;
    }

    // The decoder indents with blanks only.
    void Begin(std::size_t level) {
        out_.PutSpaces(indent_.size() + 2 * std::min(level, kMaxIndentDepth + 1));
    }
    void Line(std::size_t level, std::string_view text) {
        Begin(level);
        out_.Put(text);
        out_.Put("\r\n");
    }

    void Decimal(std::uint32_t value) {
        char* at = out_.Room(16);
        const auto end = std::to_chars(at, at + 16, value).ptr;
        Number(at, static_cast<std::size_t>(end - at), value);
    }
    void Hex(std::uint32_t value) {
        static constexpr char kDigits[] = "0123456789ABCDEF";
        char* at = out_.Room(16);
        at[0] = '$';
        for (int i = 0; i < 8; ++i) at[1 + i] = kDigits[(value >> (28 - 4 * i)) & 0xF];
        Number(at, 9, value);
    }

    // The number's text lies in the buffer's room. One the constant table would take for a register name is
    // written with more leading zeros until it is not.
    void Number(const char* text, std::size_t length, std::uint32_t value) {
        // Short texts are told at a glance; a longer one needs its checksum, and the same numbers (name
        // hashes mostly) come again and again.
        std::uint64_t* known = nullptr;
        if (length > 4) {
            const std::uint64_t key = (std::uint64_t{value} << 1 | (text[0] == '$' ? 1u : 0u)) + 1;
            if (!readsAsItself_) readsAsItself_ = std::make_unique<std::array<std::uint64_t, 1024>>();
            known = &(*readsAsItself_)[(value * 0x9E3779B1u) >> 22];
            if (*known == key) {
                out_.Commit(length);
                return;
            }
            if (ReadsAsItself(std::string_view(text, length))) {
                *known = key;
                out_.Commit(length);
                return;
            }
        } else if (ReadsAsItself(std::string_view(text, length))) {
            out_.Commit(length);
            return;
        }
        std::string zeros = "$0";
        while (!ReadsAsItself(zeros + IntToHex(value, 8))) zeros += '0';
        out_.Put(zeros);
        out_.Put(IntToHex(value, 8));
    }

    const std::string* Named(std::uint32_t word) const {
        return word >= kSmallestNamedWord ? names_.Value(word) : nullptr;
    }

    // A register name for the registers, else a known name, else a number: a value operand reads its token
    // alone, so a negative number is written in hexadecimal. The one number the assembler reads as "no
    // number" needs a name with that very hash.
    // Each operand writer puts the blank in front of the operand too.
    void ValueOperand(std::uint32_t word) {
        if (word < 32) {
            out_.Put4(kRegisterNames[word].data(), word < 10 ? 3 : 4);
            return;
        }
        out_.Put(' ');
        if (const std::string* name = Named(word)) {
            out_.Put(*name);
        } else if (word == static_cast<std::uint32_t>(kNoValue)) {
            out_.Put(NameWithHash("n_", word));
        } else if (word < kLargeNumber) {
            Decimal(word);
        } else {
            Hex(word);
        }
    }

    // A constant joins a leading sign with the number after it, so a small negative one is written in
    // decimal too.
    void ConstantOperand(std::uint32_t word) {
        out_.Put(' ');
        if (const std::string* name = Named(word)) {
            out_.Put(*name);
        } else if (word == static_cast<std::uint32_t>(kNoValue)) {
            out_.Put(NameWithHash("n_", word));
        } else if (word >= kLargeNumber && 0u - word >= kLargeNumber) {
            Hex(word);
        } else if (static_cast<std::int32_t>(word) < 0) {
            // "-" and the number are two tokens, which the constant's reading joins.
            out_.Put('-');
            Decimal(0u - word);
        } else {
            Decimal(word);
        }
    }

    void LabelOperand(std::uint32_t word) {
        out_.Put(' ');
        out_.Put('"');
        out_.Put(names_.Label(word));
        out_.Put('"');
    }

    // Most lines are a mnemonic and registers: they are written straight into the buffer, with one look
    // at its room for the whole line; any other operand goes the usual way.
    void Builtin(const ShownMnemonic& shown, std::span<const std::uint8_t> data, std::size_t p,
                 std::size_t depth) {
        const WcpMnemonic& m = *shown.mnemonic;
        const std::size_t indent = indent_.size() + 2 * std::min(depth + 1, kMaxIndentDepth + 1);
        constexpr std::size_t kRegistersLine = 8 + 4 * 3 + 4; // mnemonic, three registers, line end
        char* at = out_.Room(indent + 64 + kRegistersLine);
        if (indent <= 32)
            std::memcpy(at, kSpaces, 32); // the usual depths, in one move
        else
            for (std::size_t done = 0; done < indent; done += 64) std::memcpy(at + done, kSpaces, 64);
        at += indent;
        std::memcpy(at, shown.text.data(), 8);
        at += m.name.size();
        const bool call = m.index == 4;
        for (std::size_t i = 0; i < m.operandCount; ++i) {
            const std::uint32_t word = WordAt(data, p + 4 * i);
            if (word < 32 && m.kinds[i] == okValue) {
                std::memcpy(at, kRegisterNames[word].data(), 4);
                at += word < 10 ? 3 : 4;
                continue;
            }
            out_.CommitTo(at);
            if (call && i == 0 && word >= 32) {
                out_.Put(' ');
                out_.Put(names_.Function(word));
            } else if (m.kinds[i] == okLabel) {
                LabelOperand(word);
            } else if (m.kinds[i] == okConstant) {
                ConstantOperand(word);
            } else {
                ValueOperand(word);
            }
            at = out_.Room(kRegistersLine);
        }
        std::memcpy(at, m.semicolonRequired ? kSemicolonLineEnd : kLineEnd, 4);
        out_.CommitTo(at + (m.semicolonRequired ? 3 : 2));
    }

    void GameCall(std::uint32_t word, std::span<const std::uint8_t> data, std::size_t p, std::size_t count,
                  std::size_t depth) {
        Begin(1 + depth);
        out_.Put(names_.GameFunction(word));
        for (std::size_t i = 0; i < count; ++i) ValueOperand(WordAt(data, p + 4 * i));
        out_.Put4(kSemicolonLineEnd, 3);
    }

    LineBuffer out_;
    // Numbers of more than four characters known to read as themselves, by a hash of their value: the
    // value shifted left, one for hexadecimal, plus one (zero marks an empty slot). Made at the first.
    std::unique_ptr<std::array<std::uint64_t, 1024>> readsAsItself_;
    const ShownMnemonics& mnemonics_ = Mnemonics();
    std::string_view indent_;
    WcpNames& names_;
};

} // namespace

const std::string* WcpNames::Known(std::uint32_t hash) const {
    if (file_)
        if (const std::string* name = file_->ByHash(hash)) return name;
    return system_ ? system_->ByHash(hash) : nullptr;
}

const std::string* WcpNames::Value(std::uint32_t hash) const {
    return Cached(recentValues_, hash, [&] { return Known(hash); });
}

const std::string& WcpNames::Function(std::uint32_t hash) {
    return *Cached(recentFunctions_, hash, [&] { return &MakeFunction(hash); });
}

const std::string& WcpNames::GameFunction(std::uint32_t word) {
    const std::uint32_t key = word & 0xFFFFFF00u;
    return *Cached(recentGameFunctions_, key, [&] { return &MakeGameFunction(key); });
}

std::string_view WcpNames::Label(std::uint32_t word) {
    // The first character lies in the lowest byte.
    for (std::size_t i = 0; i < 4; ++i) fourCharacters_[i] = static_cast<char>(word >> (8 * i));
    if (IsWritableId(std::string_view(fourCharacters_.data(), 4))) return {fourCharacters_.data(), 4};
    RecentLabel& recent = recentLabels_[(word * 0x9E3779B1u) >> 22];
    if (!recent.filled || recent.word != word) {
        recent.word = word;
        recent.filled = true;
        recent.text = MakeLabel(word);
    }
    return recent.text;
}

const std::string& WcpNames::MakeFunction(std::uint32_t hash) {
    auto [it, added] = functions_.try_emplace(hash);
    if (added) {
        if (const std::string* name = Known(hash))
            it->second = *name;
        else
            it->second = NameWithHash("fn_" + IntToHex(hash, 8) + "_", hash);
    }
    return it->second;
}

const std::string& WcpNames::MakeGameFunction(std::uint32_t key) {
    auto [it, added] = gameFunctions_.try_emplace(key);
    if (added) {
        const std::string* name = file_ ? file_->ByInstructionWord(key) : nullptr;
        if (!name && system_) name = system_->ByInstructionWord(key);
        it->second = name ? *name : NameWithHash("wcp_" + IntToHex(key >> 8, 6) + "_", key);
    }
    return it->second;
}

std::string WcpNames::MakeLabel(std::uint32_t word) const {
    if (std::optional<std::string> line = LineLabelWithHash(word)) return std::move(*line);
    // A name of four characters would be stored as its bytes.
    if (const std::string* known = Known(word); known && known->size() != 4) return *known;
    return NameWithHash("L_" + IntToHex(word, 8) + "_", word);
}

bool StartsWithFunctionRecord(std::span<const std::uint8_t> data) {
    return ReadHeader(data, 0).has_value();
}

std::size_t WriteFunctionRecords(std::string& out, std::string_view indent,
                                 std::span<const std::uint8_t> data, WcpNames& names,
                                 const std::function<void()>& afterRecord) {
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
        if (afterRecord) afterRecord();
    }
    close();
    WriteByteRows(out, indent, data.subspan(at));
    return listed;
}

} // namespace velkor
