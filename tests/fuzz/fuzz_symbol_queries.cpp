// The text readers of code assistance: the declaration's parameter list in a source file that may have
// changed since the compile, and the call around the caret in an edited line. The first two bytes pick
// the line and the column, the rest is the text.
#include "compiler/symbol_queries.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const int line = data[0] % 16;
    const int column = data[1];
    const std::string_view text(reinterpret_cast<const char*>(data + 2), size - 2);
    (void)velkor::DeclaredParameters(text, line, "go");
    (void)velkor::DeclaredParameters(text, line + 1, "f");
    const std::string_view firstLine = text.substr(0, text.find_first_of("\r\n"));
    if (const auto call = velkor::CallAtCaret(firstLine, column)) {
        if (call->Name.empty() || call->Argument < 0) __builtin_trap();
    }
    return 0;
}
