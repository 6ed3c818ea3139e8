// The compiler over the case files in tests/cases/compiler: a unit in, its listing, lists, settings,
// symbols and messages out.
#include "tests/compiler/unit_cases.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(CompilerCases, Units) {
    RunCaseFolder(std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/compiler", CompileCase);
}

} // namespace
} // namespace velkor::test
