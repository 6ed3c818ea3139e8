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

TEST(Functions, BodyHeadListsSymbolsAllocAndInitialValuesInReverseOrder) {
    CompileRun r(
        {"unit U;", "function Sum(x, y);", "var a = 1, b, c = $10;", "begin", "  a := x + y", "end;"});
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(r.Code(),
              (StringList{"FUNC Sum 2", "{", "  //symbol: __ST0, reg: 27", "  //symbol: C, reg: 26",
                          "  //symbol: B, reg: 25", "  //symbol: A, reg: 24", "  //symbol: Y, reg: 17",
                          "  //symbol: X, reg: 16", "  alloc 4;", "  movc v26 16;", "  movc v24 1;",
                          "  movv v8 v16;", "  movv v27 v8;", "  movv v8 v17;", "  movv v9 v8;",
                          "  movv v8 v27;", "  addv v8 v8 v9;", "  movv v24 v8;", "}"}));
    EXPECT_TRUE(r.Has("[U, 2] doing user function...Sum"));
    EXPECT_TRUE(r.Has("[U, 6] function used 4 registers"));
}

TEST(Functions, ParametersAloneReserveNothing) {
    CompileRun ok({"unit U;", "function f(x); begin x := 1 end;"});
    EXPECT_EQ(ok.Code(),
              (StringList{"FUNC f 1", "{", "  //symbol: X, reg: 16", "  movc v8 1;", "  movv v16 v8;", "}"}));
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

TEST(Functions, UnimplementedFunctionsAreReportedByFinishAtTheirDeclaration) {
    CompileRun r(
        {"unit U;", "function Never; forward;", "function Done; forward;", "function Done; begin end;"},
        false, 0, true);
    EXPECT_EQ(r.Errors(), (StringList{"[U, 2] ERROR: user function Never not implemented"}));
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

TEST(Functions, ResultReturnsFromEveryFunctionThatAssignsIt) {
    CompileRun r({"unit U;", "function f(a);", "begin", "  if (a) then result := 1 else result := 2", "end;",
                  "function g; begin g2 := 1 end;"},
                 false);
    EXPECT_EQ(
        FunctionLines(r.Code(), "FUNC f 1"),
        (StringList{"FUNC f 1", "{", "  //symbol: RESULT, reg: 24", "  //symbol: A, reg: 16", "  alloc 1;",
                    "  movv v8 v16;", "  if v8", "  {", "    movc v8 1;", "    movv v24 v8;", "  }", "  else",
                    "  {", "    movc v8 2;", "    movv v24 v8;", "  }", "  return v24;", "}"}));
    // g knows no result any more: its own assignment fails, and nothing returns.
    EXPECT_EQ(FunctionLines(r.Code(), "FUNC g 0"), (StringList{"FUNC g 0", "{", "  movc v8 0;", "}"}));
}

TEST(Functions, AUnitLevelResultMakesEveryFunctionReturnV0) {
    CompileRun r({"unit U;", "var result;", "function f; begin result := 1 end;", "function g; begin end;"});
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(FunctionLines(r.Code(), "FUNC f 0"),
              (StringList{"FUNC f 0", "{", "  movc v8 1;", "  movv result v8;", "  return v0;", "}"}));
    // The return line fills the body before the emptiness test.
    EXPECT_EQ(FunctionLines(r.Code(), "FUNC g 0"), (StringList{"FUNC g 0", "{", "  return v0;", "}"}));
    EXPECT_FALSE(r.Has("[U, 4] WARNING: Empty function body (g)"));
}

TEST(Functions, GameCallsCountRegistersDownFromV15) {
    std::vector<std::string> unit{"unit U;", "function Nine(a1, a2, a3, a4, a5, a6, a7, a8, a9); external;",
                                  "function f;", "begin Nine(1, 2, 3, 4, 5, 6, 7, 8, 9) end;"};
    CompileRun r(unit);
    EXPECT_EQ(r.failure, "");
    StringList expected{"FUNC f 0", "{"};
    for (int i = 0; i < 9; ++i) {
        expected.push_back("  movc v8 " + std::to_string(i + 1) + ";");
        expected.push_back("  movv v" + std::to_string(15 - i) + " v8;");
    }
    expected.push_back("  Nine v15 v14 v13 v12 v11 v10 v9 v8 v7;");
    expected.push_back("}");
    EXPECT_EQ(r.Code(), expected);
    EXPECT_TRUE(r.Has("[U, 4] warning: using v8 for wcp function call"));
    EXPECT_TRUE(r.Has("[U, 4] warning: using v7 for wcp function call"));
    EXPECT_FALSE(r.Has("[U, 4] warning: using v9 for wcp function call"));
}

TEST(Functions, ByNameArgumentsTakeNoRegister) {
    CompileRun r({"unit U;", "var Flag;", "const Limit = $20;", "function W(a, b, c, d); external;",
                  "function f;", "var loc;", "begin W(@Flag, loc, @Unknown_Name, @Limit) end;"});
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(r.Code(),
              (StringList{"FUNC f 0", "{", "  //symbol: LOC, reg: 24", "  alloc 1;", "  movv v8 v24;",
                          "  movv v15 v8;", "  W Flag v15 Unknown_Name 32;", "}"}));
}

TEST(Functions, CallArgumentErrors) {
    CompileRun missingComma({"unit U;", "function W(a, b); external;", "function f; begin W(1 2) end;"});
    EXPECT_EQ(missingComma.failure, "expected \",\" but found \"2\"");
    CompileRun noParens({"unit U;", "function W(a); external;", "function f; begin W end;"});
    EXPECT_EQ(noParens.failure, "expected \"(\" but found \"end\"");
    CompileRun tooFew({"unit U;", "function u(a, b); forward;", "function f; begin u(1) end;"});
    EXPECT_EQ(tooFew.failure, "expected \"<symbol>\" but found \")\"");
    // Without halting a failed argument ends the call without a report per missing argument.
    CompileRun recovered({"unit U;", "function u(a, b, c); forward;", "function f; begin u(zz); end;",
                          "function u(a, b, c); begin end;"},
                         false, 0);
    EXPECT_EQ(recovered.Errors(), (StringList{"[U, 3] ERROR: expected \"<symbol>\" but found \"zz\""}));
}

TEST(Functions, DeclarationErrors) {
    CompileRun name({"unit U;", "function 12; begin end;"});
    EXPECT_EQ(name.failure, "expected \"<Identifier>\" but found \"12\"");
    CompileRun parameter({"unit U;", "function f(a, 1); begin end;"});
    EXPECT_EQ(parameter.failure, "expected \"<Identifier>\" but found \"1\"");
    CompileRun semicolon({"unit U;", "function f(a) begin end;"});
    EXPECT_EQ(semicolon.failure, "expected \";\" but found \"begin\"");
}

} // namespace
} // namespace velkor::test
