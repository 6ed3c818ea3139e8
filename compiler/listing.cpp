#include "compiler/listing.h"

#include "platform/freed_memory.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace velkor {

namespace {

// Eight characters, first lowest: the compiler makes one load of it.
[[gnu::always_inline]] inline std::uint64_t Word(const char* at) {
    const auto* p = reinterpret_cast<const unsigned char*>(at);
    return std::uint64_t{p[0]} | std::uint64_t{p[1]} << 8 | std::uint64_t{p[2]} << 16 |
           std::uint64_t{p[3]} << 24 | std::uint64_t{p[4]} << 32 | std::uint64_t{p[5]} << 40 |
           std::uint64_t{p[6]} << 48 | std::uint64_t{p[7]} << 56;
}

// Every character counts: lines of one length often differ only in the middle ("movv v8 v28;").
[[gnu::always_inline]] inline std::uint64_t LineHash(std::size_t indent, std::string_view text) {
    constexpr std::uint64_t kMix = 0x9E3779B97F4A7C15u;
    const std::size_t n = text.size();
    const char* p = text.data();
    // Multiplying by an odd number loses nothing, so the words are only mixed well once, at the end.
    std::uint64_t h = indent * 0xC2B2AE3D27D4EB4Fu + n;
    if (n >= 8) {
        for (std::size_t i = 0; i + 8 < n; i += 8) h = (h ^ Word(p + i)) * kMix;
        h ^= Word(p + n - 8); // the last eight, overlapping the word before
    } else {
        std::uint64_t last = 0;
        for (std::size_t i = 0; i < n; ++i)
            last |= std::uint64_t{static_cast<unsigned char>(p[i])} << (8 * i);
        h ^= last;
    }
    h *= kMix;
    h ^= h >> 29;
    h *= 0xD6E8FEB86659FD93u;
    return h ^ (h >> 32);
}

// Four characters, first lowest.
[[gnu::always_inline]] inline std::uint32_t Word4(const char* at) {
    const auto* p = reinterpret_cast<const unsigned char*>(at);
    return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 |
           std::uint32_t{p[3]} << 24;
}

// The lines compared are short: a call of memcmp would cost more than the comparison. The last word read
// overlaps the one before it rather than going byte by byte.
[[gnu::always_inline]] inline bool SameChars(const char* a, const char* b, std::size_t n) {
    if (n >= 8) {
        for (std::size_t i = 0; i + 8 < n; i += 8)
            if (Word(a + i) != Word(b + i)) return false;
        return Word(a + n - 8) == Word(b + n - 8);
    }
    if (n >= 4) return Word4(a) == Word4(b) && Word4(a + n - 4) == Word4(b + n - 4);
    for (std::size_t i = 0; i < n; ++i)
        if (a[i] != b[i]) return false;
    return true;
}

constexpr std::size_t kFirstSlots = 4096;

} // namespace

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

TListing::LineRef TListing::Take(std::size_t n, char*& at, bool shared) {
    // A line starts below the 20 bits of its start: a full block, or a long line's own, takes no more.
    const bool own = n >= kLongLine;
    std::size_t& filling = filling_[shared ? 1 : 0];
    if (own || filling >= blocks_.size() || blocks_[filling].used == kBlockSize ||
        kBlockSize - blocks_[filling].used < n) {
        const std::size_t capacity = own ? n : kBlockSize;
        blocks_.push_back({std::make_unique_for_overwrite<char[]>(capacity), 0, capacity, 0});
        if (!own) filling = blocks_.size() - 1;
    }
    const std::size_t number = own ? blocks_.size() - 1 : filling;
    Block& block = blocks_[number];
    at = block.chars.get() + block.used;
    const LineRef line = static_cast<LineRef>(number) << 40 | static_cast<LineRef>(block.used) << 20 |
                         static_cast<LineRef>(own ? kLongLine : n);
    block.used += n;
    return line;
}

std::string_view TListing::View(LineRef line) const {
    const Block& block = blocks_[BlockOf(line)];
    const std::size_t start = static_cast<std::size_t>(line >> 20) & kLongLine;
    const std::size_t length = static_cast<std::size_t>(line) & kLongLine;
    return {block.chars.get() + start, length == kLongLine ? block.used : length};
}

TListing::LineId TListing::NewId(std::string_view indent, std::string_view text, bool shared) {
    std::vector<LineRef>& refs = shared ? shared_ : own_;
    if (refs.size() >= kOwnBit - 1) throw std::length_error("listing too long");
    char* at = nullptr;
    refs.push_back(Take(indent.size() + text.size(), at, shared));
    std::copy_n(indent.data(), indent.size(), at);
    std::copy_n(text.data(), text.size(), at + indent.size());
    return static_cast<LineId>(refs.size() - 1) | (shared ? 0 : kOwnBit);
}

bool TListing::HoldsForEveryText(const std::function<bool(std::string_view text)>& holds) const {
    for (const std::vector<LineRef>* refs : {&shared_, &own_})
        for (const LineRef ref : *refs)
            if (!holds(View(ref))) return false;
    return true;
}

void TListing::Grow() {
    std::vector<std::uint64_t> slots(seen_.empty() ? kFirstSlots : 2 * seen_.size());
    const std::size_t mask = slots.size() - 1;
    for (std::uint64_t slot : seen_) {
        if (slot == 0) continue;
        std::size_t at = static_cast<std::size_t>(slot >> 32) & mask;
        while (slots[at] != 0) at = (at + 1) & mask;
        slots[at] = slot;
    }
    seen_ = std::move(slots);
}

TListing::LineId TListing::Put(std::string_view indent, std::string_view text) {
    const std::size_t n = indent.size() + text.size();
    LineId id = 0;
    if (!Shared(n, text)) {
        id = NewId(indent, text, false);
    } else {
        const std::uint64_t hash = LineHash(indent.size(), text);
        if (n > kRecentChars) {
            bool found = false;
            id = IdOf(indent, text, hash, found);
        } else {
            if (!recent_) recent_ = std::make_unique<Recent[]>(2 * kRecentSets);
            Recent* set = &recent_[2 * (hash & (kRecentSets - 1))];
            auto holds = [&](const Recent& r) {
                return r.length == n && SameChars(r.chars, indent.data(), indent.size()) &&
                       SameChars(r.chars + indent.size(), text.data(), text.size());
            };
            if (!holds(set[0])) {
                if (!holds(set[1])) return PutAndRecall(indent, text, hash);
                std::swap(set[0], set[1]); // the one met last goes first
            }
            Recent& recent = set[0];
            if (!recent.marked) {
                Ref(recent.id) |= kRepeatedBit;
                recent.marked = true;
            }
            ++blocks_[recent.block].lines;
            return recent.id;
        }
    }
    Count(id);
    return id;
}

TListing::LineId TListing::PutAndRecall(std::string_view indent, std::string_view text, std::uint64_t hash) {
    bool found = false;
    const LineId id = IdOf(indent, text, hash, found);
    Recent* set = &recent_[2 * (hash & (kRecentSets - 1))];
    set[1] = set[0]; // the one met less lately makes room
    Recent& recent = set[0];
    recent.id = id;
    recent.block = static_cast<std::uint32_t>(BlockOf(Ref(id)));
    recent.length = static_cast<std::uint8_t>(indent.size() + text.size());
    // A line the full table could not take has an id of its own, which is never marked as repeated.
    recent.marked = found || (id & kOwnBit) != 0;
    std::copy_n(indent.data(), indent.size(), recent.chars);
    std::copy_n(text.data(), text.size(), recent.chars + indent.size());
    ++blocks_[recent.block].lines;
    return id;
}

TListing::LineId TListing::IdOf(std::string_view indent, std::string_view text, std::uint64_t hash,
                                bool& found) {
    // The slot's index comes from the upper half too, so that a larger table is filled from the slots alone.
    if (2 * (seenCount_ + 1) > seen_.size()) return IdOfRare(indent, text, hash, found);
    const std::size_t n = indent.size() + text.size();
    const auto upper = static_cast<std::uint32_t>(hash >> 32);
    const std::size_t mask = seen_.size() - 1;
    for (std::size_t at = upper & mask;; at = (at + 1) & mask) {
        const std::uint64_t slot = seen_[at];
        if (slot == 0) return Seen(indent, text, at, upper);
        if (static_cast<std::uint32_t>(slot >> 32) != upper) continue;
        const auto id = static_cast<LineId>((slot & 0xFFFFFFFFu) - 1);
        // A short line is never a long line's own block, so its length is its reference's.
        LineRef& ref = shared_[id];
        if ((ref & kLongLine) != n) continue;
        const char* line =
            blocks_[BlockOf(ref)].chars.get() + (static_cast<std::size_t>(ref >> 20) & kLongLine);
        if (SameChars(line, indent.data(), indent.size()) &&
            SameChars(line + indent.size(), text.data(), text.size())) {
            ref |= kRepeatedBit;
            found = true;
            return id;
        }
    }
}

TListing::LineId TListing::IdOfRare(std::string_view indent, std::string_view text, std::uint64_t hash,
                                    bool& found) {
    if (seen_.size() > (std::size_t{1} << 31)) return NewId(indent, text, false);
    Grow();
    return IdOf(indent, text, hash, found);
}

TListing::LineId TListing::Seen(std::string_view indent, std::string_view text, std::size_t at,
                                std::uint32_t upper) {
    const LineId id = NewId(indent, text, true);
    seen_[at] = std::uint64_t{upper} << 32 | (std::uint64_t{id} + 1);
    ++seenCount_;
    return id;
}

void TListing::push_back(std::string_view line) {
    push_back({}, line);
}

void TListing::push_back(std::string_view indent, std::string_view text) {
    lines_.push_back(Put(indent, text));
    textSize_ += indent.size() + text.size();
}

void TListing::insert(std::size_t index, const std::vector<std::string>& lines) {
    std::vector<LineId> ids;
    ids.reserve(lines.size());
    for (const auto& line : lines) {
        ids.push_back(Put({}, line));
        textSize_ += line.size();
    }
    const auto before = lines_.begin() + static_cast<std::ptrdiff_t>(std::min(index, lines_.size()));
    lines_.insert(before, ids.begin(), ids.end());
}

void TListing::Append(const TListing& other) {
    for (std::string_view line : other) push_back(line);
}

void TListing::clear() {
    lines_.clear();
    blocks_.clear();
    shared_.clear();
    own_.clear();
    filling_[0] = filling_[1] = kNoBlock;
    textSize_ = 0;
    ForgetSeen();
    seenCount_ = 0;
}

void TListing::Drain(const std::function<void(std::string_view line)>& take) {
    // Each block goes when its last line has been handed over, and the freed pages go back to the system
    // now and then, so that the listing shrinks while the taker's text grows.
    ForgetSeen();                           // their blocks go on the way
    constexpr std::size_t kReturnEvery = 4; // blocks of a megabyte
    std::size_t released = 0;
    while (!lines_.empty()) {
        const LineRef line = Ref(lines_.front());
        take(View(line));
        lines_.pop_front();
        Block& block = blocks_[BlockOf(line)];
        if (--block.lines == 0) {
            block.chars.reset();
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

TListing::Feed::Feed(TListing& listing) : listing_(listing), left_(listing.textSize_) {
    listing_.ForgetSeen(); // their blocks go on the way
    run_.resize(kRun);
}

TListing::Feed::~Feed() {
    listing_.clear();
    ReturnFreedMemory();
}

std::span<const SplicedLine> TListing::Feed::NextLines() {
    doneBefore_.insert(doneBefore_.end(), doneNow_.begin(), doneNow_.end());
    doneNow_.clear();
    auto& lines = listing_.lines_;
    const std::size_t count = std::min(kRun, lines.size());
    const auto end = lines.begin() + static_cast<std::ptrdiff_t>(count);
    std::size_t k = 0;
    for (auto at = lines.begin(); at != end; ++at, ++k) {
        const LineId id = *at;
        const LineRef ref = listing_.Ref(id);
        Block& block = listing_.blocks_[BlockOf(ref)];
        const std::size_t length = static_cast<std::size_t>(ref) & kLongLine;
        const std::string_view text(block.chars.get() + (static_cast<std::size_t>(ref >> 20) & kLongLine),
                                    length == kLongLine ? block.used : length);
        run_[k] = {text, (ref & kRepeatedBit) != 0 ? id : SplicedLine::kOnce};
        left_ -= text.size();
        if (--block.lines == 0) doneNow_.push_back(BlockOf(ref));
    }
    lines.erase(lines.begin(), end);
    // The ids handed over go back to the system now and then, while the reader's output grows.
    if ((handed_ += count) >= kReturnEvery) {
        handed_ = 0;
        ReturnFreedMemory();
    }
    return std::span(run_).first(count);
}

// The reader still looks at lines of the last run.
void TListing::Feed::Release() {
    for (std::size_t block : doneBefore_) {
        listing_.blocks_[block].chars.reset();
        if (++released_ % 4 == 0) ReturnFreedMemory();
    }
    doneBefore_.clear();
}

} // namespace velkor
