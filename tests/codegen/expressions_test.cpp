// Expressions: the exact lines of every operator, the expression stack, signs, NOT, and factors of every
// symbol kind. Each case compiles one assignment in a function with two locals, so the first stack slot is
// v26.
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

// unit U; globals g (flag), e (external); constants K, H, T; enum; objective; object; function f(p) with
// locals a (v24) and b (v25); the statement stands on line 12.
std::vector<std::string> Unit(const std::string& statement, const std::string& extra = "") {
    return {"unit U;",
            "var g;",
            "external e;",
            "const K = 7, H = $10, T = \"a b\", Fl = 1.5;",
            "enum Red, Green;",
            "objective Goal hidden: 0; type: 1; text: 2; status: 0; counter: 0; end;",
            "object Alpha (Alpha) AS SHIP x: 0; y: 0; z: 0; end;",
            "function ext(x1, x2); external;",
            "function user(u1); forward;",
            "function f(p);",
            "var a, b;" + extra,
            "begin " + statement,
            "end;"};
}

// The lines of f's body after its head (symbol lines and alloc), without the closing brace.
StringList Statement(const CompileRun& r) {
    StringList lines = FunctionLines(r.Code(), "FUNC f 1");
    StringList body;
    bool inBody = false;
    for (size_t i = 2; i + 1 < lines.size(); ++i) {
        if (!inBody && (lines[i].starts_with("  //symbol:") || lines[i].starts_with("  alloc "))) continue;
        inBody = true;
        body.push_back(lines[i]);
    }
    return body;
}

StringList Compiled(const std::string& statement) {
    CompileRun r(Unit(statement));
    EXPECT_EQ(r.failure, "") << statement;
    return Statement(r);
}

TEST(Expressions, AdditionUsesTheFirstStackSlotAndFoldsNothing) {
    CompileRun r(Unit("a := 1 + 2"));
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(FunctionLines(r.Code(), "FUNC f 1"),
              (StringList{"FUNC f 1", "{", "  //symbol: __ST0, reg: 26", "  //symbol: B, reg: 25",
                          "  //symbol: A, reg: 24", "  //symbol: P, reg: 16", "  alloc 3;", "  movc v8 1;",
                          "  movv v26 v8;", "  movc v8 2;", "  movv v9 v8;", "  movv v8 v26;",
                          "  addv v8 v8 v9;", "  movv v24 v8;", "}"}));
    EXPECT_TRUE(r.Has("[U, 12] adding stack variable: __ST0 [reg: 26]"));
    EXPECT_TRUE(r.Has("[U, 12] push __ST0"));
    EXPECT_TRUE(r.Has("[U, 12] pop __ST0"));
}

TEST(Expressions, EveryOperatorRow) {
    const std::vector<std::pair<std::string, StringList>> rows = {
        {"-", {"  subv v8 v8 v9;"}},
        {"or", {"  orv v8 v8 v9;"}},
        {"*", {"  mulv v8 v8 v9;"}},
        {"/", {"  divv v8 v8 v9;"}},
        {"And", {"  andv v8 v8 v9;"}},
        {"=", {"  opv v8 0 v9;", "  movv v8 v1;"}},
        {"<", {"  opv v8 2 v9;", "  movv v8 v1;"}},
        {">", {"  opv v8 4 v9;", "  movv v8 v1;"}},
        {"<>", {"  opv v8 0 v9;", "  movv v8 v1;", "  opc v8 0 0;", "  movv v8 v1;"}},
        {"aint", {"  opv v8 0 v9;", "  movv v8 v1;", "  opc v8 0 0;", "  movv v8 v1;"}},
    };
    for (const auto& [op, tail] : rows) {
        StringList expected{"  movv v8 v25;", "  movv v26 v8;", "  movv v8 v16;", "  movv v9 v8;",
                            "  movv v8 v26;"};
        expected.insert(expected.end(), tail.begin(), tail.end());
        expected.push_back("  movv v24 v8;");
        EXPECT_EQ(Compiled("a := b " + op + " p"), expected) << op;
    }
}

TEST(Expressions, OperatorsOfOneLevelAssociateToTheLeft) {
    EXPECT_EQ(Compiled("a := 1 - 2 - 3"),
              (StringList{"  movc v8 1;", "  movv v26 v8;", "  movc v8 2;", "  movv v9 v8;", "  movv v8 v26;",
                          "  subv v8 v8 v9;", "  movv v26 v8;", "  movc v8 3;", "  movv v9 v8;",
                          "  movv v8 v26;", "  subv v8 v8 v9;", "  movv v24 v8;"}));
}

TEST(Expressions, MultiplicationBindsTighterAndNestingTakesDeeperSlots) {
    EXPECT_EQ(Compiled("a := 1 + 2 * 3"),
              (StringList{"  movc v8 1;", "  movv v26 v8;", "  movc v8 2;", "  movv v27 v8;", "  movc v8 3;",
                          "  movv v9 v8;", "  movv v8 v27;", "  mulv v8 v8 v9;", "  movv v9 v8;",
                          "  movv v8 v26;", "  addv v8 v8 v9;", "  movv v24 v8;"}));
    CompileRun r(Unit("a := (a + (b + (p + g)))"));
    EXPECT_EQ(r.failure, "");
    ASSERT_TRUE(r.Code().size() > 4);
    const StringList head = FunctionLines(r.Code(), "FUNC f 1");
    EXPECT_EQ(StringList(head.begin() + 2, head.begin() + 9),
              (StringList{"  //symbol: __ST2, reg: 28", "  //symbol: __ST1, reg: 27",
                          "  //symbol: __ST0, reg: 26", "  //symbol: B, reg: 25", "  //symbol: A, reg: 24",
                          "  //symbol: P, reg: 16", "  alloc 5;"}));
    EXPECT_EQ(
        Statement(r),
        (StringList{"  movv v8 v24;", "  movv v26 v8;", "  movv v8 v25;", "  movv v27 v8;", "  movv v8 v16;",
                    "  movv v28 v8;", "  movv v8 g;", "  movv v9 v8;", "  movv v8 v28;", "  addv v8 v8 v9;",
                    "  movv v9 v8;", "  movv v8 v27;", "  addv v8 v8 v9;", "  movv v9 v8;", "  movv v8 v26;",
                    "  addv v8 v8 v9;", "  movv v24 v8;"}));
}

TEST(Expressions, SignsApplyAfterTheTerm) {
    EXPECT_EQ(Compiled("a := -5"),
              (StringList{"  movc v8 5;", "  movc v9 0;", "  subv v8 v9 v8;", "  movv v24 v8;"}));
    // The sign of a term negates the whole product.
    EXPECT_EQ(Compiled("a := -b * p"), (StringList{"  movv v8 v25;", "  movv v26 v8;", "  movv v8 v16;",
                                                   "  movv v9 v8;", "  movv v8 v26;", "  mulv v8 v8 v9;",
                                                   "  movc v9 0;", "  subv v8 v9 v8;", "  movv v24 v8;"}));
    EXPECT_EQ(Compiled("a := b - -p"), (StringList{"  movv v8 v25;", "  movv v26 v8;", "  movv v8 v16;",
                                                   "  movc v9 0;", "  subv v8 v9 v8;", "  movv v9 v8;",
                                                   "  movv v8 v26;", "  subv v8 v8 v9;", "  movv v24 v8;"}));
    // A leading "+" or OR is read and has no effect; a sign of a factor comes after the factor.
    EXPECT_EQ(Compiled("a := + b"), (StringList{"  movv v8 v25;", "  movv v24 v8;"}));
    EXPECT_EQ(Compiled("a := or b"), (StringList{"  movv v8 v25;", "  movv v24 v8;"}));
    EXPECT_EQ(Compiled("a := b * - p"), (StringList{"  movv v8 v25;", "  movv v26 v8;", "  movv v8 v16;",
                                                    "  movc v9 0;", "  subv v8 v9 v8;", "  movv v9 v8;",
                                                    "  movv v8 v26;", "  mulv v8 v8 v9;", "  movv v24 v8;"}));
}

TEST(Expressions, NotAppliesToTheWholeRelationChain) {
    const StringList expected{"  movv v8 v25;", "  movv v26 v8;", "  movv v8 v16;", "  movv v9 v8;",
                              "  movv v8 v26;", "  opv v8 0 v9;", "  movv v8 v1;",  "  opc v8 0 0;",
                              "  movv v8 v1;",  "  movv v24 v8;"};
    EXPECT_EQ(Compiled("a := NOT b = p"), expected);
    StringList parenthesised = Compiled("a := not (b = p)");
    EXPECT_EQ(parenthesised, expected);
}

TEST(Expressions, XorNeverContinuesAnExpression) {
    CompileRun r(Unit("a := b XOR p"), false);
    ASSERT_FALSE(r.Errors().empty());
    EXPECT_EQ(r.Errors().front(), "[U, 12] ERROR: expected \";\" but found \"XOR\"");
    EXPECT_EQ(Statement(r), (StringList{"  movv v8 v25;", "  movv v24 v8;"}));
}

TEST(Expressions, ModReportsAndStillEmitsItsTwoLines) {
    CompileRun r(Unit("a := b mod p"), false);
    EXPECT_EQ(r.Errors(), (StringList{"[U, 12] ERROR: mod not implemented!"}));
    EXPECT_EQ(Statement(r),
              (StringList{"  movv v8 v25;", "  movv v26 v8;", "  movv v8 v16;", "  movv v9 v8;",
                          "  movv v8 v26;", "  divv v8 v8 v9;", "  mulc v8 v8 v9;", "  movv v24 v8;"}));
    CompileRun halted(Unit("a := b MOD p"));
    EXPECT_EQ(halted.failure, "mod not implemented!");
}

TEST(Expressions, NumberLiterals) {
    EXPECT_EQ(Compiled("a := $1F"), (StringList{"  movc v8 31;", "  movv v24 v8;"}));
    EXPECT_EQ(Compiled("a := %1010"), (StringList{"  movc v8 10;", "  movv v24 v8;"}));
    EXPECT_EQ(Compiled("a := $FFFFFFFF"), (StringList{"  movc v8 -1;", "  movv v24 v8;"}));
    CompileRun tooLong(Unit("a := %" + std::string(32, '1')));
    EXPECT_EQ(tooLong.failure, std::string(32, '1') + " doesn't fit into a long");
    CompileRun notBinary(Unit("a := %102"));
    EXPECT_EQ(notBinary.failure, "2 in binary constant ?!? What are you smoking?");
    CompileRun fraction(Unit("a := 1.5"));
    EXPECT_EQ(fraction.failure, "\"1.5\" is not a valid integer value");
}

TEST(Expressions, FactorsOfEverySymbolKind) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"p", "  movv v8 v16;"},       {"g", "  movv v8 g;"},     {"e", "  movv v8 e;"},
        {"K", "  movc v8 7;"},         {"h", "  movc v8 16;"},    {"T", "  movc v8 \"a b\";"},
        {"Fl", "  movc v8 1.5;"},      {"Green", "  movc v8 1;"}, {"goal", "  movc v8 0;"},
        {"alpha", "  movc v8 Alpha;"},
    };
    for (const auto& [factor, line] : cases)
        EXPECT_EQ(Compiled("a := " + factor), (StringList{line, "  movv v24 v8;"}));
}

TEST(Expressions, StaticVariablesLoadByTheirStorageName) {
    CompileRun r(Unit("a := s + s", " var static s;"));
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(Statement(r),
              (StringList{"  movv v8 __f_s;", "  movv v26 v8;", "  movv v8 __f_s;", "  movv v9 v8;",
                          "  movv v8 v26;", "  addv v8 v8 v9;", "  movv v24 v8;"}));
}

TEST(Expressions, CallsAsFactorsTakeTheResultFromV0) {
    EXPECT_EQ(Compiled("a := ext(b, 2)"),
              (StringList{"  movv v8 v25;", "  movv v15 v8;", "  movc v8 2;", "  movv v14 v8;",
                          "  ext v15 v14;", "  movv v8 v0;", "  movv v24 v8;"}));
    EXPECT_EQ(Compiled("a := user(b)"), (StringList{"  movv v8 v25;", "  push v8;", "  call user 1;",
                                                    "  movv v8 v0;", "  movv v24 v8;"}));
}

TEST(Expressions, Errors) {
    CompileRun unknown(Unit("a := zz"));
    EXPECT_EQ(unknown.failure, "expected \"<symbol>\" but found \"zz\"");
    EXPECT_TRUE(unknown.Has("[U, 12] ERROR: expected \"<symbol>\" but found \"zz\""));
    CompileRun unclosed(Unit("a := (b + 1"));
    EXPECT_EQ(unclosed.failure, "expected \")\" but found \"end\"");
    CompileRun empty(Unit("a := ;"));
    EXPECT_EQ(empty.failure, "expected \"<symbol>\" but found \";\"");
    // A string is no symbol, even when its text names one.
    CompileRun text(Unit("a := \"b\""));
    EXPECT_EQ(text.failure, "expected \"<symbol>\" but found \"b\"");
}

TEST(Expressions, SlotsShareTheLocalRegisters) {
    // Six locals take v24..v29; the third slot would be v32.
    CompileRun r({"unit U;", "function f;", "var a, b, c, d, e, f2;", "begin a := 1 + (2 + (3 + 4)) end;"});
    EXPECT_EQ(r.failure, "Expression too complex");
    EXPECT_TRUE(r.Has("[U, 4] adding stack variable: __ST2 [reg: 32]"));
}

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
