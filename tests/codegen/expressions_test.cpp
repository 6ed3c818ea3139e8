// The expression stack refuses to pop a slot it never pushed.
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(Expressions, PopWithoutSlotReportsUnderflow) {
    CompileRun r({"unit U;"}, false);
    r.compiler->CodeGen().StackDepth = 1;
    r.compiler->CodeGen().PopAccumulator();
    EXPECT_EQ(r.compiler->CodeGen().StackDepth, 0);
    EXPECT_TRUE(r.Has("[U, 1] pop __ST0"));
    EXPECT_TRUE(r.Has("[U, 1] ERROR: stack over/under-flow (__ST0)"));
}

} // namespace
} // namespace velkor::test
