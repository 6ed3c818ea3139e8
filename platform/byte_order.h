// Integers in a fixed byte order, put together and taken apart byte by byte, so that the host's own order
// never reaches a file: IFF sizes are big-endian, every value inside a chunk little-endian.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velkor {

inline std::uint32_t ReadBigEndian32(std::span<const std::uint8_t> bytes, std::size_t at = 0) {
    return (std::uint32_t{bytes[at]} << 24) | (std::uint32_t{bytes[at + 1]} << 16) |
           (std::uint32_t{bytes[at + 2]} << 8) | std::uint32_t{bytes[at + 3]};
}

inline std::uint32_t ReadLittleEndian32(std::span<const std::uint8_t> bytes, std::size_t at = 0) {
    return std::uint32_t{bytes[at]} | (std::uint32_t{bytes[at + 1]} << 8) |
           (std::uint32_t{bytes[at + 2]} << 16) | (std::uint32_t{bytes[at + 3]} << 24);
}

inline std::array<std::uint8_t, 4> BigEndian32(std::uint32_t value) {
    return {static_cast<std::uint8_t>(value >> 24), static_cast<std::uint8_t>(value >> 16),
            static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
}

inline std::array<std::uint8_t, 4> LittleEndian32(std::uint32_t value) {
    return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
            static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 24)};
}

// Overwrites four bytes from `at` with the value, lowest byte first.
inline void PutLittleEndian32(std::span<std::uint8_t> bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

// Appends the lowest `count` bytes of the value, lowest first.
inline void AppendLittleEndian(std::vector<std::uint8_t>& out, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

} // namespace velkor
