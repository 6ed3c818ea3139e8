#include "iff/hash_names.h"

#include "iff/checksum.h"
#include "iff/value_lines.h"
#include "iff/wcp_opcodes.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <algorithm>
#include <array>
#include <vector>

namespace velkor {

namespace {

constexpr const auto& kCrc = kNameHashTable;

// The top bytes of the table's entries are all different, so the top byte of a checksum tells which entry
// the last step added: that is what lets a step be taken back.
constexpr std::array<std::uint8_t, 256> MakeTopByteIndex() {
    std::array<std::uint8_t, 256> index{};
    for (std::uint32_t i = 0; i < 256; ++i) index[kCrc[i] >> 24] = static_cast<std::uint8_t>(i);
    return index;
}
constexpr auto kTopByteIndex = MakeTopByteIndex();

std::uint32_t Step(std::uint32_t crc, std::uint8_t byte) {
    return kCrc[(crc ^ byte) & 0xFF] ^ (crc >> 8);
}

// The checksum before the last byte `byte` was added.
std::uint32_t StepBack(std::uint32_t crc, std::uint8_t byte) {
    const std::uint8_t i = kTopByteIndex[crc >> 24];
    return ((crc ^ kCrc[i]) << 8) | static_cast<std::uint8_t>(i ^ byte);
}

// Made-up names end in this many letters from 'h' (0x68) to 'o' (0x6F): the low three bits of each are free,
// and since the checksum starts from 0 it is linear in the bits of a text of fixed length, so the 36 free
// bits can reach every checksum (twelve letters are the fewest whose bits span all 32).
constexpr std::size_t kFreeLetters = 12;
constexpr char kBaseLetter = 'h';

// A basis of the 32-bit checksum space in terms of the free bits: entry b, when set, is a checksum with top
// bit b and the free bits (bit 3j+k: bit k of letter j) whose flipping changes the checksum by it.
struct FreeBitBasis {
    std::array<std::uint32_t, 32> sum{};
    std::array<std::uint64_t, 32> bits{};
    std::array<bool, 32> used{};
};

const FreeBitBasis& Basis() {
    static const FreeBitBasis basis = [] {
        FreeBitBasis b;
        for (std::size_t j = 0; j < kFreeLetters; ++j) {
            for (int k = 0; k < 3; ++k) {
                // A single flipped bit at letter j: the letters after it are zero bytes.
                std::uint32_t crc = Step(0, static_cast<std::uint8_t>(1u << k));
                for (std::size_t rest = j + 1; rest < kFreeLetters; ++rest) crc = Step(crc, 0);
                std::uint64_t bits = std::uint64_t{1} << (3 * j + static_cast<std::size_t>(k));
                for (int top = 31; top >= 0 && crc != 0; --top) {
                    if (!((crc >> top) & 1)) continue;
                    const auto t = static_cast<std::size_t>(top);
                    if (!b.used[t]) {
                        b.used[t] = true;
                        b.sum[t] = crc;
                        b.bits[t] = bits;
                        break;
                    }
                    crc ^= b.sum[t];
                    bits ^= b.bits[t];
                }
            }
        }
        return b;
    }();
    return basis;
}

std::string SolvedName(std::string_view prefix, std::uint32_t hash) {
    std::string name(prefix);
    name.append(kFreeLetters, kBaseLetter);
    std::uint32_t miss = NameHash(name) ^ hash;
    std::uint64_t flips = 0;
    const FreeBitBasis& basis = Basis();
    for (int top = 31; top >= 0 && miss != 0; --top) {
        const auto t = static_cast<std::size_t>(top);
        if (((miss >> top) & 1) && basis.used[t]) {
            miss ^= basis.sum[t];
            flips ^= basis.bits[t];
        }
    }
    for (std::size_t j = 0; j < kFreeLetters; ++j)
        name[prefix.size() + j] = static_cast<char>(kBaseLetter ^ ((flips >> (3 * j)) & 7));
    return name;
}

bool IsKeyword(std::string_view word) {
    return std::any_of(ScannerKeywords().begin(), ScannerKeywords().end(),
                       [&](const ScannerKeyword& k) { return SameText(k.word, word); });
}

const std::array<std::uint32_t, 32>& RegisterKeys() {
    static const std::array<std::uint32_t, 32> keys = [] {
        std::array<std::uint32_t, 32> k{};
        for (std::size_t r = 0; r < k.size(); ++r) k[r] = NameHash("v" + std::to_string(r));
        return k;
    }();
    return keys;
}

} // namespace

bool IsIdentifier(std::string_view text) {
    auto letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
    if (text.empty() || !letter(text[0])) return false;
    return std::all_of(text.begin(), text.end(), [&](char c) { return letter(c) || (c >= '0' && c <= '9'); });
}

bool ReadsAsItself(std::string_view text) {
    // Up to four bytes the checksum keeps apart from each other (and the register names are that short):
    // only a register name itself, in any case, has a register's key.
    if (text.size() <= 4) {
        if (text.size() < 2 || (text[0] != 'v' && text[0] != 'V')) return true;
        const std::string_view digits = text.substr(1);
        if (digits.size() > 1 && digits[0] == '0') return true;
        int value = 0;
        for (char c : digits) {
            if (c < '0' || c > '9') return true;
            value = 10 * value + (c - '0');
        }
        return value > 31;
    }
    const std::uint32_t key = LowerNameHash(text);
    const auto& keys = RegisterKeys();
    return std::find(keys.begin(), keys.end(), key) == keys.end();
}

void KnownNames::Add(std::string_view name) {
    // 64 characters is as long as the compiler keeps a name.
    if (name.size() > 64 || !IsIdentifier(name) || IsKeyword(name) || !ReadsAsItself(name)) return;
    const std::uint32_t hash = NameHash(name);
    byHash_.try_emplace(hash, name);
    if (!FindWcpMnemonicNoCase(name)) byInstruction_.try_emplace(hash & 0xFFFFFF00u, name);
}

void KnownNames::AddWordsOf(std::string_view text) {
    auto wordChar = [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
    };
    for (std::size_t i = 0; i < text.size();) {
        if (!wordChar(text[i])) {
            ++i;
            continue;
        }
        std::size_t end = i;
        while (end < text.size() && wordChar(text[end])) ++end;
        Add(text.substr(i, end - i));
        i = end;
    }
}

void KnownNames::AddId(std::uint32_t id, std::string_view name) {
    byId_.try_emplace(id, name);
}

const std::string* KnownNames::ByHash(std::uint32_t hash) const {
    const auto it = byHash_.find(hash);
    return it == byHash_.end() ? nullptr : &it->second;
}

const std::string* KnownNames::ByInstructionWord(std::uint32_t word) const {
    const auto it = byInstruction_.find(word & 0xFFFFFF00u);
    return it == byInstruction_.end() ? nullptr : &it->second;
}

const std::string* KnownNames::ById(std::uint32_t id) const {
    const auto it = byId_.find(id);
    return it == byId_.end() ? nullptr : &it->second;
}

namespace {

std::uint32_t BigEndianAt(std::span<const std::uint8_t> b, std::size_t at) {
    return (std::uint32_t{b[at]} << 24) | (std::uint32_t{b[at + 1]} << 16) | (std::uint32_t{b[at + 2]} << 8) |
           std::uint32_t{b[at + 3]};
}

std::string_view TextAt(std::span<const std::uint8_t> b, std::size_t at, std::size_t count) {
    return {reinterpret_cast<const char*>(b.data()) + at, count};
}

void AddNamesOfChunk(KnownNames& names, std::string_view id, std::string_view data) {
    if (id == "CRCS") {
        // A count, that many checksums, then the names in the same order.
        if (data.size() < 4) return;
        const std::uint32_t count = static_cast<unsigned char>(data[0]) |
                                    (std::uint32_t{static_cast<unsigned char>(data[1])} << 8) |
                                    (std::uint32_t{static_cast<unsigned char>(data[2])} << 16) |
                                    (std::uint32_t{static_cast<unsigned char>(data[3])} << 24);
        if (count > (data.size() - 4) / 4) return;
        std::string_view rest = data.substr(4 + std::size_t{4} * count);
        for (std::uint32_t i = 0; i < count && !rest.empty(); ++i) {
            const std::size_t end = rest.find('\0');
            names.Add(rest.substr(0, end));
            if (end == std::string_view::npos) break;
            rest.remove_prefix(end + 1);
        }
        return;
    }
    if (!data.empty() && data.find('\0') == data.size() - 1) names.Add(data.substr(0, data.size() - 1));
}

} // namespace

namespace {

// The items from `at` to `end`, the children of one form, and those of the forms inside it.
void AddNamesOfForm(KnownNames& names, std::span<const std::uint8_t> bytes, std::size_t at, std::size_t end) {
    // The ends of the open forms, innermost last; items are read at `at` until the innermost form ends.
    std::vector<std::size_t> ends{end};
    while (!ends.empty()) {
        const std::size_t formEnd = ends.back();
        if (at + 8 > formEnd) {
            at = formEnd;
            ends.pop_back();
            continue;
        }
        const std::string_view id = TextAt(bytes, at, 4);
        const std::size_t size = BigEndianAt(bytes, at + 4);
        if (id == "FORM") {
            // Form sizes count as even. A form that runs past the end of its parent (or of cut-off data) ends
            // with it, as the reader indexes only what lies inside the first form: its items are written.
            const std::size_t even = size + (size & 1);
            const bool cut = at + 12 <= formEnd && even > formEnd - at - 8;
            if (even < 4 || (even > formEnd - at - 8 && !cut)) {
                at = formEnd; // the rest of this form is no item
            } else {
                ends.push_back(cut ? formEnd : at + 8 + even);
                at += 12;
            }
        } else if (size > formEnd - at - 8) {
            at = formEnd;
        } else {
            AddNamesOfChunk(names, id, TextAt(bytes, at + 8, size));
            at += 8 + size + (size & 1);
        }
    }
}

} // namespace

// The forms the decoder writes: the first, as far as the data goes, and whole ones after it whose type can
// be written (so that what the text gives back holds the same names).
void AddNamesOfFile(KnownNames& names, std::span<const std::uint8_t> bytes) {
    for (std::size_t top = 0; bytes.size() - top >= 12 && TextAt(bytes, top, 4) == "FORM";) {
        const std::size_t size = BigEndianAt(bytes, top + 4);
        const std::size_t left = bytes.size() - top - 8;
        if (top > 0 && (size < 4 || size > left || !IsWritableId(TextAt(bytes, top + 8, 4)))) return;
        AddNamesOfForm(names, bytes, top + 12, top + 8 + std::min(std::max<std::size_t>(size, 4), left));
        top += 8 + std::min(std::max<std::size_t>(size, 4), left);
    }
}

std::string NameWithHash(std::string_view prefix, std::uint32_t hash) {
    // A register name's key among made-up names is as unlikely as any other checksum match; one more
    // character in the prefix moves every letter, should it ever happen.
    std::string head(prefix);
    for (;;) {
        std::string name = SolvedName(head, hash);
        if (ReadsAsItself(name)) return name;
        head += '_';
    }
}

std::optional<std::string> LineLabelWithHash(std::uint32_t hash) {
    // The checksums of the leading digits of lines of five and six digits ("1" to "99"; none for four).
    static const std::array<std::uint32_t, 100> kLeads = [] {
        std::array<std::uint32_t, 100> leads{};
        for (std::size_t lead = 1; lead < leads.size(); ++lead) leads[lead] = NameHash(std::to_string(lead));
        return leads;
    }();
    static constexpr std::array<char, 3> kLetters{'w', 'f', 'e'};
    // The table entries the last four digits add depend only on the checksum they lead to (the one before
    // the letter); which bytes select them depends on where they start, so each leading part costs at most
    // four steps, and mostly one, since the first byte is rarely a digit.
    std::array<std::array<std::uint8_t, 4>, kLetters.size()> index{};
    for (std::size_t l = 0; l < kLetters.size(); ++l) {
        std::uint32_t x = StepBack(hash, static_cast<std::uint8_t>(kLetters[l]));
        for (int k = 3; k >= 0; --k) {
            index[l][static_cast<std::size_t>(k)] = kTopByteIndex[x >> 24];
            x = (x ^ kCrc[index[l][static_cast<std::size_t>(k)]]) << 8;
        }
    }
    for (std::size_t lead = 0; lead < kLeads.size(); ++lead) {
        for (std::size_t l = 0; l < kLetters.size(); ++l) {
            std::uint32_t crc = kLeads[lead];
            std::array<char, 4> digits{};
            std::size_t k = 0;
            for (; k < 4; ++k) {
                const std::uint32_t b = (crc ^ index[l][k]) & 0xFF;
                if (b < '0' || b > '9') break;
                digits[k] = static_cast<char>(b);
                crc = Step(crc, static_cast<std::uint8_t>(b));
            }
            if (k < 4) continue;
            std::string label = lead == 0 ? std::string() : std::to_string(lead);
            label.append(digits.begin(), digits.end());
            label += kLetters[l];
            if (ReadsAsItself(label)) return label;
        }
    }
    return std::nullopt;
}

} // namespace velkor
