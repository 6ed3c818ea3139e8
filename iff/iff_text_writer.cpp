#include "iff/iff_text_writer.h"

#include <algorithm>

namespace velkor {

IffTextWriter::IffTextWriter(std::string& text, std::size_t maxDepth) : text_(&text), maxDepth_(maxDepth) {}

IffTextWriter::IffTextWriter(std::vector<std::string>& lines) : lines_(&lines) {}

void IffTextWriter::Line(std::string_view text) {
    Put(2 * std::min(depth_, maxDepth_), text);
}

void IffTextWriter::Open(std::string_view header) {
    Line(header);
    Line("{");
    ++depth_;
    const std::size_t blanks = 2 * std::min(depth_, maxDepth_);
    if (blanks_.size() < blanks) blanks_.resize(blanks, ' ');
}

void IffTextWriter::Close() {
    --depth_;
    Line("}");
}

std::string_view IffTextWriter::Indent() const {
    return std::string_view(blanks_).substr(0, 2 * std::min(depth_, maxDepth_));
}

void IffTextWriter::Put(std::size_t blanks, std::string_view text) {
    if (lines_) {
        std::string& line = lines_->emplace_back(blanks, ' ');
        line += text;
        return;
    }
    text_->append(blanks, ' ');
    *text_ += text;
    *text_ += "\r\n";
}

} // namespace velkor
