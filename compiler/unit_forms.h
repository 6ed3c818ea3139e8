// The textual IFF that Link writes for each unit kind: the game's mission, sector and series forms and the
// editor form that records names by CRC.
#pragma once

#include "compiler/comp_data.h"

namespace velkor {

class TCompiler;

// Each appends the unit's forms to `lines` (RawList is appended by Link itself).
void LinkMission(TCompiler& compiler, StringList& lines);
void LinkSector(TCompiler& compiler, StringList& lines);
void LinkSeries(TCompiler& compiler, StringList& lines);

} // namespace velkor
