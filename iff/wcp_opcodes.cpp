#include "iff/wcp_opcodes.h"

namespace velkor {

namespace {

// xorc shares its word with subv and xorv with mulv, and entries 20 and 21 are never selected: the game's
// files were made with exactly this table, so it stays as it is.
constexpr std::array<std::uint32_t, 24> kWords{
    0xE499DC0C, // 0 addc
    0x4F48E10C, // 1 addv
    0xE3877404, // 2 alloc
    0xD5C05A0C, // 3 andv
    0xF0CEE008, // 4 call
    0x101F240C, // 5 divc
    0xBBCE190C, // 6 divv
    0x69557404, // 7 goto
    0xF49C3204, // 8 label
    0x5414BB08, // 9 movc
    0xFFC58608, // 10 movv
    0xDBC32C0C, // 11 mulc
    0x7D04E60C, // 12 op, opc
    0xD6D5DB0C, // 13 opv
    0x28BF6C0C, // 14 orv
    0x75F3CE04, // 15 push
    0xE3041204, // 16 return
    0x5312750C, // 17 subc
    0xF8C3480C, // 18 subv, xorc
    0x7012110C, // 19 mulv, xorv
    0x93B8970C, // 20
    0x3869AA0C, // 21
    0xB2995D04, // 22 if
    0x6E8E7D00, // 23 else
};

constexpr std::uint8_t V = okValue, C = okConstant, L = okLabel;

constexpr std::array<WcpMnemonic, 25> kMnemonics{{
    {"addc", 0, 3, {V, V, C}, true},  {"addv", 1, 3, {V, V, V}, true},  {"alloc", 2, 1, {C}, true},
    {"andv", 3, 3, {V, V, V}, true},  {"call", 4, 2, {V, C}, true},     {"divc", 5, 3, {V, V, C}, true},
    {"divv", 6, 3, {V, V, V}, true},  {"goto", 7, 1, {L}, true},        {"label", 8, 1, {L}, true},
    {"movc", 9, 2, {V, C}, true},     {"movv", 10, 2, {V, V}, true},    {"mulc", 11, 3, {V, V, C}, true},
    {"op", 12, 3, {V, C, C}, true},   {"opc", 12, 3, {V, C, C}, true},  {"opv", 13, 3, {V, C, V}, true},
    {"orv", 14, 3, {V, V, V}, true},  {"push", 15, 1, {V}, true},       {"return", 16, 1, {V}, true},
    {"subc", 17, 3, {V, V, C}, true}, {"subv", 18, 3, {V, V, V}, true}, {"mulv", 19, 3, {V, V, V}, true},
    {"xorc", 18, 3, {V, V, C}, true}, {"xorv", 19, 3, {V, V, V}, true}, {"if", 22, 1, {V}, false},
    {"else", 23, 0, {}, false},
}};

// A name of up to eight characters packed into one word, first character lowest: the mnemonic table is
// searched once for every instruction of a listing, and comparing words is cheaper than comparing strings.
constexpr std::uint64_t PackedName(std::string_view name) {
    std::uint64_t packed = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i] >= 'A' && name[i] <= 'Z' ? static_cast<char>(name[i] - 'A' + 'a') : name[i];
        packed |= std::uint64_t{static_cast<unsigned char>(c)} << (8 * i);
    }
    return packed;
}

constexpr std::array<std::uint64_t, kMnemonics.size()> MakePackedNames() {
    std::array<std::uint64_t, kMnemonics.size()> packed{};
    for (std::size_t i = 0; i < kMnemonics.size(); ++i) packed[i] = PackedName(kMnemonics[i].name);
    return packed;
}
constexpr auto kPackedNames = MakePackedNames();

// The mnemonics by packed name in a table of open addressing, so that a look-up compares one or two words.
constexpr std::size_t kSlots = 64;
constexpr std::size_t SlotOf(std::uint64_t packed) {
    return static_cast<std::size_t>((packed * 0x9E3779B97F4A7C15u) >> 58);
}
constexpr std::array<std::int8_t, kSlots> MakeSlots() {
    std::array<std::int8_t, kSlots> slots{};
    for (auto& slot : slots) slot = -1;
    for (std::size_t i = 0; i < kMnemonics.size(); ++i) {
        std::size_t at = SlotOf(kPackedNames[i]);
        while (slots[at] >= 0) at = (at + 1) % kSlots;
        slots[at] = static_cast<std::int8_t>(i);
    }
    return slots;
}
constexpr auto kSlotTable = MakeSlots();

} // namespace

std::span<const std::uint32_t> WcpOpcodeWords() {
    return kWords;
}

std::span<const WcpMnemonic> WcpMnemonics() {
    return kMnemonics;
}

const WcpMnemonic* FindWcpMnemonicNoCase(std::string_view name) {
    constexpr std::size_t kLongest = 6; // "return"
    if (name.empty() || name.size() > kLongest) return nullptr;
    const std::uint64_t packed = PackedName(name);
    for (std::size_t at = SlotOf(packed); kSlotTable[at] >= 0; at = (at + 1) % kSlots) {
        const auto i = static_cast<std::size_t>(kSlotTable[at]);
        if (kPackedNames[i] == packed && kMnemonics[i].name.size() == name.size()) return &kMnemonics[i];
    }
    return nullptr;
}

} // namespace velkor
