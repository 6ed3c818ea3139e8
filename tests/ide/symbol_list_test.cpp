// The queries behind the parameter hint: a function's declared parameters and the call at the caret. The
// symbol lists themselves are checked by the scenarios (tests/cases/ide/scenarios/symbols_*.txt).
#include "compiler/symbol_queries.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(SymbolQueries, ParametersFromTheDeclarationAndTheCallAtTheCaret) {
    EXPECT_EQ(DeclaredParameters("x\r\nFUNCTION  Go ( a, b,c );", 2, "go"),
              (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(DeclaredParameters("function Go;\nfunction GoOn(x);", 1, "goon"),
              std::vector<std::string>{"x"});
    EXPECT_EQ(DeclaredParameters("function Go;", 1, "go"), std::vector<std::string>{});
    EXPECT_EQ(DeclaredParameters("function go\r\n( a,\r\n b );", 1, "GO"),
              (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(DeclaredParameters("function Other(a);", 1, "go"), std::nullopt);
    EXPECT_EQ(DeclaredParameters("function Go(a);", 7, "go"), std::nullopt);
    EXPECT_EQ(DeclaredParameters("myfunction Go(a);", 1, "go"), std::nullopt);

    const auto call = CallAtCaret("  a := F(1, G(2, \"(,\"), 3", 26);
    ASSERT_TRUE(call);
    EXPECT_EQ(call->Name, "F");
    EXPECT_EQ(call->Argument, 2);
    EXPECT_EQ(CallAtCaret("F(1, G(2, ", 10)->Name, "G");
    EXPECT_EQ(CallAtCaret("F(1, G(2, ", 10)->Argument, 1);
    EXPECT_EQ(CallAtCaret("x := (1 + 2", 11), std::nullopt);
    EXPECT_EQ(CallAtCaret("F(1) // G(", 10), std::nullopt);
    EXPECT_EQ(CallAtCaret("F(1)", 4), std::nullopt);
    EXPECT_EQ(CallAtCaret("F(", 500)->Name, "F");
}

} // namespace
} // namespace velkor::test
