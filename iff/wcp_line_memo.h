// The words of listing lines assembled before. A listing repeats a few thousand lines over and over
// ("movv v9 v8;"), and within one WCP_ASM block a line always reads as the same words, so they are kept by
// the line's text: a table of fixed size, each line in the slot of its hash, a later line of the same hash
// taking the slot over. One table serves every block of a run, so that many small blocks cost no more.
#pragma once

#include "iff/wcp_opcodes.h"
#include "platform/byte_order.h"
#include "platform/strings.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class WcpLineMemo {
public:
    struct Line {
        std::string text;                                                // without its indentation
        std::array<std::uint8_t, 4 * (kWcpMaxNativeOperands + 1)> bytes; // its words as the record holds them
        std::size_t size = 0;                                            // bytes used; 0: the slot is empty
        std::uint64_t block = 0;                                         // the block it was read in
    };

    // A new block: the lines of earlier ones are forgotten, as constants defined since may read otherwise.
    void BeginBlock() {
        if (lines_.empty()) lines_.resize(kLines);
        ++block_;
    }
    // The slot of a line; it holds the line's bytes when Holds says so.
    Line& SlotOf(std::string_view text) { return lines_[QuickLineHash(text) % lines_.size()]; }
    bool Holds(const Line& slot, std::string_view text) const {
        return slot.size != 0 && slot.block == block_ && slot.text == text;
    }
    void Keep(Line& slot, std::string_view text, std::span<const std::uint32_t> words) {
        slot.text.assign(text);
        for (std::size_t k = 0; k < words.size(); ++k) PutLittleEndian32(slot.bytes, 4 * k, words[k]);
        slot.size = 4 * words.size();
        slot.block = block_;
    }

private:
    static constexpr std::size_t kLines = 4096;
    std::vector<Line> lines_;
    std::uint64_t block_ = 0; // how many blocks were begun
};

} // namespace velkor
