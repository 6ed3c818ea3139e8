// TOptimizer rewrites an instruction listing as text: constant forwarding (o3), self-moves (o8), move
// chains (o5), then comment removal (o7). It knows nothing of labels, blocks or control flow: a pattern is
// two lines adjacent in the text.
#pragma once

#include "compiler/comp_data.h"

#include <functional>
#include <string>

namespace velkor {

class TOptimizer {
public:
    std::function<void(const std::string&)> OnOutput; // progress messages, as "[<line counter>] <text>"
    std::uint8_t Verbosity = 3;                       // messages of a higher level are not passed on

    void Load(const StringList& lines);
    void Run();
    const StringList& Result() const { return lines_; }

private:
    StringList lines_; // the listing between passes
};

} // namespace velkor
