// A string table: the game's user-visible texts in FORM "DATA" / FORM "LANG" with an "INFO" chunk and a
// "TEXT" chunk of zero-terminated strings.
#pragma once

#include "iff/byte_stream.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TIffStringList {
public:
    // Reads the whole file and loads it as LoadFromStream does.
    void LoadFromFile(const std::filesystem::path& fileName);
    // Appends the table's strings to Lines and takes its INFO values. Strings that start in the last
    // 8 bytes of the TEXT data are not loaded. On failure (the reader's exceptions) nothing changes.
    void LoadFromStream(std::span<const std::uint8_t> bytes);
    // Writes the table straight to the file; appends one empty line to Lines per line written.
    void SaveToFile(const std::filesystem::path& fileName);
    // There is no stream form of saving: always throws.
    [[noreturn]] void SaveToStream(ByteStream& stream);

    // The first line containing the text, ignoring case; -1 when none does (always for an empty text).
    int IndexOfText(std::string_view text) const;
    // The first line equal to the text, ignoring case; -1 when none is.
    int IndexOf(std::string_view text) const;

    std::vector<std::string> Lines; // the strings, in table order
    std::string InfoText1;          // INFO's first text
    std::string InfoText2;          // INFO's second text
    std::int32_t InfoValue1 = 0;    // INFO's first number
    std::int32_t InfoValue2 = 0;    // INFO's second number
    std::int32_t InfoValue3 = 0;    // INFO's third number
};

} // namespace velkor
