// The instruction listing of a unit. A large mission has close to a million lines, but the code generator
// writes the same few thousand lines over and over: each distinct line is kept once, under an id, and the
// listing is the sequence of those ids. The characters go into blocks of a megabyte that never move; an id
// names its line's block, where it starts there and its length. The assembler of a build reads the ids with
// the lines, so that it looks at each distinct line once.
#pragma once

#include "iff/iff_token_source.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TListing {
    using LineRef = std::uint64_t; // block << 40 | start << 20 | length; a long line's length is its block's

public:
    using LineId = std::uint32_t;

    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = std::string_view;

        const_iterator() = default;
        const_iterator(const TListing* listing, std::deque<LineId>::const_iterator at)
            : listing_(listing), at_(at) {}
        std::string_view operator*() const { return listing_->TextOf(*at_); }
        const_iterator& operator++() {
            ++at_;
            return *this;
        }
        const_iterator operator++(int) {
            const_iterator before = *this;
            ++at_;
            return before;
        }
        friend bool operator==(const const_iterator& a, const const_iterator& b) { return a.at_ == b.at_; }

    private:
        const TListing* listing_ = nullptr;
        std::deque<LineId>::const_iterator at_;
    };

    TListing() = default;
    TListing(std::initializer_list<std::string_view> lines);
    explicit TListing(const std::vector<std::string>& lines);
    TListing(const TListing& other);
    TListing& operator=(const TListing& other);
    // Blocks keep their addresses when the listing moves, so the lines stay valid.
    TListing(TListing&&) noexcept = default;
    TListing& operator=(TListing&&) noexcept = default;
    ~TListing() = default;

    std::size_t size() const { return lines_.size(); }
    bool empty() const { return lines_.empty(); }
    std::string_view operator[](std::size_t index) const { return TextOf(lines_[index]); }
    const_iterator begin() const { return {this, lines_.begin()}; }
    const_iterator end() const { return {this, lines_.end()}; }
    // The characters of all lines together: what a writer of the listing has to reserve.
    std::size_t TextSize() const { return textSize_; }

    // Lines of one id read the same; a long or quoting line may share its text with lines of other ids.
    std::string_view TextOf(LineId id) const { return View(Ref(id)); }
    // Whether `holds` is true of the text of every id, each asked once.
    bool HoldsForEveryText(const std::function<bool(std::string_view text)>& holds) const;

    void push_back(std::string_view line);
    // Appends one line made of an indentation and a text, without joining them first.
    void push_back(std::string_view indent, std::string_view text);
    // Inserts lines before the line at `index` (at the end when past it).
    void insert(std::size_t index, const std::vector<std::string>& lines);
    void Append(const TListing& other);
    void clear();

    std::vector<std::string> Lines() const;
    // Hands every line to `take` in order and empties the listing on the way: the memory of the lines
    // handed over is given back while the taker's copy of them grows, so that both are not held at once.
    void Drain(const std::function<void(std::string_view line)>& take);

    friend bool operator==(const TListing& a, const TListing& b);

    // Hands the lines over a run at a time, with their ids, to a reader that looks back no further than its
    // last Release, and empties the listing on the way as Drain does.
    class Feed;

private:
    struct Block {
        std::unique_ptr<char[]> chars; // never reallocated: lines point into it
        std::size_t used = 0;          // characters taken
        std::size_t capacity = 0;      // characters it holds
        std::size_t lines = 0;         // lines of the listing whose text is here
    };
    static constexpr std::size_t kBlockSize = std::size_t{1} << 20;
    // A line this long or longer has a block of its own, and its length is the block's.
    static constexpr std::size_t kLongLine = (std::size_t{1} << 20) - 1;
    // Set in an id's reference once a second line has it; the block number stays far below.
    static constexpr LineRef kRepeatedBit = LineRef{1} << 63;

    // Room for a line of n characters, in the block being filled with lines like it or a new one; its
    // reference. The shared lines' characters fill blocks of their own: finding a line in the table reads
    // them, and among the others they would lie scattered over the whole listing.
    LineRef Take(std::size_t n, char*& at, bool shared);
    // An id of a line not shared: its number among them, with this bit. Shared lines are numbered apart,
    // so that their references lie together and take a few hundred kilobytes where all take megabytes.
    static constexpr LineId kOwnBit = LineId{1} << 31;
    LineRef& Ref(LineId id) { return id & kOwnBit ? own_[id & ~kOwnBit] : shared_[id]; }
    const LineRef& Ref(LineId id) const { return id & kOwnBit ? own_[id & ~kOwnBit] : shared_[id]; }
    std::string_view View(LineRef line) const;
    static std::size_t BlockOf(LineRef line) {
        return static_cast<std::size_t>((line & ~kRepeatedBit) >> 40);
    }
    // The id of the line, counted in its block: the one it had before when it is shared and was seen,
    // otherwise a new one.
    LineId Put(std::string_view indent, std::string_view text);
    // A shared line's id from the table; `found` tells whether it was there before.
    LineId IdOf(std::string_view indent, std::string_view text, std::uint64_t hash, bool& found);
    // IdOf when the table is to grow first.
    [[gnu::noinline]] LineId IdOfRare(std::string_view indent, std::string_view text, std::uint64_t hash,
                                      bool& found);
    // A new shared line, whose hash found the empty slot `at`.
    [[gnu::noinline]] LineId Seen(std::string_view indent, std::string_view text, std::size_t at,
                                  std::uint32_t upper);
    // Put for a line that fits a recent entry but is in neither of its set: it takes the first place.
    [[gnu::noinline]] LineId PutAndRecall(std::string_view indent, std::string_view text, std::uint64_t hash);
    // A new id of the line, shared or its own.
    LineId NewId(std::string_view indent, std::string_view text, bool shared);
    void Grow();
    // One more line of the listing has the id.
    void Count(LineId id) { ++blocks_[BlockOf(Ref(id))].lines; }

    // Short lines are looked up by their hash in an open table: each slot holds the upper half of the hash
    // and 1 + the id, 0 for an empty slot. Longer lines are rarely repeated and get an id each; so do lines
    // that end in a quotation, nearly all of them a label or a jump to one (`goto "12e";`). Kept out, they
    // leave the table small enough to stay in the cache however long the unit.
    static constexpr std::size_t kSharedLineMax = 64;
    static bool Shared(std::size_t n, std::string_view text) {
        const std::size_t k = text.size();
        return n <= kSharedLineMax && !(k >= 2 && (text[k - 1] == '"' || text[k - 2] == '"'));
    }

    // The shared lines met lately, two to a set chosen by the low bits of their hash. Finding a line in the
    // table reads three places (its slot, its reference, its characters); in a large unit the lines that
    // repeat are too many to keep all three in the cache, and an entry here holds in one cache line
    // everything a repeated line needs.
    static constexpr std::size_t kRecentChars = 54;
    struct alignas(64) Recent {
        LineId id = 0;                 // the line's id
        std::uint32_t block = 0;       // the block of its characters
        std::uint8_t length = kEmpty;  // its characters, kEmpty for an entry not used yet
        bool marked = false;           // its reference carries kRepeatedBit already
        char chars[kRecentChars] = {}; // the line
        static constexpr std::uint8_t kEmpty = 0xFF;
    };
    static constexpr std::size_t kRecentSets = 4096;
    void ForgetSeen() {
        seen_ = {};
        recent_.reset();
    }

    static constexpr std::size_t kNoBlock = ~std::size_t{0};
    std::vector<Block> blocks_;                     // the characters of every line
    std::size_t filling_[2] = {kNoBlock, kNoBlock}; // the blocks being filled: other lines, shared lines
    std::deque<LineId> lines_;                      // the lines in order
    std::vector<LineRef> shared_;                   // the shared lines by id
    std::vector<LineRef> own_;                      // the other lines, by id without kOwnBit
    std::vector<std::uint64_t> seen_;               // the short lines' ids by hash
    std::unique_ptr<Recent[]> recent_; // 2 * kRecentSets entries once a shared line came, none before
    std::size_t seenCount_ = 0;        // slots taken
    std::size_t textSize_ = 0;         // characters of all lines
};

class TListing::Feed : public SplicedLines {
public:
    explicit Feed(TListing& listing);
    ~Feed() override;
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;
    std::span<const SplicedLine> NextLines() override;
    void Release() override;
    std::size_t CharsLeft() const override { return left_; }

private:
    static constexpr std::size_t kRun = 512;              // lines handed over at a time
    static constexpr std::size_t kReturnEvery = 1u << 20; // lines handed over between returns of memory

    TListing& listing_;
    std::vector<SplicedLine> run_;        // the lines handed over last
    std::vector<std::size_t> doneNow_;    // blocks whose last line is in that run
    std::vector<std::size_t> doneBefore_; // blocks whose last line was in an earlier run, not freed yet
    std::size_t left_ = 0;                // characters not handed out yet
    std::size_t released_ = 0;            // blocks freed so far
    std::size_t handed_ = 0;              // lines handed over since memory was last returned
};

} // namespace velkor
