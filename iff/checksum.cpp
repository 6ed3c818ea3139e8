#include "iff/checksum.h"

#include <array>

namespace velkor {

namespace {
constexpr std::array<std::uint32_t, 256> MakeTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int k = 0; k < 8; ++k) c = (c & 1) ? (0xEDB88320u ^ (c >> 1)) : (c >> 1);
        table[i] = c;
    }
    return table;
}
constexpr auto kTable = MakeTable();
} // namespace

std::uint32_t NameHash(std::string_view text) {
    std::uint32_t crc = 0;
    for (unsigned char b : text) crc = kTable[(crc ^ b) & 0xFF] ^ (crc >> 8);
    return crc;
}

std::uint32_t LowerNameHash(std::string_view text) {
    std::uint32_t crc = 0;
    for (char c : text) {
        const auto b = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        crc = kTable[(crc ^ b) & 0xFF] ^ (crc >> 8);
    }
    return crc;
}

} // namespace velkor
