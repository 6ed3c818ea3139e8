// TOptimizer rewrites an instruction listing as text: constant forwarding (o3), self-moves (o8), move
// chains (o5), then comment removal (o7). It knows nothing of labels, blocks or control flow: a pattern is
// two lines adjacent in the text.
#pragma once

#include "compiler/comp_data.h"

#include <cstdint>
#include <functional>
#include <string>

namespace velkor {

class TOptimizer {
public:
    std::function<void(const std::string&)> OnOutput; // progress messages, as "[<line counter>] <text>"
    std::uint8_t Verbosity = 3;                       // messages of a higher level are not passed on

    void Load(const StringList& lines);
    // The four passes in the order o3, o8, o5, o7, then the level-1 summary.
    void Run();
    const StringList& Result() const { return lines_; }

    // The passes one by one, each over the whole listing.
    void PassO3();
    void PassO8();
    void PassO5();
    void PassO7();

private:
    void Message(int level, const std::string& text) const;
    bool Wants(int level) const { return OnOutput && level <= Verbosity; }
    void Combining(const std::string& previous, const std::string& current) const;

    StringList lines_;         // the listing between passes
    std::int64_t counter_ = 0; // lines processed by all passes so far: the messages' line number
};

} // namespace velkor
