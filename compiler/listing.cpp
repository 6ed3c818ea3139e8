#include "compiler/listing.h"

#include <algorithm>

namespace velkor {

TListing::TListing(std::initializer_list<std::string_view> lines) {
    for (std::string_view line : lines) push_back(line);
}

TListing::TListing(const std::vector<std::string>& lines) {
    for (const auto& line : lines) push_back(line);
}

std::string_view TListing::operator[](std::size_t index) const {
    const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(text_).substr(begin, ends_[index] - begin);
}

void TListing::push_back(std::string_view line) {
    text_ += line;
    ends_.push_back(text_.size());
}

void TListing::push_back(std::string_view indent, std::string_view text) {
    text_ += indent;
    text_ += text;
    ends_.push_back(text_.size());
}

void TListing::insert(std::size_t index, const std::vector<std::string>& lines) {
    index = std::min(index, size());
    const std::size_t at = index == 0 ? 0 : ends_[index - 1];
    std::string joined;
    std::vector<std::size_t> ends;
    for (const auto& line : lines) {
        joined += line;
        ends.push_back(at + joined.size());
    }
    text_.insert(at, joined);
    for (std::size_t i = index; i < ends_.size(); ++i) ends_[i] += joined.size();
    ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(index), ends.begin(), ends.end());
}

void TListing::Append(const TListing& other) {
    const std::size_t base = text_.size();
    text_ += other.text_;
    for (std::size_t end : other.ends_) ends_.push_back(base + end);
}

void TListing::clear() {
    text_.clear();
    ends_.clear();
}

std::vector<std::string> TListing::Lines() const {
    std::vector<std::string> lines;
    lines.reserve(size());
    for (std::string_view line : *this) lines.emplace_back(line);
    return lines;
}

} // namespace velkor
