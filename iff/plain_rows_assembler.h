// A second reader for the commonest shape of textual IFF: output blocks of forms and chunks that hold rows
// of plain numbers (BYTE, WORD, LONG), the names quoted. It reads the text in blocks as it comes, straight
// into the output bytes, without the scanner's rewritten copy of the whole text. Anything else it does not
// judge: it gives up, and the caller assembles the text from the start through the general path, which
// is where every message comes from.
#pragma once

#include "iff/iff_writer.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// One finished output block: the file it names and the writer holding its bytes.
struct PlainRowsBlock {
    std::string fileName;
    std::unique_ptr<TIffWriter> writer;
};

// Every block of the text in order, or nothing when the text holds anything besides blanks, "IFF", "form",
// "chunk", "{", "}", quoted names, value types BYTE, WORD and LONG with an optional "[count]", plain numbers
// that fit them and the "," behind each; or when the text cannot be read to its end.
std::optional<std::vector<PlainRowsBlock>> AssemblePlainRows(std::string_view text);
std::optional<std::vector<PlainRowsBlock>> AssemblePlainRows(std::FILE* file, std::uint64_t sizeHint);

} // namespace velkor
