// The six text lists a unit's compilation fills and Link reads.
#pragma once

#include "compiler/listing.h"

#include <string>
#include <vector>

namespace velkor {

class TCompiler;
using StringList = std::vector<std::string>;

struct TCompData {
    explicit TCompData(TCompiler& owner) : Owner(owner) {}

    TCompiler& Owner;      // the compiler of the unit
    TListing CodeList;     // instruction lines of all functions; the optimiser's input and output
    StringList CrcNames;   // names whose CRCs go into the editor form's CRCS chunk
    StringList Globals;    // global and static variable names, for the FLGS chunk
    StringList Objects;    // object form lines, for the OBJS form
    StringList Objectives; // objective chunk lines, for the MOBJ form
    StringList RawList;    // emitted verbatim at the very end of the linked text
    std::string GfProc;    // set by #GFPROC
    std::string MainProc;  // set by #MAINPROC
    std::string Source;    // a copy of the source text for an iff unit read by the standard scanner

    static constexpr int kListCount = 5;
    // The lists of names and lines after CodeList by position, in the order above: include children's lists
    // are appended position by position.
    StringList& List(int index) {
        StringList* lists[kListCount] = {&CrcNames, &Globals, &Objects, &Objectives, &RawList};
        return *lists[index];
    }
};

} // namespace velkor
