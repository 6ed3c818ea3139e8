#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(VelkorcTool, VersionAndUsage) {
    auto v = RunVelkorc({"--version"});
    EXPECT_EQ(v.exitCode, 0);
    EXPECT_EQ(v.out, "1.0 R24d\n");
    EXPECT_EQ(RunVelkorc({}).exitCode, 2);
    EXPECT_EQ(RunVelkorc({"frobnicate", "x"}).exitCode, 2);
    EXPECT_EQ(RunVelkorc({"tokens"}).exitCode, 2);
    EXPECT_EQ(RunVelkorc({"tokens", "--bogus", "x"}).exitCode, 2);
    auto help = RunVelkorc({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("--max-decode-size"), std::string::npos);
    EXPECT_NE(RunVelkorc({"tokens", "--help"}).out.find("velkorc tokens"), std::string::npos);
}

TEST(VelkorcTool, TokensOfAUnitWrittenWithLinuxLineBreaks) {
    TempDir dir;
    WriteFile(dir / "u.pas", "unit U; // c\n\nvar s = \"a\tb\\\";\n");
    const char* want = "1\t10\tunit\n1\t1\tU\n1\t27\t;\n3\t12\tvar\n3\t1\ts\n3\t2\t=\n3\t5\ta\\tb\\\\\n"
                       "3\t27\t;\n4\t7\t\n";
    auto standard = RunVelkorc({"tokens", (dir / "u.pas").string()});
    EXPECT_EQ(standard.exitCode, 0);
    EXPECT_EQ(standard.out, want);
    auto fast = RunVelkorc({"tokens", "--fast-scanner", (dir / "u.pas").string()});
    EXPECT_EQ(fast.out, want);
    auto flat = RunVelkorc({"tokens", "--no-line-markers", (dir / "u.pas").string()});
    EXPECT_EQ(flat.out, "1\t10\tunit\n1\t1\tU\n1\t27\t;\n1\t12\tvar\n1\t1\ts\n1\t2\t=\n1\t5\ta\\tb\\\\\n"
                        "1\t27\t;\n1\t7\t\n");
}

TEST(VelkorcTool, TokensStopsOnAScannerThatCannotMove) {
    TempDir dir;
    WriteFile(dir / "t.pas", "a ");
    auto r = RunVelkorc({"tokens", "--fast-scanner", (dir / "t.pas").string()});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "1\t1\ta\n1\t6\t\n");
    EXPECT_EQ(RunVelkorc({"tokens", (dir / "missing.pas").string()}).exitCode, 2);
}

} // namespace
} // namespace velkor::test
