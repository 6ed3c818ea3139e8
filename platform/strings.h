// Byte-string helpers with the ASCII-only case rules the file formats and the language use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

std::string UpperCase(std::string_view s);
std::string LowerCase(std::string_view s);
// Inline: the compiler compares names and keywords for nearly every token. Names are mostly written in one
// case throughout, so equal bytes are settled before any case folding.
inline bool SameText(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] == b[i]) continue;
        // Bytes that differ only in the case bit are the same letter when they are letters at all.
        const char lower = static_cast<char>(a[i] | 0x20);
        if (lower != static_cast<char>(b[i] | 0x20) || lower < 'a' || lower > 'z') return false;
    }
    return true;
}

// A quick hash of a short line for tables that compare the text on a hit anyway: its length and its first
// and last eight characters, which is where the lines of a generated listing differ.
inline std::size_t QuickLineHash(std::string_view s) {
    const std::size_t n = s.size();
    const auto* p = reinterpret_cast<const unsigned char*>(s.data());
    // Eight characters, first lowest: the compiler makes one load of it.
    auto word = [](const unsigned char* q) {
        return std::uint64_t{q[0]} | std::uint64_t{q[1]} << 8 | std::uint64_t{q[2]} << 16 |
               std::uint64_t{q[3]} << 24 | std::uint64_t{q[4]} << 32 | std::uint64_t{q[5]} << 40 |
               std::uint64_t{q[6]} << 48 | std::uint64_t{q[7]} << 56;
    };
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    if (n >= 8) {
        first = word(p);
        last = word(p + n - 8);
    } else {
        for (std::size_t i = 0; i < n; ++i) first |= std::uint64_t{p[i]} << (8 * i);
    }
    std::uint64_t h = (first * 0x9E3779B97F4A7C15u) ^ (last * 0xC2B2AE3D27D4EB4Fu) ^ n;
    h ^= h >> 32;
    h *= 0xD6E8FEB86659FD93u;
    return static_cast<std::size_t>(h ^ (h >> 29));
}

// Removes leading and trailing blanks and control characters (every byte up to and including space).
std::string_view Trim(std::string_view s);
std::string_view TrimLeft(std::string_view s);
std::string_view TrimRight(std::string_view s);

// Position of `needle` in `hay` ignoring ASCII case, or npos.
size_t FindNoCase(std::string_view hay, std::string_view needle);

// Replaces every occurrence of `from` (compared without case) by `to`; linear in the text.
std::string ReplaceAllNoCase(std::string_view text, std::string_view from, std::string_view to);

// Splits at every line break (CR LF, LF or CR); a final break does not start an empty line.
std::vector<std::string> SplitLines(std::string_view text);

// True when the bytes are well-formed UTF-8 (no overlong forms, surrogates or values past U+10FFFF).
bool IsValidUtf8(std::string_view s);

// Bytes quoted from a file into a message, made visible: every control byte and every byte above 126
// becomes "\xNN", so that no NUL, line break or terminal escape of the file reaches a message raw.
// With `keepLineBreaks` CR and LF stay as they are, for a message whose own text holds a line break.
std::string VisibleBytes(std::string_view bytes, bool keepLineBreaks = false);

// Joins lines, each followed by CR LF.
std::string JoinLinesCrLf(const std::vector<std::string>& lines);

} // namespace velkor
