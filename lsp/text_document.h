// An open document as the editor holds it: its text, changed by full or ranged edits, and the mapping
// between the editor's positions (line and character, counted in UTF-16 code units or in UTF-8 bytes, as
// agreed at initialisation) and byte offsets into the text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velkor::lsp {

struct TPosition {
    int Line = 0;      // from 0
    int Character = 0; // in the agreed units
};

class TTextDocument {
public:
    TTextDocument(std::string text, bool utf16);

    const std::string& Text() const { return text_; }
    int LineCount() const { return static_cast<int>(lineStarts_.size()); }
    // The line's text without its line break; empty past the end.
    std::string_view LineText(int line) const;
    // The byte offset of a position; lines and characters past their end are clamped.
    std::size_t Offset(TPosition position) const;
    // The byte column (into LineText) of a character on a line, clamped to the line.
    std::size_t ByteColumn(int line, int character) const;
    // The character (in the agreed units) of a byte column on a line.
    int Character(int line, std::size_t byteColumn) const;

    // Replaces the text between two positions (a ranged edit) or the whole text.
    void Replace(TPosition from, TPosition to, std::string_view text);
    void SetText(std::string text);

private:
    void IndexLines();

    std::string text_;
    std::vector<std::size_t> lineStarts_; // byte offset of every line's start
    bool utf16_;
};

// The same conversions on a single line of text.
std::size_t ByteColumnOf(std::string_view line, int character, bool utf16);
int CharacterOf(std::string_view line, std::size_t byteColumn, bool utf16);

} // namespace velkor::lsp
