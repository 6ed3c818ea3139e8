#include "compiler/listing.h"

#include "platform/freed_memory.h"

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

TListing::BlockFinder::BlockFinder(const std::vector<Block>& blocks) {
    spans_.reserve(blocks.size());
    for (std::size_t i = 0; i < blocks.size(); ++i)
        spans_.push_back({blocks[i].chars.get(), blocks[i].chars.get() + blocks[i].used, i});
    std::sort(spans_.begin(), spans_.end(),
              [](const Span& a, const Span& b) { return std::less<const char*>()(a.begin, b.begin); });
}

std::size_t TListing::BlockFinder::Find(std::string_view line) {
    const std::less_equal<const char*> notAfter;
    auto holds = [&](const Span& span) {
        return notAfter(span.begin, line.data()) && notAfter(line.data() + line.size(), span.end);
    };
    if (spans_.empty()) return 0;
    if (!holds(spans_[last_])) {
        // The last block that starts at or before the line holds it.
        const auto after =
            std::upper_bound(spans_.begin(), spans_.end(), line.data(), [](const char* at, const Span& span) {
                return std::less<const char*>()(at, span.begin);
            });
        last_ = after == spans_.begin() ? 0 : static_cast<std::size_t>(std::prev(after) - spans_.begin());
    }
    return spans_[last_].index;
}

std::vector<std::size_t> TListing::LinesPerBlock() const {
    std::vector<std::size_t> count(blocks_.size());
    BlockFinder finder(blocks_);
    for (std::string_view line : lines_) ++count[finder.Find(line)];
    return count;
}

void TListing::Drain(const std::function<void(std::string_view line)>& take) {
    // Each block goes when its last line has been handed over, and the freed pages go back to the system
    // now and then, so that the listing shrinks while the taker's text grows. Both passes find each line's
    // block the same way.
    std::vector<std::size_t> left = LinesPerBlock();
    BlockFinder finder(blocks_);
    constexpr std::size_t kReturnEvery = 4; // blocks of a megabyte
    std::size_t released = 0;
    while (!lines_.empty()) {
        const std::string_view line = lines_.front();
        const std::size_t block = finder.Find(line);
        take(line);
        lines_.pop_front();
        if (--left[block] == 0) {
            blocks_[block].chars.reset();
            if (++released % kReturnEvery == 0) ReturnFreedMemory();
        }
    }
    clear();
    ReturnFreedMemory();
}

std::vector<std::string> TListing::Lines() const {
    std::vector<std::string> lines;
    lines.reserve(size());
    for (std::string_view line : lines_) lines.emplace_back(line);
    return lines;
}

TListing::Feed::Feed(TListing& listing)
    : listing_(listing), finder_(listing.blocks_), lines_(listing.LinesPerBlock()), left_(listing.textSize_) {
}

TListing::Feed::~Feed() {
    listing_.clear();
    ReturnFreedMemory();
}

bool TListing::Feed::NextLine(std::string_view& line) {
    if (listing_.lines_.empty()) return false;
    line = listing_.lines_.front();
    listing_.lines_.pop_front();
    current_ = finder_.Find(line);
    left_ -= line.size();
    if (--lines_[current_] == 0) done_.push_back(current_);
    return true;
}

// The block of the last line handed out stays: the reader may still look at that line.
void TListing::Feed::Release() {
    if (done_.empty() || (done_.size() == 1 && done_.front() == current_)) return;
    std::size_t kept = 0;
    for (std::size_t block : done_) {
        if (block == current_) {
            done_[kept++] = block;
            continue;
        }
        listing_.blocks_[block].chars.reset();
        if (++released_ % 4 == 0) ReturnFreedMemory();
    }
    done_.resize(kept);
}

} // namespace velkor
