// A number's decimal text in a small buffer of its own, so that a listing line can be joined from it without
// a heap string: the code generator writes registers and constants into most of the lines it emits.
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velkor {

class DecimalText {
public:
    // The number, after `prefix` (at most four characters: "v" for a register).
    explicit DecimalText(std::int64_t value, std::string_view prefix = {}) {
        char* at = chars_.data();
        for (char c : prefix.substr(0, 4)) *at++ = c;
        size_ = static_cast<std::size_t>(std::to_chars(at, chars_.data() + chars_.size(), value).ptr -
                                         chars_.data());
    }
    operator std::string_view() const { return {chars_.data(), size_}; }

private:
    std::array<char, 24> chars_; // four prefix characters and the twenty of the longest 64-bit number
    std::size_t size_ = 0;
};

// "v<r>", the name of a register.
inline DecimalText RegisterName(std::int32_t r) {
    return DecimalText(r, "v");
}

} // namespace velkor
