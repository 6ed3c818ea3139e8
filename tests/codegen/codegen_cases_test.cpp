// The code generator over the case files in tests/cases/codegen.
#include "tests/compiler/unit_cases.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(CodegenCases, Units) {
    RunCaseFolder(std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/codegen", CompileCase);
}

} // namespace
} // namespace velkor::test
