// TOptimizer: each pass's patterns and non-patterns, the order of the passes, the messages with their
// running line counter, and the optimiser run that Finish makes for mission units.
#include "codegen/listing_line.h"
#include "codegen/optimizer.h"
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

struct Optimized {
    StringList lines;
    StringList messages;
};

Optimized Optimize(const StringList& input, std::uint8_t verbosity = 3) {
    Optimized result;
    TOptimizer optimizer;
    optimizer.Verbosity = verbosity;
    optimizer.OnOutput = [&](const std::string& m) { result.messages.push_back(m); };
    optimizer.Load(input);
    optimizer.Run();
    result.lines = optimizer.Result();
    return result;
}

TEST(ListingLine, WordsAndIndentation) {
    EXPECT_EQ(ListingWords("  movc v8 \"a b\";"), (StringList{"movc", "v8", "a b"}));
    EXPECT_EQ(ListingWords("movv  v8 v9;"), (StringList{"movv", "", "v8", "v9;"}));
    EXPECT_EQ(ListingWords("label \"012w\" x"), (StringList{"label", "012w", "x"}));
    EXPECT_EQ(ListingWords("goto \"open"), (StringList{"goto", "open"}));
    EXPECT_EQ(ListingWords("   "), StringList{});
    EXPECT_EQ(ListingIndent("    movv v8 v9;"), "    ");
    EXPECT_EQ(ListingIndent("}"), "");
    EXPECT_EQ(WithoutSemicolon("v8;"), "v8");
    EXPECT_EQ(WithoutSemicolon("a;b;"), "ab;");
}

TEST(Optimizer, EmptyListing) {
    const Optimized r = Optimize({});
    EXPECT_TRUE(r.lines.empty());
    EXPECT_EQ(r.messages,
              (StringList{"[0] optimizing o3...", "[0] optimizing o8...", "[0] optimizing o5...",
                          "[0] optimizing o7...", "[0] optimizer reduced lines from 0 to 0 lines."}));
    EXPECT_EQ(Optimize({}, 1).messages, (StringList{"[0] optimizer reduced lines from 0 to 0 lines."}));
    EXPECT_TRUE(Optimize({}, 0).messages.empty());
}

TEST(Optimizer, ConstantForwardingKeepsTheIndentation) {
    TOptimizer o;
    StringList messages;
    o.OnOutput = [&](const std::string& m) { messages.push_back(m); };
    o.Load({"  movc v8 5;", "  movv v3 v8;", "  movv v4 v8;"});
    o.PassO3();
    EXPECT_EQ(o.Result(),
              (StringList{"//o3: movc v8 5;", "//o3: movv v3 v8;", "  movc v3 5;", "  movv v4 v8;"}));
    EXPECT_EQ(messages,
              (StringList{"[0] optimizing o3...", "[2] combining \"movc v8 5;\" and \"movv v3 v8;\""}));
}

TEST(Optimizer, ConstantForwardingNeedsAdjacentLines) {
    const Optimized r = Optimize({"movc v8 1;", "}", "movv v2 v8;", "movc v8 2;", "addv v8 v8 v9;",
                                  "movv v3 v8;", "MOVC v5 3;", "MOVV v6 v5;"});
    EXPECT_EQ(r.lines, (StringList{"movc v8 1;", "}", "movv v2 v8;", "movc v8 2;", "addv v8 v8 v9;",
                                   "movv v3 v8;", "movc v6 3;"}));
}

TEST(Optimizer, QuotedConstantsKeepTheirQuotesOnlyWithABlank) {
    EXPECT_EQ(Optimize({"movc v8 \"a b\";", "movv v2 v8;"}).lines, (StringList{"movc v2 \"a b\";"}));
    EXPECT_EQ(Optimize({"movc v8 \"ab\";", "movv v2 v8;"}).lines, (StringList{"movc v2 ab;"}));
}

TEST(Optimizer, ForwardedSelfMoveLeavesNothingForO8) {
    const Optimized r = Optimize({"movc v8 1;", "movv v8 v8;"});
    EXPECT_EQ(r.lines, (StringList{"movc v8 1;"}));
    EXPECT_EQ(r.messages,
              (StringList{"[0] optimizing o3...", "[2] combining \"movc v8 1;\" and \"movv v8 v8;\"",
                          "[2] optimizing o8...", "[5] optimizing o5...", "[8] optimizing o7...",
                          "[11] optimizer reduced lines from 2 to 1 lines."}));
}

TEST(Optimizer, SelfMovesDisappear) {
    TOptimizer o;
    StringList messages;
    o.OnOutput = [&](const std::string& m) { messages.push_back(m); };
    o.Load({"    movv v8 v8;", "movv v8 v9;"});
    o.PassO8();
    EXPECT_EQ(o.Result(), (StringList{"    //o8: movv v8 v8;", "movv v8 v9;"}));
    EXPECT_EQ(messages, (StringList{"[0] optimizing o8...", "[1] removing \"//o8: movv v8 v8;\""}));
    EXPECT_TRUE(Optimize({"movv v8 v8;"}).lines.empty());
}

TEST(Optimizer, MoveChainsCombineOncePerPass) {
    EXPECT_EQ(Optimize({"  movv v9 v8;", "  movv v4 v9;"}).lines, (StringList{"  movv v4 v8;"}));
    EXPECT_EQ(Optimize({"movv b a;", "movv c b;", "movv d c;"}).lines,
              (StringList{"movv c a;", "movv d c;"}));
    // A swap back is no chain.
    EXPECT_EQ(Optimize({"movv v9 v8;", "movv v8 v9;"}).lines, (StringList{"movv v9 v8;", "movv v8 v9;"}));
    // The comment o8 leaves breaks the chain.
    EXPECT_EQ(Optimize({"movv v9 v8;", "movv v8 v8;", "movv v4 v9;"}).lines,
              (StringList{"movv v9 v8;", "movv v4 v9;"}));
    // A block line between the moves breaks it too.
    EXPECT_EQ(Optimize({"movv v9 v8;", "{", "movv v4 v9;"}).lines,
              (StringList{"movv v9 v8;", "{", "movv v4 v9;"}));
}

TEST(Optimizer, TheCounterRunsOnAcrossPasses) {
    const Optimized r = Optimize({"movv v9 v8;", "movv v4 v9;", "if v8"});
    EXPECT_EQ(r.lines, (StringList{"movv v4 v8;", "if v8"}));
    EXPECT_EQ(r.messages,
              (StringList{"[0] optimizing o3...", "[3] optimizing o8...", "[6] optimizing o5...",
                          "[8] combining \"movv v9 v8;\" and \"movv v4 v9;\"", "[9] optimizing o7...",
                          "[13] optimizer reduced lines from 3 to 2 lines."}));
}

TEST(Optimizer, CommentsOfEveryKindAreDropped) {
    EXPECT_EQ(Optimize({"  //symbol: A, reg: 24", "//x", "  alloc 1;", "label \"010w\";", ""}).lines,
              (StringList{"  alloc 1;", "label \"010w\";", ""}));
}

TEST(Optimizer, FinishOptimizesMissionsButNotUnits) {
    const std::vector<std::string> body{"function f;", "var a;", "begin a := 1 + 2 end;"};
    std::vector<std::string> mission{"mission M;"};
    mission.insert(mission.end(), body.begin(), body.end());
    CompileRun r(mission, true, 1);
    r.compiler->Optimize = true;
    r.compiler->Finish();
    EXPECT_EQ(r.Code(), (StringList{"FUNC f 0", "{", "  alloc 2;", "  movc v25 1;", "  movc v9 2;",
                                    "  movv v8 v25;", "  addv v8 v8 v9;", "  movv v24 v8;", "}"}));
    // 13 lines in; o3 adds one line per pair it combines, so the later passes read 15 lines each.
    EXPECT_TRUE(r.Has("[58] optimizer reduced lines from 13 to 9 lines."));

    std::vector<std::string> unit{"unit U;"};
    unit.insert(unit.end(), body.begin(), body.end());
    CompileRun plain(unit);
    plain.compiler->Optimize = true;
    plain.compiler->Finish();
    EXPECT_EQ(plain.Code().size(), 13u);
}

TEST(Optimizer, LinearInTheListing) {
    StringList big;
    for (int i = 0; i < 100000; ++i) {
        big.push_back("  movc v8 " + std::to_string(i) + ";");
        big.push_back("  movv v24 v8;");
        big.push_back("  movv v9 v24;");
        big.push_back("  movv v25 v9;");
    }
    const Optimized r = Optimize(big, 1);
    ASSERT_EQ(r.lines.size(), 200000u);
    EXPECT_EQ(r.lines[0], "  movc v24 0;");
    EXPECT_EQ(r.lines[1], "  movv v25 v24;");
    EXPECT_EQ(r.lines[199998], "  movc v24 99999;");
}

} // namespace
} // namespace velkor::test
