#include "platform/strings.h"
#include "platform/text_file.h"
#include "tests/compiler/compile_run.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

namespace velkor {
namespace {

using test::CompileRun;

const std::filesystem::path kGolden = std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/compiler/golden";

// Compiles the header part of a unit, puts the lines the code generator would have made into its lists,
// links, and compares with the golden file line by line.
void ExpectGolden(CompileRun& r, const std::string& golden) {
    ASSERT_FALSE(r.threw) << r.All();
    const std::string linked = r.compiler->Link();
    ASSERT_TRUE(linked.ends_with("\r\n"));
    const auto lines = SplitLines(linked);
    EXPECT_EQ(NormaliseLineBreaks(linked), linked) << "every line ends in CR LF";
    if (std::getenv("VELKOR_WRITE_GOLDEN")) {
        std::string lf;
        for (const auto& l : lines) lf += l + "\n";
        test::WriteFile(kGolden / golden, lf);
    }
    const auto expected = SplitLines(test::ReadFile(kGolden / golden));
    for (size_t i = 0; i < std::min(lines.size(), expected.size()); ++i)
        ASSERT_EQ(lines[i], expected[i]) << golden << " line " << i + 1;
    EXPECT_EQ(lines.size(), expected.size());
}

TEST(UnitForms, Mission) {
    CompileRun r(
        "mission Patrol;\r\nvar kills = 3, Flag2;\r\n#GFPROC: \"GfMain\";\r\n#MAINPROC: \"Main\";\r\n"
        "#SECTOR: \"vega.sec\";\r\n#SETROOMS(\"a.rom\", \"b.rom\");\r\n#SETKILLBOARD(4, 7);\r\n"
        "#SETOUTPUTPATH(\"Out\");\r\n");
    auto& data = r.compiler->Data();
    data.CodeList = {"func Main", "{", "  movc v8 1;", "}"};
    data.Objects = {"FORM \"OBJ_\"", "{", "}"};
    data.Objectives = {"CHUNK \"MOBJ\"", "{", "  long 0 // hidden", "}"};
    data.RawList = {"// raw"};
    r.compiler->NameNumber = 12;
    ExpectGolden(r, "mission.txt");
    EXPECT_EQ(data.CrcNames, (StringList{"_ObjType_DO_NOT_MODIFY", "FLO_Main", "kills", "Flag2"}));
}

TEST(UnitForms, Sector) {
    CompileRun r("sector Vega;\r\n#BACKGROUND: $10;\r\nconst C = 1;\r\n");
    r.compiler->Data().Objects = {"FORM \"OBJ_\"", "{", "  CHUNK \"TYPE\"", "}"};
    ExpectGolden(r, "sector.txt");
}

TEST(UnitForms, Series) {
    CompileRun r("series Campaign;\r\n#MAINPROC: \"ignored\";\r\n");
    r.compiler->Data().CodeList = {"func FLO_Main", "{", "}"};
    r.compiler->Optimize = true;
    r.compiler->Finish();
    ExpectGolden(r, "series.txt");
    EXPECT_EQ(r.compiler->Data().Globals, (StringList{"must_have_at_least_one_flag"}));
}

TEST(UnitForms, IffUnitPassesItsTextOn) {
    CompileRun r("iff \"Out.bin\"\r\n{ form \"DATA\" { } }\r\n");
    r.compiler->SetOutputPath("game\\");
    EXPECT_EQ(r.compiler->UnitName, "Out.bin");
    EXPECT_EQ(r.compiler->Link(), "IFF \"Out.bin\"\r\n// iff \"Out.bin\"\r\n{ form \"DATA\" { } }\r\n");

    CompileRun placed;
    placed.compiler->SetOutputPath("Game\\Data");
    placed.Run("iff \"sub\\Out.bin\"\r\n");
    EXPECT_EQ(placed.compiler->Link(), "IFF \"game\\data\\Out.bin\"\r\n// iff \"sub\\Out.bin\"\r\n");
}

} // namespace
} // namespace velkor
