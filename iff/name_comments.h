// Chunks that hold name hashes among their words (a unit's flags, its editor form's name list, an object's
// common data), written as longs with the name each hash stands for beside it where it is known.
#pragma once

#include "iff/wcp_disassembler.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace velkor {

// The kinds of such chunks, by where they stand.
enum class NamedWordsChunk : std::uint8_t { None, Flags, NameList, Common };

// Which kind a chunk of this id in a form of this type is.
NamedWordsChunk NamedWordsChunkOf(std::string_view id, std::string_view parent);

// Flags: entries of a name hash, a descriptor and a value. Name list: a count, that many hashes, then the
// names as strings. Common data: the object's name hash; the rest (its position) stays byte rows. Whatever
// does not fit the layout is written as byte rows, so the lines assemble to exactly `data`.
void WriteNamedWords(std::string& out, std::string_view indent, std::span<const std::uint8_t> data,
                     NamedWordsChunk kind, const WcpNames& names);

} // namespace velkor
