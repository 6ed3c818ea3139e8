// Statements: dispatch, compound statements, assignment and the implicit result, if/else, the three loops
// with their labels, break, inc and dec, with exact lines and message texts.
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

// function f(p) with locals a (v24) and b (v25); the body's statements start on line 7.
std::vector<std::string> Unit(const std::vector<std::string>& body) {
    std::vector<std::string> lines{
        "unit U;",        "var g;",    "const K = 7;", "function ext(x1); external;",
        "function f(p);", "var a, b;", "begin"};
    lines.insert(lines.end(), body.begin(), body.end());
    lines.push_back("end;");
    return lines;
}

// f's body after its head lines, without the closing brace.
StringList Body(const CompileRun& r) {
    const StringList lines = FunctionLines(r.Code(), "FUNC f 1");
    StringList body;
    size_t i = 2;
    while (i < lines.size() && (lines[i].starts_with("  //symbol:") || lines[i].starts_with("  alloc "))) ++i;
    for (; i + 1 < lines.size(); ++i) body.push_back(lines[i]);
    return body;
}

TEST(Statements, IfElseWithSingleStatements) {
    CompileRun r(Unit({"if (a) then b := 1 else b := 2"}));
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(Body(r), (StringList{"  movv v8 v24;", "  if v8", "  {", "    movc v8 1;", "    movv v25 v8;",
                                   "  }", "  else", "  {", "    movc v8 2;", "    movv v25 v8;", "  }"}));
}

TEST(Statements, IfWithCompoundAndNoElse) {
    CompileRun r(Unit({"if (a) then begin b := 1; g := b end;", "a := 2"}));
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(Body(r),
              (StringList{"  movv v8 v24;", "  if v8", "  {", "    movc v8 1;", "    movv v25 v8;",
                          "    movv v8 v25;", "    movv g v8;", "  }", "  movc v8 2;", "  movv v24 v8;"}));
}

TEST(Statements, IfNeedsParenthesesAndThen) {
    CompileRun bare(Unit({"if a then b := 1"}));
    EXPECT_EQ(bare.failure, "expected \"(\" but found \"a\"");
    CompileRun noThen(Unit({"if (a) b := 1"}));
    EXPECT_EQ(noThen.failure, "expected \"then\" but found \"b\"");
}

TEST(Statements, WhileLoopLabelsComeFromTheConditionsLine) {
    CompileRun r(Unit({"while (a) do", "  a := 0"}));
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(Body(r), (StringList{"  label \"008w\";", "  movv v8 v24;", "  if v8", "  {", "    movc v8 0;",
                                   "    movv v24 v8;", "  }", "  else", "  {", "    goto \"008e\";", "  }",
                                   "  goto \"008w\";", "  label \"008e\";"}));
}

TEST(Statements, UntilLoopRunsItsBodyWhileTheConditionIsFalse) {
    CompileRun r(Unit({"until (a) do begin a := 1 end"}));
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(Body(r), (StringList{"  label \"008w\";", "  movv v8 v24;", "  if v8", "  {",
                                   "    goto \"008e\";", "  }", "  else", "  {", "    movc v8 1;",
                                   "    movv v24 v8;", "  }", "  goto \"008w\";", "  label \"008e\";"}));
}

TEST(Statements, ForLoopKeepsItsFinalValueInASlotThatIsNeverPopped) {
    CompileRun r(Unit({"for a := 1 to p do g := a;", "for b := 0 to 3 do g := b"}));
    EXPECT_EQ(r.failure, "");
    const StringList lines = FunctionLines(r.Code(), "FUNC f 1");
    EXPECT_EQ(
        StringList(lines.begin() + 2, lines.begin() + 8),
        (StringList{"  //symbol: __ST1, reg: 27", "  //symbol: __ST0, reg: 26", "  //symbol: B, reg: 25",
                    "  //symbol: A, reg: 24", "  //symbol: P, reg: 16", "  alloc 4;"}));
    EXPECT_EQ(Body(r), (StringList{"  movc v8 1;",
                                   "  movv v24 v8;",
                                   "  movv v8 v16;",
                                   "  movv v26 v8;",
                                   "  label \"008f\";",
                                   "  opv v24 4 v26;",
                                   "  if v1",
                                   "  {",
                                   "    goto \"008e\";",
                                   "  }",
                                   "  else",
                                   "  {",
                                   "    movv v8 v24;",
                                   "    movv g v8;",
                                   "  }",
                                   "  addc v24 v24 1;",
                                   "  goto \"008f\";",
                                   "  label \"008e\";",
                                   "  movc v8 0;",
                                   "  movv v25 v8;",
                                   "  movc v8 3;",
                                   "  movv v27 v8;",
                                   "  label \"009f\";",
                                   "  opv v25 4 v27;",
                                   "  if v1",
                                   "  {",
                                   "    goto \"009e\";",
                                   "  }",
                                   "  else",
                                   "  {",
                                   "    movv v8 v25;",
                                   "    movv g v8;",
                                   "  }",
                                   "  addc v25 v25 1;",
                                   "  goto \"009f\";",
                                   "  label \"009e\";"}));
    EXPECT_TRUE(r.Has("[U, 8] push final value for the loop counter onto the stack"));
}

TEST(Statements, ForLoopCounterMustBeALocalOrParameter) {
    CompileRun global(Unit({"for g := 1 to 2 do a := 1"}));
    EXPECT_EQ(global.failure, "for loop variable must be a local variable or parameter");
    CompileRun unknown(Unit({"for zz := 1 to 2 do a := 1"}));
    EXPECT_EQ(unknown.failure, "expected \"<symbol>\" but found \"zz\"");
    CompileRun parameter(Unit({"for p := 1 to 2 do a := p"}));
    EXPECT_EQ(parameter.failure, "");
}

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

TEST(Statements, BreakJumpsToTheInnermostLoopsEnd) {
    CompileRun r(Unit({"while (a) do", "  while (b) do break;"}));
    EXPECT_EQ(r.failure, "");
    const StringList body = Body(r);
    ASSERT_GE(body.size(), 6u);
    EXPECT_EQ(StringList(body.begin() + 4, body.begin() + 7),
              (StringList{"    label \"009w\";", "    movv v8 v25;", "    if v8"}));
    EXPECT_NE(std::find(body.begin(), body.end(), "      goto \"009e\";"), body.end());
}

TEST(Statements, BreakReadsItsOwnSemicolon) {
    CompileRun alone(Unit({"while (a) do begin break; end"}));
    EXPECT_EQ(alone.failure, "");
    CompileRun followed(Unit({"while (a) do begin break; a := 1 end"}));
    EXPECT_EQ(followed.failure, "expected \";\" but found \"a\"");
    CompileRun doubled(Unit({"while (a) do begin break;; a := 1 end"}));
    EXPECT_EQ(doubled.failure, "");
    CompileRun outside(Unit({"break;"}));
    EXPECT_EQ(outside.failure, "break is not allowed here");
}

TEST(Statements, IncAndDec) {
    CompileRun r(Unit({"inc(a);", "dec(g, 3);", "inc(p, a)"}));
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(Body(r), (StringList{"  movc v8 1;", "  addv v24 v24 v8;", "  movc v8 3;", "  subv g g v8;",
                                   "  movv v8 v24;", "  addv v16 v16 v8;"}));
}

TEST(Statements, IncChecksReportEveryRuleThatApplies) {
    CompileRun constant(Unit({"inc(K)"}), false);
    EXPECT_EQ(constant.Errors(), (StringList{"[U, 8] ERROR: cannot modify a constant",
                                             "[U, 8] ERROR: cannot modify a symbol of this type"}));
    EXPECT_EQ(Body(constant), (StringList{"  movc v8 1;"}));
    CompileRun function(Unit({"dec(ext)"}), false);
    EXPECT_EQ(function.Errors(),
              (StringList{"[U, 8] ERROR: I don't think you want to assign a value to a function?",
                          "[U, 8] ERROR: cannot modify a symbol of this type"}));
    CompileRun stack(Unit({"a := 1 + 2;", "inc(__ST0)"}), false);
    EXPECT_EQ(stack.Errors(), (StringList{"[U, 9] ERROR: FATAL: trying to access the stack (__ST0)",
                                          "[U, 9] ERROR: cannot modify a symbol of this type"}));
    CompileRun unknown(Unit({"inc(zz)"}));
    EXPECT_EQ(unknown.failure, "expected \"<Identifier>\" but found \"zz\"");
    CompileRun halted(Unit({"inc(K)"}));
    EXPECT_EQ(halted.failure, "cannot modify a constant");
}

TEST(Statements, ResultIsCreatedOnFirstAssignmentAndReturned) {
    CompileRun r(Unit({"result := a"}));
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(FunctionLines(r.Code(), "FUNC f 1"),
              (StringList{"FUNC f 1", "{", "  //symbol: RESULT, reg: 26", "  //symbol: B, reg: 25",
                          "  //symbol: A, reg: 24", "  //symbol: P, reg: 16", "  alloc 3;", "  movv v8 v24;",
                          "  movv v26 v8;", "  return v26;", "}"}));
    EXPECT_TRUE(r.Has("[U, 7] adding local variable: result [reg: 26]"));
}

TEST(Statements, DispatchErrors) {
    CompileRun constant(Unit({"K := 1"}));
    EXPECT_EQ(constant.failure, "cannot assign to constant");
    CompileRun unknown(Unit({"zz := 1"}));
    EXPECT_EQ(unknown.failure, "expected \"<statement>\" but found \"zz\"");
    CompileRun object({"unit U;", "object Ship;", "function f; begin Ship := 1 end;"});
    EXPECT_EQ(object.failure,
              "FATAL - symbol \"Ship\" has unknown symbol type (7). Don't know what do do with it. - "
              "This should never happen!");
    CompileRun nested(Unit({"begin a := 1 end"}));
    EXPECT_EQ(nested.failure, "expected \"<statement>\" but found \"begin\"");
    CompileRun assignment(Unit({"a = 1"}));
    EXPECT_EQ(assignment.failure, "expected \":=\" but found \"=\"");
}

TEST(Statements, CompoundNeedsSemicolonsBetweenStatements) {
    CompileRun r(Unit({"a := 1", "b := 2"}));
    EXPECT_EQ(r.failure, "expected \";\" but found \"b\"");
    CompileRun trailing(Unit({"a := 1;", "b := 2;"}));
    EXPECT_EQ(trailing.failure, "");
    EXPECT_EQ(Body(trailing),
              (StringList{"  movc v8 1;", "  movv v24 v8;", "  movc v8 2;", "  movv v25 v8;"}));
}

TEST(Statements, NullStatementConsumesItsSemicolon) {
    CompileRun r(Unit({";"}));
    EXPECT_EQ(r.failure, "");
    EXPECT_TRUE(r.Has("[U, 8] NULL statement"));
}

TEST(Statements, CallStatements) {
    CompileRun r({"unit U;", "function two(x, y); forward;", "function ext(x1, x2); external;",
                  "function none; forward;", "function f;", "var a;",
                  "begin two(1, a); two(1 2); ext(a, 2); none end;"});
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(FunctionLines(r.Code(), "FUNC f 0"), (StringList{"FUNC f 0",
                                                               "{",
                                                               "  //symbol: A, reg: 24",
                                                               "  alloc 1;",
                                                               "  movc v8 1;",
                                                               "  push v8;",
                                                               "  movv v8 v24;",
                                                               "  push v8;",
                                                               "  call two 2;",
                                                               "  movc v8 1;",
                                                               "  push v8;",
                                                               "  movc v8 2;",
                                                               "  push v8;",
                                                               "  call two 2;",
                                                               "  movv v8 v24;",
                                                               "  movv v15 v8;",
                                                               "  movc v8 2;",
                                                               "  movv v14 v8;",
                                                               "  ext v15 v14;",
                                                               "  call none 0;",
                                                               "}"}));
    EXPECT_TRUE(r.Has("[U, 7] doing USER function call..."));
    EXPECT_TRUE(r.Has("[U, 7] doing WCP function call..."));
}

TEST(Statements, CallsWithoutParametersTakeNoParentheses) {
    CompileRun user({"unit U;", "function none; forward;", "function f; begin none() end;"});
    EXPECT_EQ(user.failure, "expected \";\" but found \"(\"");
    CompileRun game({"unit U;", "function Now; external;", "function f;", "var a;", "begin a := Now() end;"});
    EXPECT_EQ(game.failure, "expected \";\" but found \"(\"");
    EXPECT_EQ(FunctionLines(game.Code(), "FUNC f 0"),
              (StringList{"FUNC f 0", "{", "  Now;", "  movv v8 v0;", "  movv v24 v8;"}));
}

} // namespace
} // namespace velkor::test
