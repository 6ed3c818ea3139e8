// Generated missions and series, compiled with and without the optimiser: what the assembler makes of them
// decodes with every function as a listing, and the decoded text assembles to the very same bytes.
#include "compiler/compiler.h"
#include "iff/iff_decoder.h"
#include "tests/support/decode_roundtrip.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace velkor::test {
namespace {

class UnitGenerator {
public:
    explicit UnitGenerator(std::uint32_t seed) : rng_(seed) {}

    std::string Unit(bool series) {
        out_.clear();
        Line(series ? "series gen;" : "mission gen;");
        Line("#MAINPROC: \"Main\";");
        for (const char* f : {"WaitSeconds(s)", "IsAlive(o)", "ShowTextFrom(t, o)", "OrderAttack(a, b)"})
            Line(std::string("function ") + f + "; external;");
        std::string globals = "var";
        for (int i = 0; i < 6; ++i) globals += (i ? ", g" : " g") + std::to_string(i) + " = " + Number();
        Line(globals + ";");
        functions_.clear();
        for (int f = 0, count = 2 + Below(5); f < count; ++f) Function("Task" + std::to_string(f), Below(4));
        Function("Main", 0);
        return out_;
    }

private:
    int Below(int n) { return static_cast<int>(rng_() % static_cast<std::uint32_t>(n)); }
    std::string Number() { return std::to_string(Below(5) == 0 ? Below(2000000) : Below(100)); }
    void Line(const std::string& line) { out_ += line + "\r\n"; }

    std::string Operand() {
        switch (Below(5)) {
        case 0: return "g" + std::to_string(Below(6));
        case 1: return Number();
        case 2: return params_ > 0 ? "p" + std::to_string(Below(params_)) : "t";
        default: return "t";
        }
    }
    std::string Expression(int depth = 0) {
        // Every nesting level takes an expression-stack register; a function has eight for its locals and
        // stack, and a for loop keeps one until the function ends.
        if (depth > 1 || Below(3) == 0) return Operand();
        static const char* const kOps[] = {"+", "-", "*", "/", "AND", "OR"};
        return "(" + Expression(depth + 1) + " " + kOps[Below(6)] + " " + Expression(depth + 1) + ")";
    }
    std::string Condition() {
        static const char* const kRelations[] = {"=", "<", ">", "<>"};
        return Expression(1) + " " + kRelations[Below(4)] + " " + Expression(1);
    }

    void Statement(int depth) {
        switch (depth > 1 ? Below(3) : Below(8)) {
        case 0: Line("  t := " + Expression() + ";"); break;
        case 1: Line("  WaitSeconds(" + Operand() + ");"); break;
        case 2:
            if (!functions_.empty()) {
                const auto& [name, arity] =
                    functions_[static_cast<std::size_t>(Below(static_cast<int>(functions_.size())))];
                std::string args;
                for (int a = 0; a < arity; ++a) args += (a ? ", " : "") + Expression(1);
                Line("  t := " + name + (arity ? "(" + args + ")" : "") + ";");
            }
            break;
        case 3:
            Line("  if (" + Condition() + ") then");
            Line("  begin");
            Statement(depth + 1);
            Line("  end");
            Line("  else");
            Line("    g" + std::to_string(Below(6)) + " := t;");
            break;
        case 4:
            Line("  while (" + Condition() + ") do");
            Line("  begin");
            Statement(depth + 1);
            Line("    if (t > 100) then break;");
            Line("  end;");
            break;
        case 5:
            if (forLoops_++ == 0) {
                Line("  for i := 1 to " + std::to_string(1 + Below(9)) + " do");
                Line("    OrderAttack(t, i);");
            }
            break;
        case 6: Line("  until (IsAlive(" + Operand() + ") = 0) do WaitSeconds(1);"); break;
        default: Line("  ShowTextFrom(" + Operand() + ", " + Operand() + ");"); break;
        }
    }

    void Function(const std::string& name, int params) {
        params_ = params;
        forLoops_ = 0;
        std::string head = "function " + name;
        for (int p = 0; p < params; ++p) head += (p ? ", p" : "(p") + std::to_string(p);
        Line(head + (params ? ");" : ";"));
        Line("var i, t = 0, result;");
        Line("begin");
        for (int s = 0, count = 1 + Below(12); s < count; ++s) Statement(0);
        Line("  result := t;");
        Line("end;");
        functions_.emplace_back(name, params);
    }

    std::mt19937 rng_;
    std::string out_;
    int params_ = 0;
    int forLoops_ = 0;
    std::vector<std::pair<std::string, int>> functions_;
};

TEST(FunctionListings, GeneratedUnitsDecodeToListingsThatAssembleToTheSameBytes) {
    TempDir dir;
    int listed = 0;
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        UnitGenerator generator(seed);
        const std::string source = generator.Unit(seed % 3 == 0);
        TCompiler compiler;
        compiler.Optimize = seed % 2 == 0;
        compiler.Verbosity = 0;
        compiler.OnOutput = [](const std::string&) {};
        compiler.SetSource(source);
        std::string linked;
        try {
            compiler.Compile();
            compiler.Finish();
            linked = compiler.Link();
        } catch (const Exception& e) {
            FAIL() << e.what() << "\n" << source;
        }
        const Assembled built = Assemble(linked, ScannerClass::Standard, dir.path());
        ASSERT_EQ(built.error, "") << linked;
        for (const auto& [name, bytes] : built.files) {
            if (!name.ends_with(".mis") && !name.ends_with(".srs")) continue; // the files with functions
            const DecodedIff decoded = DecodeIff(bytes, name, 1024);
            EXPECT_EQ(decoded.text.find("//function record"), std::string::npos) << decoded.text;
            if (decoded.text.find("WCP_ASM") != std::string::npos) ++listed;
            for (ScannerClass scanner : {ScannerClass::Standard, ScannerClass::Fast}) {
                const Assembled back = AssembleDecoded(decoded, dir.path(), scanner);
                ASSERT_EQ(back.error, "") << decoded.text;
                ASSERT_EQ(back.files.size(), 1u);
                EXPECT_EQ(back.files[0].second, bytes) << source << "\n" << decoded.text;
            }
        }
    }
    EXPECT_EQ(listed, 60);
}

} // namespace
} // namespace velkor::test
