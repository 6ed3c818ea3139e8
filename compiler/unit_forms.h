// The textual IFF that Link writes for each unit kind: the game's mission, sector and series forms and the
// editor form that records names by CRC.
#pragma once

#include "compiler/comp_data.h"

#include <string>

namespace velkor {

class TCompiler;

// Each appends the unit's forms to `text`, every line ended by CR LF (RawList is appended by Link itself).
void LinkMission(TCompiler& compiler, std::string& text);
void LinkSector(TCompiler& compiler, std::string& text);
void LinkSeries(TCompiler& compiler, std::string& text);

} // namespace velkor
