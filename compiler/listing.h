// The instruction listing of a unit. A large mission has close to a million lines: one string per line would
// cost as many allocations and twice the memory, and one growing buffer would be copied again and again as
// it grows. The characters go into blocks of a megabyte that never move, and the lines are views into them.
#pragma once

#include "iff/iff_token_source.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TListing {
public:
    using const_iterator = std::deque<std::string_view>::const_iterator;

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
    std::string_view operator[](std::size_t index) const { return lines_[index]; }
    const_iterator begin() const { return lines_.begin(); }
    const_iterator end() const { return lines_.end(); }
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

    friend bool operator==(const TListing& a, const TListing& b) { return a.lines_ == b.lines_; }

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

    // Room for n more characters of one line, in the last block or a new one.
    char* Take(std::size_t n);
    // The block of a line: mostly the block of the line before it, otherwise looked up by address (insert
    // puts lines of later blocks in front of earlier ones).
    class BlockFinder {
    public:
        explicit BlockFinder(const std::vector<Block>& blocks);
        std::size_t Find(std::string_view line);

    private:
        struct Span {
            const char* begin; // the block's first character
            const char* end;   // behind its last one taken
            std::size_t index; // the block's index
        };
        std::vector<Span> spans_; // the blocks by address
        std::size_t last_ = 0;    // the span found last
    };

    // How many lines each block holds.
    std::vector<std::size_t> LinesPerBlock() const;

    std::vector<Block> blocks_;          // the characters of every line
    std::deque<std::string_view> lines_; // the lines in order, each within one block
    std::size_t textSize_ = 0;           // characters of all lines
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
    BlockFinder finder_;             // the block of each line
    std::vector<std::size_t> lines_; // lines of each block not handed out yet
    std::vector<std::size_t> done_;  // blocks all of whose lines are out, not freed yet
    std::size_t current_ = 0;        // the block of the last line handed out
    std::size_t left_ = 0;           // characters not handed out yet
    std::size_t released_ = 0;       // blocks freed so far
};

} // namespace velkor
