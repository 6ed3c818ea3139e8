// The disassembler: the function records of the game's script machine back into the `WCP_ASM` listing that
// the instruction assembler turns into the very same bytes, one instruction a line.
#pragma once

#include "iff/hash_names.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velkor {

// The names a listing shows for the hashes of one decode: a name the system or the file knows, else one
// made up to have the same hash. Each is worked out once.
class WcpNames {
public:
    // Either list may be null.
    WcpNames(const KnownNames* system, const KnownNames* file) : system_(system), file_(file) {}

    // A function's name, for `func` and for the target of `call`: always an identifier.
    const std::string& Function(std::uint32_t hash);
    // The mnemonic of a game function's instruction word (only the upper 24 bits count).
    const std::string& GameFunction(std::uint32_t word);
    // The text of a label, to be quoted: 4 characters stand for themselves, any other text for its hash.
    std::string_view Label(std::uint32_t word);
    // A known name for a value operand, or null.
    const std::string* Value(std::uint32_t hash) const;

private:
    // A direct-mapped cache in front of each table: a listing names the same few hashes again and again,
    // and most value operands have no name at all.
    struct Recent {
        static constexpr std::size_t kSlots = 1024;
        std::array<std::uint32_t, kSlots> keys{};
        std::array<const std::string*, kSlots> values{};
        std::array<bool, kSlots> filled{};
    };
    template <typename Find>
    static const std::string* Cached(Recent& recent, std::uint32_t key, Find find) {
        const std::size_t slot = (key * 0x9E3779B1u) >> 22;
        if (recent.filled[slot] && recent.keys[slot] == key) return recent.values[slot];
        const std::string* value = find();
        recent.keys[slot] = key;
        recent.values[slot] = value;
        recent.filled[slot] = true;
        return value;
    }

    const std::string* Known(std::uint32_t hash) const;
    const std::string& MakeFunction(std::uint32_t hash);
    const std::string& MakeGameFunction(std::uint32_t key);
    std::string MakeLabel(std::uint32_t word) const;

    const KnownNames* system_;
    const KnownNames* file_;
    std::unordered_map<std::uint32_t, std::string> functions_, gameFunctions_;
    mutable Recent recentValues_;
    Recent recentFunctions_, recentGameFunctions_;
    // Labels are mostly used near where they stand and only a few times: the last ones, by hash slot.
    struct RecentLabel {
        std::uint32_t word = 0;
        bool filled = false;
        std::string text;
    };
    std::vector<RecentLabel> recentLabels_ = std::vector<RecentLabel>(Recent::kSlots);
    std::array<char, 4> fourCharacters_{}; // the last label that stands for itself
};

// True when `data` starts with a function record as the instruction assembler writes it: reserved word 0,
// every parameter descriptor in place, and a body size that fits the data.
bool StartsWithFunctionRecord(std::span<const std::uint8_t> data);

// Writes `data` as `WCP_ASM` blocks, each line behind `indent`. A record the listing cannot hold exactly (an
// instruction word that is neither built in nor a game function's, unbalanced blocks, a body that ends
// inside an instruction) goes out as byte rows, and so does everything from the first bytes that are no
// whole record to the end: the lines always assemble to exactly `data`. `afterRecord`, when given, is called
// after each record, when `out` ends with whole lines (a caller may then take them away). Returns the number
// of records written as listings.
std::size_t WriteFunctionRecords(std::string& out, std::string_view indent,
                                 std::span<const std::uint8_t> data, WcpNames& names,
                                 const std::function<void()>& afterRecord = {});

} // namespace velkor
