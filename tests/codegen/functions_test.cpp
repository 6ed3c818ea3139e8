// Function declarations: the four forms, redeclaration rules, the lines a body gets inserted ahead of its
// statements, the implicit return and empty bodies; game-function calls with their register use.
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(Functions, EmptyBodyGetsAPlaceholderAndAWarning) {
    CompileRun r({"unit U;", "function f; begin end;"}, true, 0);
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(r.Code(), (StringList{"FUNC f 0", "{", "  movc v8 0;", "}"}));
    EXPECT_EQ(r.messages, (StringList{"[U, 2] WARNING: Empty function body (f)"}));
    ASSERT_TRUE(r.Symbol("F"));
    EXPECT_EQ(r.Symbol("F")->Kind, skUserFunction);
    EXPECT_NE(r.Symbol("F")->Value, 0);
    EXPECT_EQ(r.Symbol("F")->Register, 0);
}

TEST(Functions, LocalConstantsAndStaticsInTheBody) {
    CompileRun r(
        {"unit U;", "function f;", "const Two = 2;", "var static s = 4, t;", "begin t := Two; s := t end;"},
        false);
    EXPECT_EQ(r.Errors(), (StringList{"[U, 4] ERROR: static variables are always initialized to 0"}));
    EXPECT_EQ(r.Code(), (StringList{"FUNC f 0", "{", "  //symbol: T, reg: 24", "  alloc 1;", "  movc v8 2;",
                                    "  movv v24 v8;", "  movv v8 v24;", "  movv __f_s v8;", "}"}));
    EXPECT_EQ(r.compiler->Data().Globals, (StringList{"__f_s"}));
    // Locals, parameters and statics end with their function.
    EXPECT_EQ(r.Symbol("T"), nullptr);
    EXPECT_EQ(r.Symbol("S"), nullptr);
    EXPECT_EQ(r.Symbol("Two"), nullptr);
}

TEST(Functions, ForwardExternalAndBodilessDeclarations) {
    CompileRun r({"unit U;", "function Later(a); forward;", "function Gun(a, b); external;", "var g;",
                  "function Bare;", "function Later(z); begin z := 1 end;"});
    EXPECT_EQ(r.failure, "");
    EXPECT_TRUE(r.Has("[U, 2] *adding USER function forward declaration: Later"));
    EXPECT_TRUE(r.Has("[U, 3] adding WCP function Gun"));
    EXPECT_TRUE(r.Has("[U, 5] *adding USER function forward declaration: Bare"));
    ASSERT_TRUE(r.Symbol("gun"));
    EXPECT_EQ(r.Symbol("gun")->Kind, skGameFunction);
    EXPECT_EQ(r.Symbol("gun")->Register, 2);
    EXPECT_EQ(r.Symbol("later")->Kind, skUserFunction);
    EXPECT_NE(r.Symbol("later")->Value, 0);
    EXPECT_EQ(r.Symbol("bare")->Value, 0);
    EXPECT_EQ(r.Symbol("g")->Kind, skGlobalVar);
    EXPECT_EQ(r.Code(), (StringList{"FUNC Later 1", "{", "  //symbol: Z, reg: 16", "  movc v8 1;",
                                    "  movv v16 v8;", "}"}));
}

TEST(Functions, RedeclarationRules) {
    CompileRun twice({"unit U;", "function f; begin end;", "function f; begin end;"});
    EXPECT_EQ(twice.failure, "\r\nfunction \"f\" already implemented");
    EXPECT_TRUE(twice.Has("[U, 3] ERROR: \r\nfunction \"f\" already implemented"));
    CompileRun differs({"unit U;", "function f(a); forward;", "function f(a, b); begin end;"});
    EXPECT_EQ(differs.failure, "parameter list differs from previous declaration");
    // Without halting both are reported and the body is compiled.
    CompileRun recovered({"unit U;", "function f; begin end;", "function f(x); begin x := 1 end;"}, false, 0);
    EXPECT_EQ(recovered.Errors(),
              (StringList{"[U, 3] ERROR: \r\nfunction \"f\" already implemented",
                          "[U, 3] ERROR: parameter list differs from previous declaration"}));
    EXPECT_EQ(FunctionLines(recovered.Code(), "FUNC f 1").size(), 6u);
    // A body replaces a symbol of any kind; the old record's fields are read as a function's.
    CompileRun variable({"unit U;", "var f;", "function f; begin end;"});
    EXPECT_EQ(variable.failure, "");
    ASSERT_TRUE(variable.Symbol("f"));
    EXPECT_EQ(variable.Symbol("f")->Kind, skUserFunction);
    CompileRun initialised({"unit U;", "var f = 3;", "function f(a); begin end;"}, false, 0);
    EXPECT_EQ(initialised.Errors(),
              (StringList{"[U, 3] ERROR: \r\nfunction \"f\" already implemented",
                          "[U, 3] ERROR: parameter list differs from previous declaration"}));
    CompileRun external({"unit U;", "function f; external;", "function f; begin end;"});
    EXPECT_EQ(external.failure, "");
    EXPECT_EQ(external.Symbol("f")->Kind, skUserFunction);
}

} // namespace
} // namespace velkor::test
