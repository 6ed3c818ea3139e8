// Writes textual IFF line by line, for every writer of it: the unit-level forms, the game objects and the
// decoder. A block is its header line, "{", its lines two blanks deeper and "}"; lines end in CR LF when
// they go into a text, or are kept one string each for a list that is joined into a text later.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class IffTextWriter {
public:
    // Appends to `text`. Beyond `maxDepth` open blocks the indentation stops growing, so that deeply nested
    // input cannot make a text grow with the square of its depth.
    explicit IffTextWriter(std::string& text, std::size_t maxDepth = kUnlimited);
    // Appends one string per line, without a line break, to `lines`.
    explicit IffTextWriter(std::vector<std::string>& lines);

    // The current indentation and the text after it.
    void Line(std::string_view text);
    // The header line and "{"; the lines after it are one level deeper.
    void Open(std::string_view header);
    // One level up, then "}".
    void Close();
    // Each line behind a fixed number of blanks, whatever the current level.
    template <class Lines>
    void Verbatim(const Lines& lines, std::size_t blanks) {
        for (std::string_view line : lines) Put(blanks, line);
    }

    void VerbatimLine(std::string_view line, std::size_t blanks) { Put(blanks, line); }

    // The blanks in front of a line at the current level.
    std::string_view Indent() const;
    std::size_t Depth() const { return depth_; }

private:
    static constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();
    void Put(std::size_t blanks, std::string_view text);

    std::string* text_ = nullptr;               // the text appended to, or null
    std::vector<std::string>* lines_ = nullptr; // the list appended to, or null
    std::size_t depth_ = 0;                     // open blocks
    std::size_t maxDepth_ = kUnlimited;         // open blocks that still indent
    std::string blanks_;                        // blanks to take indentation from
};

} // namespace velkor
