#include "compiler/listing.h"

#include <algorithm>

namespace velkor {

TListing::TListing(std::initializer_list<std::string_view> lines) {
    for (std::string_view line : lines) push_back(line);
}

TListing::TListing(const std::vector<std::string>& lines) {
    for (const auto& line : lines) push_back(line);
}

TListing::TListing(const TListing& other) {
    Append(other);
}

TListing& TListing::operator=(const TListing& other) {
    if (this != &other) {
        TListing copy(other);
        *this = std::move(copy);
    }
    return *this;
}

char* TListing::Take(std::size_t n) {
    if (blocks_.empty() || blocks_.back().capacity - blocks_.back().used < n) {
        const std::size_t capacity = std::max(kBlockSize, n);
        blocks_.push_back({std::make_unique_for_overwrite<char[]>(capacity), 0, capacity});
    }
    Block& block = blocks_.back();
    char* at = block.chars.get() + block.used;
    block.used += n;
    textSize_ += n;
    return at;
}

void TListing::push_back(std::string_view line) {
    push_back({}, line);
}

void TListing::push_back(std::string_view indent, std::string_view text) {
    char* at = Take(indent.size() + text.size());
    std::copy_n(indent.data(), indent.size(), at);
    std::copy_n(text.data(), text.size(), at + indent.size());
    lines_.emplace_back(at, indent.size() + text.size());
}

void TListing::insert(std::size_t index, const std::vector<std::string>& lines) {
    std::vector<std::string_view> stored;
    stored.reserve(lines.size());
    for (const auto& line : lines) {
        char* at = Take(line.size());
        std::copy_n(line.data(), line.size(), at);
        stored.emplace_back(at, line.size());
    }
    const auto before = lines_.begin() + static_cast<std::ptrdiff_t>(std::min(index, lines_.size()));
    lines_.insert(before, stored.begin(), stored.end());
}

void TListing::Append(const TListing& other) {
    for (std::string_view line : other) push_back(line);
}

void TListing::clear() {
    lines_.clear();
    blocks_.clear();
    textSize_ = 0;
}

std::vector<std::string> TListing::Lines() const {
    std::vector<std::string> lines;
    lines.reserve(size());
    for (std::string_view line : lines_) lines.emplace_back(line);
    return lines;
}

} // namespace velkor
