// TOptimizer's single passes, the words of a listing line, and a run linear in the listing.
#include "codegen/listing_line.h"
#include "codegen/optimizer.h"

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

TEST(Optimizer, SelfMovesDisappear) {
    TOptimizer o;
    StringList messages;
    o.OnOutput = [&](const std::string& m) { messages.push_back(m); };
    o.Load({"    movv v8 v8;", "movv v8 v9;"});
    o.PassO8();
    EXPECT_EQ(o.Result(), (StringList{"    //o8: movv v8 v8;", "movv v8 v9;"}));
    EXPECT_EQ(messages, (StringList{"[0] optimizing o8...", "[1] removing \"//o8: movv v8 v8;\""}));
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
