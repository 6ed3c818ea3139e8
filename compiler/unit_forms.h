// The textual IFF that Link writes for each unit kind: the game's mission, sector and series forms and the
// editor form that records names by CRC.
#pragma once

#include "compiler/comp_data.h"

#include <string>

namespace velkor {

class TCompiler;

// The blanks in front of each listing line in the linked text.
inline constexpr std::size_t kListingIndent = 8;

// Each appends the unit's forms to `text`, every line ended by CR LF (RawList is appended by Link itself).
// With `listingAt`, the instruction listing stays in CodeList and is left out of the text; *listingAt is
// where its lines would start.
void LinkMission(TCompiler& compiler, std::string& text, std::size_t* listingAt = nullptr);
void LinkSector(TCompiler& compiler, std::string& text);
void LinkSeries(TCompiler& compiler, std::string& text, std::size_t* listingAt = nullptr);

} // namespace velkor
