// Placeholder until the unit-level forms land.
#include "compiler/unit_forms.h"

namespace velkor {

void LinkMission(TCompiler&, StringList&) {}
void LinkSector(TCompiler&, StringList&) {}
void LinkSeries(TCompiler&, StringList&) {}

} // namespace velkor
