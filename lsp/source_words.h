// The names written in a source text, where each stands: for references and semantic colouring. Comments,
// strings, numbers and the words of "#" commands are passed over as the scanners pass over them.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace velkor::lsp {

struct TSourceWord {
    int Line = 0;           // from 0
    std::size_t Column = 0; // byte column in the line
    std::string_view Text;  // the name as written
};

// Calls `each` for every name in `text`, in order.
void ForEachWord(std::string_view text, const std::function<void(const TSourceWord&)>& each);

// The name around (or just left of) a byte column of a line: its first byte and its text; empty when
// there is none.
struct TWordAt {
    std::size_t Column = 0;
    std::string_view Text;
};
TWordAt WordAt(std::string_view line, std::size_t column);

// The byte column of the first occurrence of `name` as a whole word (any case) in the line, or npos.
std::size_t FindWord(std::string_view line, std::string_view name);

bool IsWordChar(char c);

} // namespace velkor::lsp
