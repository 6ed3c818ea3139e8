// The lines the decoder writes: value lines with their labels, byte rows, and the tests that tell whether a
// text survives the trip through both scanners and the assembler unchanged.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace velkor {

// A labelled line is padded with blanks to this many characters before "//" and the label.
inline constexpr std::size_t kLabelColumn = 30;

// How float value lines look: the default lines, and the TIME/TIME decoder's.
struct FloatStyle {
    std::string_view prefix;  // the value's type word with any blanks in front of it
    std::string_view pattern; // the number format of the lossy default
};
inline constexpr FloatStyle kPlainFloat{"float", "0.0#"};
inline constexpr FloatStyle kTimeFloat{"     float", "0.00#"};

// indent + text + CR LF; with a label, the text is padded to kLabelColumn and "//" + label follows.
void WriteLabelled(std::string& out, std::string_view indent, std::string_view text, std::string_view label);

// "long $XXXXXXXX" when hex is set, else "long <decimal>".
void WriteLong(std::string& out, std::string_view indent, std::int32_t value, bool hex,
               std::string_view label);
// cstring "<text>"; the caller has checked the text with IsWritableString.
void WriteCString(std::string& out, std::string_view indent, std::string_view text, std::string_view label);
// A float in the style's pattern, or with exactFloats in the shortest text that reads back to the same bits.
// A NaN or an infinity, which no text carries, is written as "long $XXXXXXXX" of its bits. Returns false
// when the line reads back as a different float (the lossy default).
bool WriteFloat(std::string& out, std::string_view indent, float value, const FloatStyle& style,
                bool exactFloats, std::string_view label);
// Rows of up to 16 bytes: "BYTE [16] $0A $1F ...", a shorter last row with its own count. The label, if any,
// goes on the first row. Nothing for no bytes.
void WriteByteRows(std::string& out, std::string_view indent, std::span<const std::uint8_t> bytes,
                   std::string_view label = {});

// The text of a float line's value, or nothing when it has to be written as its bits. Sets `exact` to
// whether the text reads back to the same bits.
std::optional<std::string> FloatValueText(float value, std::string_view pattern, bool exactFloats,
                                          bool& exact);

// True when a quoted string with this text reads back the same through TScanner and TFastScanner and
// line-break normalisation: no double quote, no control byte, no "//" or "/*".
bool IsWritableString(std::string_view text);
// True when a 4-byte chunk id or form type can be written quoted (IsWritableString, printable ASCII only).
bool IsWritableId(std::string_view id);
// The id as the 32-bit value whose little-endian bytes it holds.
std::uint32_t IdValue(std::string_view id);

// A file-name part that is valid on every system and survives quoting: every byte that is a control byte, a
// double quote, a path separator or a character Windows refuses becomes "_".
std::string SafeFileName(std::string_view name);

} // namespace velkor
