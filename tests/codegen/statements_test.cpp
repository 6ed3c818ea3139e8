// Loop labels are made from the source line: from line 1000 on they have five characters.
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(Statements, LabelsFromLine1000OnHaveFiveCharacters) {
    std::vector<std::string> lines(1233, "");
    lines[0] = "unit U;";
    lines[1] = "function f;";
    lines[2] = "var a;";
    lines[3] = "begin";
    lines.push_back("while (a) do a := 0");
    lines.push_back("end;");
    CompileRun r(lines);
    EXPECT_EQ(r.failure, "");
    const StringList code = r.Code();
    EXPECT_NE(std::find(code.begin(), code.end(), "  label \"1234w\";"), code.end());
    EXPECT_NE(std::find(code.begin(), code.end(), "  label \"1234e\";"), code.end());
}

} // namespace
} // namespace velkor::test
