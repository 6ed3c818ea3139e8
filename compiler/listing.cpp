#include "compiler/listing.h"

#include "platform/freed_memory.h"
#include "platform/strings.h"

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

bool operator==(const TListing& a, const TListing& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

TListing::LineRef TListing::Take(std::size_t n, char*& at) {
    // A line starts below the 20 bits of its start: a full block, or a long line's own, takes no more.
    const bool own = n >= kLongLine;
    if (own || blocks_.empty() || blocks_.back().capacity != kBlockSize ||
        blocks_.back().used == kBlockSize || kBlockSize - blocks_.back().used < n) {
        const std::size_t capacity = own ? n : kBlockSize;
        blocks_.push_back({std::make_unique_for_overwrite<char[]>(capacity), 0, capacity});
    }
    Block& block = blocks_.back();
    at = block.chars.get() + block.used;
    const LineRef line = static_cast<LineRef>(blocks_.size() - 1) << 40 |
                         static_cast<LineRef>(block.used) << 20 | static_cast<LineRef>(own ? kLongLine : n);
    block.used += n;
    textSize_ += n;
    return line;
}

std::string_view TListing::View(LineRef line) const {
    const Block& block = blocks_[BlockOf(line)];
    const std::size_t start = static_cast<std::size_t>(line >> 20) & kLongLine;
    const std::size_t length = static_cast<std::size_t>(line) & kLongLine;
    return {block.chars.get() + start, length == kLongLine ? block.used : length};
}

void TListing::push_back(std::string_view line) {
    push_back({}, line);
}

void TListing::push_back(std::string_view indent, std::string_view text) {
    const std::size_t n = indent.size() + text.size();
    LineRef* slot = nullptr;
    if (n <= kSharedLineMax) {
        if (recent_.empty()) recent_.assign(kRecentLines, kNoLine);
        const std::size_t hash = QuickLineHash(text) + indent.size() * 0x9E3779B97F4A7C15u;
        slot = &recent_[hash % kRecentLines];
        if (*slot != kNoLine) {
            const std::string_view seen = View(*slot);
            if (seen.size() == n && seen.starts_with(indent) && seen.ends_with(text)) {
                lines_.push_back(*slot);
                textSize_ += n;
                return;
            }
        }
    }
    char* at = nullptr;
    const LineRef line = Take(n, at);
    lines_.push_back(line);
    std::copy_n(indent.data(), indent.size(), at);
    std::copy_n(text.data(), text.size(), at + indent.size());
    if (slot) *slot = line;
}

void TListing::insert(std::size_t index, const std::vector<std::string>& lines) {
    std::vector<LineRef> stored;
    stored.reserve(lines.size());
    for (const auto& line : lines) {
        char* at = nullptr;
        stored.push_back(Take(line.size(), at));
        std::copy_n(line.data(), line.size(), at);
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
    ForgetRecent();
}

std::vector<std::size_t> TListing::LinesPerBlock() const {
    std::vector<std::size_t> count(blocks_.size());
    for (LineRef line : lines_) ++count[BlockOf(line)];
    return count;
}

void TListing::Drain(const std::function<void(std::string_view line)>& take) {
    // Each block goes when its last line has been handed over, and the freed pages go back to the system
    // now and then, so that the listing shrinks while the taker's text grows.
    std::vector<std::size_t> left = LinesPerBlock();
    ForgetRecent();                         // their blocks go on the way
    constexpr std::size_t kReturnEvery = 4; // blocks of a megabyte
    std::size_t released = 0;
    while (!lines_.empty()) {
        const LineRef line = lines_.front();
        take(View(line));
        lines_.pop_front();
        const std::size_t block = BlockOf(line);
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
    for (std::string_view line : *this) lines.emplace_back(line);
    return lines;
}

TListing::Feed::Feed(TListing& listing)
    : listing_(listing), lines_(listing.LinesPerBlock()), left_(listing.textSize_) {
    listing_.ForgetRecent(); // their blocks go on the way
}

TListing::Feed::~Feed() {
    listing_.clear();
    ReturnFreedMemory();
}

bool TListing::Feed::NextLine(std::string_view& line) {
    if (listing_.lines_.empty()) return false;
    const LineRef ref = listing_.lines_.front();
    listing_.lines_.pop_front();
    line = listing_.View(ref);
    current_ = BlockOf(ref);
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
