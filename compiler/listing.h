// The instruction listing of a unit. A large mission has close to a million lines: one string per line would
// cost as many allocations and twice the memory, and one growing buffer would be copied again and again as
// it grows. The characters go into blocks of a megabyte that never move, and each line is a word of eight
// bytes naming its block, where it starts there and its length.
#pragma once

#include "iff/iff_token_source.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TListing {
    using LineRef = std::uint64_t; // block << 40 | start << 20 | length; a long line's length is its block's

public:
    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = std::string_view;

        const_iterator() = default;
        const_iterator(const TListing* listing, std::deque<LineRef>::const_iterator at)
            : listing_(listing), at_(at) {}
        std::string_view operator*() const { return listing_->View(*at_); }
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
        std::deque<LineRef>::const_iterator at_;
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
    std::string_view operator[](std::size_t index) const { return View(lines_[index]); }
    const_iterator begin() const { return {this, lines_.begin()}; }
    const_iterator end() const { return {this, lines_.end()}; }
    // The characters of all lines together: what a writer of the listing has to reserve.
    std::size_t TextSize() const { return textSize_; }

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

    // Hands the lines over one by one to a reader that looks back no further than its last Release, and
    // empties the listing on the way as Drain does.
    class Feed;

private:
    struct Block {
        std::unique_ptr<char[]> chars; // never reallocated: lines point into it
        std::size_t used = 0;          // characters taken
        std::size_t capacity = 0;      // characters it holds
    };
    static constexpr std::size_t kBlockSize = std::size_t{1} << 20;
    // A line this long or longer has a block of its own, and its length is the block's.
    static constexpr std::size_t kLongLine = (std::size_t{1} << 20) - 1;

    // Room for a line of n characters, in the last block or a new one; its reference.
    LineRef Take(std::size_t n, char*& at);
    std::string_view View(LineRef line) const;
    static std::size_t BlockOf(LineRef line) { return static_cast<std::size_t>(line >> 40); }
    // How many lines each block holds.
    std::vector<std::size_t> LinesPerBlock() const;

    // A line the same as one of the recent ones is stored once: a generated listing is mostly a few thousand
    // lines over and over. Lines are looked for in a table of fixed size by their hash, each slot naming the
    // last short line of its hash; a block goes only when every line naming it has been handed out.
    static constexpr std::size_t kRecentLines = 4096;
    static constexpr std::size_t kSharedLineMax = 64; // longer lines are rarely repeated
    static constexpr LineRef kNoLine = ~LineRef{0};
    void ForgetRecent() { recent_.clear(); }

    std::vector<Block> blocks_;   // the characters of every line
    std::deque<LineRef> lines_;   // the lines in order
    std::size_t textSize_ = 0;    // characters of all lines
    std::vector<LineRef> recent_; // kRecentLines slots once a line was added, kNoLine for an empty one
};

class TListing::Feed : public SplicedLines {
public:
    explicit Feed(TListing& listing);
    ~Feed() override;
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;
    bool NextLine(std::string_view& line) override;
    void Release() override;
    std::size_t CharsLeft() const override { return left_; }

private:
    TListing& listing_;
    std::vector<std::size_t> lines_; // lines of each block not handed out yet
    std::vector<std::size_t> done_;  // blocks all of whose lines are out, not freed yet
    std::size_t current_ = 0;        // the block of the last line handed out
    std::size_t left_ = 0;           // characters not handed out yet
    std::size_t released_ = 0;       // blocks freed so far
};

} // namespace velkor
