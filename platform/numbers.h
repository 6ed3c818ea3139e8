// Locale-independent number conversion and formatting: "." is the decimal and "," the thousands separator
// whatever the user's locale, as the file formats and messages require.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velkor {

// A signed 32-bit integer: optional sign, then decimal digits, or "$" (or "0x") and hexadecimal digits.
// Hexadecimal takes the full 32-bit range and wraps ("$FFFFFFFF" is -1); decimal must fit.
std::optional<std::int32_t> StrToInt(std::string_view text);
std::int32_t StrToIntDef(std::string_view text, std::int32_t fallback);

// The marker for "no number" ($0F00AAFF) that the original tools pass as StrToIntDef's fallback and keep in
// a local variable declared without a value. A text spelling this very number out therefore reads as no
// number: the textual-IFF assembler refuses it as a value, the instruction assembler hashes it as a name,
// and the decoder never writes it as one.
inline constexpr std::int32_t kNoValue = 0x0F00AAFF;

// The value of every hexadecimal digit, 0xFF for any other character. One look-up instead of range tests:
// on hexadecimal data, which mixes digits and letters at random, the tests mispredict half the time.
inline constexpr std::array<std::uint8_t, 256> kHexDigitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(0xFF);
    for (int c = '0'; c <= '9'; ++c) values[c] = static_cast<std::uint8_t>(c - '0');
    for (int c = 'a'; c <= 'f'; ++c) values[c] = static_cast<std::uint8_t>(c - 'a' + 10);
    for (int c = 'A'; c <= 'F'; ++c) values[c] = static_cast<std::uint8_t>(c - 'A' + 10);
    return values;
}();

// A floating-point number: optional blanks, sign, digits with an optional "." and fraction, an optional
// exponent. Infinities, NaNs and hexadecimal floats are refused.
std::optional<double> StrToFloat(std::string_view text);

// Formats like the pattern language of the original tool: "0" a digit always shown, "#" a digit shown
// when significant, "," thousands grouping, "." the decimal point. Rounds half away from zero on the
// value's 17-digit decimal form. Examples: ("0.0#", 2.5) -> "2.5", ("0.0#", 2) -> "2.0",
// ("#,##0", 1234567) -> "1,234,567".
std::string FormatFloat(std::string_view pattern, double value);

// "#,##0" for integers.
std::string FormatThousands(std::int64_t value);

// Upper-case hexadecimal with at least `digits` digits.
std::string IntToHex(std::uint32_t value, int digits);

// The shortest decimal text that reads back to exactly the same single-precision value.
std::string FloatToShortest(float value);

} // namespace velkor
