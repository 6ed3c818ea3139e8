#include "lsp/text_document.h"

#include <algorithm>

namespace velkor::lsp {

namespace {

// Bytes of the UTF-8 sequence a lead byte starts; a stray byte counts as one.
std::size_t SequenceLength(unsigned char lead) {
    if (lead >= 0xF0 && lead < 0xF8) return 4;
    if (lead >= 0xE0) return lead < 0xF0 ? 3 : 1;
    if (lead >= 0xC0) return 2;
    return 1;
}

} // namespace

std::size_t ByteColumnOf(std::string_view line, int character, bool utf16) {
    if (character <= 0) return 0;
    if (!utf16) return std::min(line.size(), static_cast<std::size_t>(character));
    std::size_t at = 0;
    int units = 0;
    while (at < line.size() && units < character) {
        const std::size_t n =
            std::min(SequenceLength(static_cast<unsigned char>(line[at])), line.size() - at);
        units += n == 4 ? 2 : 1;
        at += n;
    }
    return at;
}

int CharacterOf(std::string_view line, std::size_t byteColumn, bool utf16) {
    byteColumn = std::min(byteColumn, line.size());
    if (!utf16) return static_cast<int>(byteColumn);
    int units = 0;
    std::size_t at = 0;
    while (at < byteColumn) {
        const std::size_t n =
            std::min(SequenceLength(static_cast<unsigned char>(line[at])), line.size() - at);
        units += n == 4 ? 2 : 1;
        at += n;
    }
    return units;
}

TTextDocument::TTextDocument(std::string text, bool utf16) : text_(std::move(text)), utf16_(utf16) {
    IndexLines();
}

void TTextDocument::IndexLines() {
    lineStarts_.assign(1, 0);
    for (std::size_t i = 0; i < text_.size(); ++i) {
        if (text_[i] == '\r' && i + 1 < text_.size() && text_[i + 1] == '\n') ++i;
        if (text_[i] == '\n' || text_[i] == '\r') lineStarts_.push_back(i + 1);
    }
}

std::string_view TTextDocument::LineText(int line) const {
    if (line < 0 || line >= LineCount()) return {};
    const std::size_t from = lineStarts_[line];
    std::size_t to = line + 1 < LineCount() ? lineStarts_[line + 1] : text_.size();
    while (to > from && (text_[to - 1] == '\n' || text_[to - 1] == '\r')) --to;
    return std::string_view(text_).substr(from, to - from);
}

std::size_t TTextDocument::ByteColumn(int line, int character) const {
    return ByteColumnOf(LineText(line), character, utf16_);
}

int TTextDocument::Character(int line, std::size_t byteColumn) const {
    return CharacterOf(LineText(line), byteColumn, utf16_);
}

std::size_t TTextDocument::Offset(TPosition position) const {
    if (position.Line < 0) return 0;
    if (position.Line >= LineCount()) return text_.size();
    return lineStarts_[position.Line] + ByteColumn(position.Line, position.Character);
}

void TTextDocument::Replace(TPosition from, TPosition to, std::string_view text) {
    std::size_t a = Offset(from), b = Offset(to);
    if (b < a) std::swap(a, b);
    text_.replace(a, b - a, text);
    IndexLines();
}

void TTextDocument::SetText(std::string text) {
    text_ = std::move(text);
    IndexLines();
}

} // namespace velkor::lsp
