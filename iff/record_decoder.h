// Writes a chunk's data as the labelled values of a special decoder's record layout.
#pragma once

#include "iff/special_decoders.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace velkor {

// Writes the fields in chunk order. A field that reads back differently as a value (a cstring the scanners
// would change, a long the assembler refuses) is written as byte rows under its label; once a field no
// longer fits (too few bytes, a cstring without its zero), the rest of the data goes out as byte rows.
// The lines assemble to exactly `data`, except where a float's default text rounds it: then it returns
// false.
bool WriteRecords(std::string& out, std::string_view indent, std::span<const std::uint8_t> data,
                  const RecordLayout& layout, bool exactFloats);

} // namespace velkor
