// The code generator over the case files in tests/cases/codegen: a unit in, its listing, its objects and
// objectives and its messages out.
#include "tests/codegen/compile_run.h"
#include "tests/compiler/case_file.h"

#include <gtest/gtest.h>

#include <sstream>

namespace velkor::test {
namespace {

// A case's first input line may set up the run: `@ verbosity=N nohalt finish objects` (objects shows the
// object and objective texts).
TEST(CodegenCases, Units) {
    RunCaseFolder(std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/codegen", [](const Case& c) {
        int verbosity = 1;
        bool halt = true, finish = false, objects = false;
        const bool setup = c.input.at(0).starts_with("@ ");
        if (setup) {
            std::istringstream words(c.input[0].substr(2));
            for (std::string w; words >> w;) {
                if (w.starts_with("verbosity=")) verbosity = std::stoi(w.substr(10));
                halt &= w != "nohalt";
                finish |= w == "finish";
                objects |= w == "objects";
            }
        }
        const CompileRun r(c.Framed(setup ? 1 : 0), halt, static_cast<std::uint8_t>(verbosity), finish);
        std::vector<std::string> out = r.Code();
        if (objects) {
            for (const auto& line : r.Objects()) out.push_back("object " + line);
            for (const auto& line : r.Objectives()) out.push_back("objective " + line);
        }
        // Where an error was raised in the compiler's own source is no part of its behaviour.
        for (const auto& m : r.messages)
            if (m.find("]   raised in ") == std::string::npos) out.push_back("message " + m);
        if (!r.failure.empty()) out.push_back("failure " + r.failure);
        return out;
    });
}

} // namespace
} // namespace velkor::test
