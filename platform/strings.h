// Byte-string helpers with the ASCII-only case rules the file formats and the language use.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkor {

std::string UpperCase(std::string_view s);
std::string LowerCase(std::string_view s);
bool SameText(std::string_view a, std::string_view b);

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
