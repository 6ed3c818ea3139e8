// The instruction words of the game's script machine. Each word's low byte is the number of operand bytes
// that follow it (4 per operand); the upper 24 bits name the instruction to the game.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace velkor {

// Operand kinds: a value (register, number or name), a constant (a separate sign token joins the number
// after it) and a label (4 characters stored as they are, anything else as its name hash).
enum : std::uint8_t { okValue = 0, okConstant = 1, okLabel = 2 };

inline constexpr std::uint32_t kWcpBlockBegin = 0x15FBBB00;    // before a nested block
inline constexpr std::uint32_t kWcpBlockEnd = 0x00827700;      // after a nested block
inline constexpr std::uint32_t kWcpParameterWord = 0xEB1003A3; // one per function parameter
inline constexpr int kWcpMaxNativeOperands = 16;               // operands of a game-function call

struct WcpMnemonic {
    std::string_view name;             // lower case, as matched after lowering the listing's text
    int index;                         // into WcpOpcodeWords()
    std::uint8_t operandCount;         // how many of `kinds` are used
    std::array<std::uint8_t, 3> kinds; // operand kinds in order
    bool semicolonRequired;            // false for if and else, which may stand without ";"

    std::span<const std::uint8_t> Kinds() const { return std::span(kinds).first(operandCount); }
};

// The opcode-word table, including two entries that no mnemonic selects.
std::span<const std::uint32_t> WcpOpcodeWords();

// The built-in instruction of that name in any case, as the listing may write it, or null for a
// game-function call.
const WcpMnemonic* FindWcpMnemonicNoCase(std::string_view name);

// Every built-in mnemonic, in table order.
std::span<const WcpMnemonic> WcpMnemonics();

} // namespace velkor
