// The name checksum that keys function names, game-function instruction words, labels, the CRCS chunk and
// the assembler's constant and type tables: CRC-32 with the reflected polynomial 0xEDB88320, initial value 0
// and no final inversion. It deliberately differs from the common zip CRC-32.
#pragma once

#include <cstdint>
#include <string_view>

namespace velkor {

std::uint32_t NameHash(std::string_view text);
// NameHash of the text with its ASCII letters in lower case, without making the lower-case copy.
std::uint32_t LowerNameHash(std::string_view text);

} // namespace velkor
