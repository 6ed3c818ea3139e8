// The instruction listing of a unit. Its lines are kept end to end in one buffer: a large mission has close
// to a million of them, and one string per line would cost as many allocations and twice the memory.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TListing {
public:
    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = std::string_view;

        const_iterator() = default;
        const_iterator(const TListing* listing, std::size_t index) : listing_(listing), index_(index) {}
        std::string_view operator*() const { return (*listing_)[index_]; }
        const_iterator& operator++() {
            ++index_;
            return *this;
        }
        const_iterator operator++(int) {
            const_iterator before = *this;
            ++index_;
            return before;
        }
        bool operator==(const const_iterator& other) const = default;

    private:
        const TListing* listing_ = nullptr; // the listing walked
        std::size_t index_ = 0;             // the line at hand
    };

    TListing() = default;
    TListing(std::initializer_list<std::string_view> lines);
    explicit TListing(const std::vector<std::string>& lines);

    std::size_t size() const { return ends_.size(); }
    bool empty() const { return ends_.empty(); }
    std::string_view operator[](std::size_t index) const;
    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, size()}; }
    // The characters of all lines without separators, and their count: what a writer has to reserve.
    std::size_t TextSize() const { return text_.size(); }

    void push_back(std::string_view line);
    // Appends one line made of an indentation and a text, without joining them first.
    void push_back(std::string_view indent, std::string_view text);
    // Inserts lines before the line at `index` (at the end when past it). Costs the lines behind it.
    void insert(std::size_t index, const std::vector<std::string>& lines);
    void Append(const TListing& other);
    void clear();

    std::vector<std::string> Lines() const;

    friend bool operator==(const TListing& a, const TListing& b) {
        return a.text_ == b.text_ && a.ends_ == b.ends_;
    }

private:
    std::string text_;              // every line's characters, one line after the other
    std::vector<std::size_t> ends_; // where each line ends in text_
};

} // namespace velkor
