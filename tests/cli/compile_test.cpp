#include "platform/strings.h"
#include "platform/text_file.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace velkor::test {
namespace {

namespace fs = std::filesystem;

bool Contains(const std::string& hay, const std::string& needle) {
    return hay.find(needle) != std::string::npos;
}

// A small campaign as it comes from a Windows machine: CR LF, "\" in paths, names in another letter case
// than the files on disk.
struct WindowsProject {
    TempDir dir;
    WindowsProject() {
        fs::create_directories(dir / "Proj" / "lib");
        fs::create_directories(dir / "Proj" / "missions");
        WriteFile(dir / "Proj" / "Campaign.pas", "series Campaign;\r\n"
                                                 "include \"Lib\\Helpers\";\r\n"
                                                 "var progress = 2;\r\n"
                                                 "#FILE \"MISSIONS\\M1.PAS\";\r\n");
        WriteFile(dir / "Proj" / "lib" / "HELPERS.pas",
                  "unit Helpers;\r\nconst Max = 10;\r\nvar shared;\r\n");
        WriteFile(dir / "Proj" / "missions" / "m1.pas",
                  "mission M1;\r\n#SECTOR: \"vega.sec\";\r\n#SETKILLBOARD(1, 2);\r\nvar done;\r\n");
    }
    std::string Unit() const { return (dir / "Proj" / "Campaign.pas").string(); }
    std::string Lib() const { return (dir / "PROJ" / "LIB").string(); }
};

TEST(VelkorcCompile, WindowsUnitCompilesUnchanged) {
    WindowsProject p;
    auto r = RunVelkorc({"compile", "-I", p.Lib(), "--out-dir", (p.dir / "out").string(), p.Unit()});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(r.out.starts_with("IFF \"Campaign.srs\"\r\n{\r\n  FORM \"SERS\"\r\n")) << r.out;
    EXPECT_TRUE(Contains(r.out, "      crc32 progress\r\n      long $EB1003A3\r\n      long 2\r\n"));
    EXPECT_TRUE(Contains(r.out, "      crc32 shared\r\n"));
    EXPECT_EQ(NormaliseLineBreaks(r.out), r.out);
    // #FILE units are built on the way, their files placed by --out-dir.
    EXPECT_EQ(ReadFile(p.dir / "out" / "M1.mis").substr(0, 4), "FORM");
    EXPECT_EQ(ReadFile(p.dir / "out" / "M1.iff").substr(0, 4), "FORM");
    EXPECT_TRUE(Contains(r.err, "] ** M1.mis ** ("));
    for (const auto& line : SplitLines(r.err)) EXPECT_EQ(line.front(), '[') << line;
}

TEST(VelkorcCompile, OutputFileAndVerbosity) {
    WindowsProject p;
    const std::string out = (p.dir / "linked.txt").string();
    auto quiet = RunVelkorc(
        {"compile", "-v", "0", "-I", p.Lib(), "-o", out, "--out-dir", p.dir.path().string(), p.Unit()});
    ASSERT_EQ(quiet.exitCode, 0) << quiet.err;
    EXPECT_EQ(quiet.out, "");
    EXPECT_TRUE(ReadFile(out).starts_with("IFF \"Campaign.srs\"\r\n"));
    // Level 0: only errors, hints and the written files.
    EXPECT_EQ(quiet.err, "[Campaign, 4] ** M1.mis ** (" + std::to_string(fs::file_size(p.dir / "M1.mis")) +
                             " bytes)\n[Campaign, 4] ** M1.iff ** (" +
                             std::to_string(fs::file_size(p.dir / "M1.iff")) + " bytes)\n");
}

TEST(VelkorcCompile, ErrorsAndExitStatus) {
    TempDir dir;
    WriteFile(dir / "bad.pas", "unit Bad;\nvar a;\n\nvar A;\nvar b;\n");
    for (const char* scanner : {"", "--fast-scanner"}) {
        std::vector<std::string> args{"compile", (dir / "bad.pas").string()};
        if (*scanner) args.insert(args.begin() + 1, scanner);
        auto halted = RunVelkorc(args);
        EXPECT_EQ(halted.exitCode, 1);
        EXPECT_EQ(halted.out, "");
        EXPECT_TRUE(Contains(halted.err, "[Bad, 4] ERROR: identifier \"A\" redeclared\n")) << halted.err;

        args.insert(args.begin() + 1, "--no-halt");
        auto recovered = RunVelkorc(args);
        EXPECT_EQ(recovered.exitCode, 1);
        EXPECT_TRUE(Contains(recovered.err, "[Bad, 4] recovering from error...\n"));
        EXPECT_TRUE(Contains(recovered.err, "[Bad, 5] now linking it all together...\n")) << recovered.err;
    }
    WriteFile(dir / "range.pas", "unit R;\r\nvar a = %1000000000000000000000000000000;\r\n");
    auto range = RunVelkorc({"compile", (dir / "range.pas").string()});
    EXPECT_EQ(range.exitCode, 1);
    EXPECT_TRUE(Contains(range.err, "Range check error\n")) << range.err;

    auto missing = RunVelkorc({"compile", (dir / "nope.pas").string()});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_NE(missing.err, "");
    WriteFile(dir / "good.pas", "unit G;\r\n");
    auto unwritable =
        RunVelkorc({"compile", "-o", (dir / "no" / "such" / "x.txt").string(), (dir / "good.pas").string()});
    EXPECT_EQ(unwritable.exitCode, 2);
    EXPECT_EQ(RunVelkorc({"compile", "-v", "9", (dir / "bad.pas").string()}).exitCode, 2);
}

// A unit-header command and a declaration list both end at their ";"; what follows them without one, or
// after one, is reported; a token quoted in a message shows its control bytes and bytes above 126 as \\xNN.
TEST(VelkorcCompile, CommandsAndListsEndAtTheirSemicolon) {
    TempDir dir;
    struct Case {
        const char* source;
        const char* error;
    };
    const Case cases[] = {
        {"mission M;\n#NAME: 5\nvar a;\n", "[M, 3] ERROR: expected \";\" but found \"var\"\n"},
        {"mission M;\n#BACKGROUND: 5\nvar a;\n", "[M, 3] ERROR: expected \";\" but found \"var\"\n"},
        {"unit U;\nvar a;\n  b, c;\n", "[U, 3] ERROR: expected \"<Declaration>\" but found \"b\"\n"},
        {"unit U;\nconst a = 1;\n  b = 2;\n", "[U, 3] ERROR: expected \"<Declaration>\" but found \"b\"\n"},
        {"unit U;\nexternal a;\n  b;\n", "[U, 3] ERROR: expected \"<Declaration>\" but found \"b\"\n"},
        {"unit U;\nvar a \"x\x1B[2J\x01\xFF\";\n",
         "[U, 2] ERROR: expected \";\" but found \"x\\x1B[2J\\x01\\xFF\"\n"},
    };
    for (const Case& c : cases) {
        WriteFile(dir / "unit.pas", c.source);
        const auto r = RunVelkorc({"compile", (dir / "unit.pas").string()});
        EXPECT_EQ(r.exitCode, 1) << c.source;
        EXPECT_TRUE(Contains(r.err, c.error)) << c.source << "\n" << r.err;
    }
    WriteFile(dir / "unit.pas", "mission M;\n#NAME: 5;\nvar a,\n  b;\nconst c = 1,\n  d = 2;\n");
    const auto good = RunVelkorc({"compile", (dir / "unit.pas").string()});
    EXPECT_EQ(good.exitCode, 0) << good.err;
    EXPECT_TRUE(Contains(good.out, "CHUNK \"NAME\"\r\n    {\r\n      long 5\r\n")) << good.out;
}

TEST(VelkorcCompile, NoHaltAlwaysTerminates) {
    TempDir dir;
    const char* texts[] = {
        "mission",
        "unit U; #",
        "unit U; #IFDEF",
        "unit U; #ELSE",
        "series S; #FILE",
        "unit U; include",
        "unit U; #SETROOMS(",
        "unit U; #STRINGS x[",
        "unit U; const a = b[",
        "unit U; var a = -",
        "\"",
        "unit U; #ADDPATHCONSTANT(\"x\", ",
        "unit U; #HINT(",
        "unit U; enum a = , b",
        "iff",
    };
    int i = 0;
    for (const char* text : texts) {
        const std::string name = "t" + std::to_string(i++) + ".pas";
        WriteFile(dir / name, text);
        auto r = RunVelkorc({"compile", "--no-halt", (dir / name).string()});
        EXPECT_LE(r.exitCode, 1) << text << "\n" << r.err;
    }
}

TEST(VelkorcSymbols, OneLinePerSymbol) {
    WindowsProject p;
    auto r = RunVelkorc({"symbols", "-I", p.Lib(), p.Unit()});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.err, "");
    const std::string helpers = LowerCase(p.Lib()) + "\\Helpers.pas";
    EXPECT_EQ(r.out, "MAX\t3\t" + helpers + "\t2\t10\t0\t0\n" + "SHARED\t0\t" + helpers +
                         "\t3\tshared\t0\t0\n" + "PROGRESS\t0\t" + p.Unit() + "\t3\tprogress\t0\t2\n");
    // Declarations only: #FILE units are not compiled.
    EXPECT_FALSE(fs::exists("M1.mis"));

    WriteFile(p.dir / "bad.pas", "unit Bad;\r\nvar a, a;\r\n");
    auto bad = RunVelkorc({"symbols", (p.dir / "bad.pas").string()});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_EQ(bad.err, "identifier \"A\" redeclared\n");
    EXPECT_EQ(bad.out, "A\t0\t" + (p.dir / "bad.pas").string() + "\t2\ta\t0\t0\n");
}

TEST(VelkorcBuild, WritesEveryFileItNames) {
    WindowsProject p;
    const fs::path out = p.dir / "out";
    auto r = RunVelkorc({"build", "-I", p.Lib(), "--out-dir", out.string(), p.Unit()});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const auto lines = SplitLines(r.out);
    ASSERT_EQ(lines.size(), 3u) << r.out;
    EXPECT_EQ(lines[0], "** " + (out / "M1.mis").string() + " ** (" +
                            std::to_string(fs::file_size(out / "M1.mis")) + " bytes)");
    EXPECT_EQ(lines[1], "** " + (out / "M1.iff").string() + " ** (" +
                            std::to_string(fs::file_size(out / "M1.iff")) + " bytes)");
    EXPECT_EQ(lines[2], "** " + (out / "Campaign.srs").string() + " ** (" +
                            std::to_string(fs::file_size(out / "Campaign.srs")) + " bytes)");
    const std::string srs = ReadFile(out / "Campaign.srs");
    EXPECT_EQ(srs.substr(0, 4), "FORM");
    EXPECT_EQ(srs.substr(8, 4), "SERS");

    WriteFile(p.dir / "bad.pas", "mission Bad;\r\nvar a, a;\r\n");
    auto bad = RunVelkorc({"build", "--no-halt", "--out-dir", out.string(), (p.dir / "bad.pas").string()});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_FALSE(fs::exists(out / "Bad.mis"));
}

} // namespace
} // namespace velkor::test
