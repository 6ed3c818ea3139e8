// The name checksum that keys function names, game-function instruction words, labels, the CRCS chunk and
// the assembler's constant and type tables: CRC-32 with the reflected polynomial 0xEDB88320, initial value 0
// and no final inversion. It deliberately differs from the common zip CRC-32.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace velkor {

// The checksum's table: one step over a byte is crc = table[(crc ^ byte) & 0xFF] ^ (crc >> 8).
inline constexpr std::array<std::uint32_t, 256> kNameHashTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int k = 0; k < 8; ++k) c = (c & 1) ? (0xEDB88320u ^ (c >> 1)) : (c >> 1);
        table[i] = c;
    }
    return table;
}();

std::uint32_t NameHash(std::string_view text);
// NameHash of the text with its ASCII letters in lower case, without making the lower-case copy.
std::uint32_t LowerNameHash(std::string_view text);

} // namespace velkor
