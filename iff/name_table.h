// The assembler's constant and type tables: values keyed by a name checksum, the first definition of a key
// kept. Open addressing in one array, because every operand of an instruction listing is looked up here.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace velkor {

class TNameTable {
public:
    // Adds the value unless the key has one already.
    void Add(std::uint32_t key, std::string value);
    // The key's value, or null. It stays where it is while the table lives.
    const std::string* Find(std::uint32_t key) const;
    bool empty() const { return values_.empty(); }
    void clear();

private:
    struct Slot {
        std::uint32_t key = 0; // the name checksum
        int value = -1;        // index into values_; -1 for an empty slot
    };
    std::size_t SlotOf(std::uint32_t key) const; // the key's slot, or the empty one where it would go

    std::vector<Slot> slots_;        // a power of two in size, at most half full; empty before any value
    std::deque<std::string> values_; // in the order added; a deque, so found values never move
};

} // namespace velkor
