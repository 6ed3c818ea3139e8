// Hostile and huge input: deep nesting ends in an error instead of a stack overflow, and a large unit
// compiles.
#include "scanner/scanner.h"
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

std::string Repeat(const std::string& text, int count) {
    std::string out;
    out.reserve(text.size() * static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) out += text;
    return out;
}

TEST(Robustness, DeepParenthesesEndInExpressionTooComplex) {
    const std::string deep = "a := " + Repeat("(", 100000) + "1" + Repeat(")", 100000);
    CompileRun halted({"unit U;", "function f;", "var a;", "begin " + deep + " end;"});
    EXPECT_EQ(halted.failure, "Expression too complex");
    CompileRun recovered(
        {"unit U;", "function f;", "var a;", "begin " + deep + "; a := 2 end;", "function g; begin end;"},
        false, 0);
    ASSERT_FALSE(recovered.Errors().empty());
    EXPECT_EQ(recovered.Errors(), (StringList{"[U, 4] ERROR: Expression too complex"}));
    // The statement after it and the next function are still compiled.
    const StringList f = FunctionLines(recovered.Code(), "FUNC f 0");
    ASSERT_GE(f.size(), 3u);
    EXPECT_EQ(f[f.size() - 2], "  movv v24 v8;");
    EXPECT_EQ(FunctionLines(recovered.Code(), "FUNC g 0").size(), 4u);
}

TEST(Robustness, ModerateNestingIsFine) {
    const std::string nested = "a := " + Repeat("(", 200) + "1" + Repeat(")", 200);
    CompileRun r({"unit U;", "function f;", "var a;", "begin " + nested + " end;"});
    EXPECT_EQ(r.failure, "");
}

TEST(Robustness, DeepStatementsAndCallsEndInAnError) {
    const std::string ifs = Repeat("if (a) then ", 50000) + "a := 1";
    CompileRun statements({"unit U;", "function f;", "var a;", "begin " + ifs + " end;"});
    EXPECT_EQ(statements.failure, "Expression too complex");
    CompileRun recovered({"unit U;", "function f;", "var a;", "begin " + ifs + "; a := 2 end;"}, false, 0);
    EXPECT_EQ(recovered.Errors(), (StringList{"[U, 4] ERROR: Expression too complex"}));
    // Every block the abandoned statements opened is closed.
    int open = 0;
    for (const auto& line : recovered.Code()) {
        const auto text =
            line.substr(line.find_first_not_of(' ') == std::string::npos ? 0 : line.find_first_not_of(' '));
        open += text == "{" ? 1 : text == "}" ? -1 : 0;
        ASSERT_GE(open, 0);
    }
    EXPECT_EQ(open, 0);
    EXPECT_EQ(recovered.Code()[recovered.Code().size() - 2], "  movv v24 v8;");
    const std::string calls = "a := " + Repeat("u(", 50000) + "1" + Repeat(")", 50000);
    CompileRun nestedCalls(
        {"unit U;", "function u(x); forward;", "function f;", "var a;", "begin " + calls + " end;"}, false,
        0);
    ASSERT_FALSE(nestedCalls.Errors().empty());
    EXPECT_EQ(nestedCalls.Errors().front(), "[U, 5] ERROR: Expression too complex");
}

TEST(Robustness, ALargeUnitCompiles) {
    // 20,000 functions of 5 lines: 100,000 lines. The fast scanner counts lines past 99,999, which the
    // line markers of the standard scanner cannot.
    std::vector<std::string> lines{"mission Big;", "var total;"};
    for (int i = 0; i < 20000; ++i) {
        const std::string n = std::to_string(i);
        lines.push_back("function f" + n + "(p);");
        lines.push_back("var a = " + n + ", b;");
        lines.push_back("begin");
        lines.push_back("  while (a < p) do begin inc(a); total := total + a * 2 end; result := a");
        lines.push_back("end;");
    }
    const ScannerClass previous = GetScannerClass();
    SetScannerClass(ScannerClass::Fast);
    CompileRun r(lines, true, 0, true);
    SetScannerClass(previous);
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(r.Code().size(), 20000u * 45u);
}

} // namespace
} // namespace velkor::test
