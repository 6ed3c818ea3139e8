// What the listing lines of a build do, kept by line id. A listing repeats a few thousand lines over and
// over ("movv v9 v8;"), and within one WCP_ASM block a line always does the same: gives the same words, opens
// or closes a nested block, or holds nothing. So each line of a repeated text is read once per block, and
// every later line of that id costs a look into this table. One table serves every block of a run.
#pragma once

#include "iff/wcp_opcodes.h"
#include "platform/byte_order.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace velkor {

class WcpLineMemo {
public:
    enum class Kind : std::uint8_t {
        Unknown,     // not read in this block yet
        Words,       // a whole instruction or game-function call with its ";": its words
        OpenOperand, // an instruction whose ";" may follow on a later line, behind its last operand
        OpenKeyword, // the same without operands, behind its name
        BlockBegin,  // a "{" alone
        BlockEnd,    // a "}" alone
        Blank,       // no tokens at all
        Tokens,      // anything else: the token path reads it
    };
    struct Line {
        std::uint32_t block = 0;  // the block it was read in
        std::uint32_t offset = 0; // of its words' bytes
        std::uint8_t size = 0;    // bytes of its words
        Kind kind = Kind::Unknown;
    };

    // A new block: the lines of earlier ones are forgotten, as constants defined since may read otherwise.
    void BeginBlock() {
        if (++block_ == 0) { // the count went round: no line may look read
            lines_.clear();
            block_ = 1;
        }
        bytes_.clear();
    }
    // The line of an id; Kind::Unknown until Keep.
    Line& Of(std::uint32_t id) {
        if (id >= lines_.size()) lines_.resize(std::max<std::size_t>(std::size_t{id} + 1, 2 * lines_.size()));
        Line& line = lines_[id];
        if (line.block != block_) line = {block_, 0, 0, Kind::Unknown};
        return line;
    }
    // Words are kept only while their bytes fit in 32-bit offsets; a line left Unknown is read again.
    void Keep(Line& line, Kind kind, std::span<const std::uint32_t> words) {
        if (bytes_.size() + 4 * words.size() > std::numeric_limits<std::uint32_t>::max()) return;
        line.offset = static_cast<std::uint32_t>(bytes_.size());
        line.size = static_cast<std::uint8_t>(4 * words.size());
        line.kind = kind;
        bytes_.resize(bytes_.size() + 4 * words.size());
        for (std::size_t k = 0; k < words.size(); ++k)
            PutLittleEndian32(bytes_, line.offset + 4 * k, words[k]);
    }
    std::span<const std::uint8_t> Bytes(const Line& line) const {
        return std::span(bytes_).subspan(line.offset, line.size);
    }

private:
    std::vector<Line> lines_;         // by id
    std::vector<std::uint8_t> bytes_; // the words of this block's lines, as the record holds them
    std::uint32_t block_ = 0;         // how many blocks were begun
};

} // namespace velkor
