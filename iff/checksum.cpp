#include "iff/checksum.h"

namespace velkor {

std::uint32_t NameHash(std::string_view text) {
    std::uint32_t crc = 0;
    for (unsigned char b : text) crc = kNameHashTable[(crc ^ b) & 0xFF] ^ (crc >> 8);
    return crc;
}

std::uint32_t LowerNameHash(std::string_view text) {
    std::uint32_t crc = 0;
    for (char c : text) {
        const auto b = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        crc = kNameHashTable[(crc ^ b) & 0xFF] ^ (crc >> 8);
    }
    return crc;
}

} // namespace velkor
