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

TEST(UnitForms, MissionWithoutGlobalsOrProcedures) {
    CompileRun r("mission Empty;\r\n");
    const std::string linked = r.compiler->Link();
    EXPECT_NE(linked.find("IFF \"Empty.mis\"\r\n"), std::string::npos);
    EXPECT_NE(
        linked.find("      crc32 must_have_at_least_one_flag\r\n      long $EB1003A3\r\n      long 0\r\n"),
        std::string::npos);
    EXPECT_NE(linked.find("      long 3\r\n      crc32 _ObjType_DO_NOT_MODIFY\r\n      crc32 FLO_Main\r\n"
                          "      crc32 must_have_at_least_one_flag\r\n"),
              std::string::npos);
    EXPECT_EQ(linked.find("$59F32AC2"), std::string::npos);
    EXPECT_EQ(linked.find("$164A8982"), std::string::npos);
    size_t types = 0;
    for (size_t at = 0; (at = linked.find("CHUNK $56A0F92F // OBJ_PROP_TYPE", at)) != std::string::npos; ++at)
        ++types;
    EXPECT_EQ(types, 2u);
    EXPECT_NE(linked.find("cstring \"cerberus.rom\""), std::string::npos);
    EXPECT_NE(linked.find("cstring \"e.sec\""), std::string::npos);
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

// Object and objective lines stand behind a fixed number of blanks whatever the depth of their form, and
// NUMO counts the lines of the objectives list, not the objectives.
TEST(UnitForms, ObjectsAndObjectivesFromSource) {
    CompileRun r("mission M;\r\n#NAME: 3;\r\nobject N (Nav1) AS NAVPOINT x: 1; y: 2; z: 3; end;\r\n"
                 "objective O hidden: 0; type: 1; text: 7; status: 0; counter: 2; end;\r\n");
    ASSERT_FALSE(r.threw) << r.All();
    const std::string linked = r.compiler->Link();
    const std::string objects = "      FORM \"OBJS\"\r\n"
                                "      {\r\n"
                                "        FORM \"OBJ_\"\r\n"
                                "        {\r\n"
                                "          CHUNK \"TYPE\"\r\n"
                                "          {\r\n"
                                "            cstring \"NAVPOINT\"\r\n"
                                "          }\r\n"
                                "          CHUNK \"COMN\"\r\n"
                                "          {\r\n"
                                "            crc32 \"Nav1\"\r\n"
                                "            float 1\r\n"
                                "            float 2\r\n"
                                "            float 3\r\n"
                                "          }\r\n"
                                "          FORM \"PLST\"\r\n"
                                "          {\r\n"
                                "            FORM \"PROP\"\r\n"
                                "            {\r\n"
                                "              CHUNK $56A0F92F // OBJ_PROP_TYPE\r\n"
                                "              {\r\n"
                                "                long 21\r\n"
                                "              }\r\n"
                                "            }\r\n"
                                "          }\r\n"
                                "        }\r\n"
                                "      }\r\n"
                                "    }\r\n"
                                "    FORM \"ROOM\"\r\n";
    EXPECT_NE(linked.find(objects), std::string::npos) << linked;
    const std::string iff = "IFF \"M.iff\"\r\n"
                            "{\r\n"
                            "  FORM \"MISN\"\r\n"
                            "  {\r\n"
                            "    CHUNK \"NAME\"\r\n"
                            "    {\r\n"
                            "      long 3\r\n"
                            "    }\r\n"
                            "    FORM \"MOBJ\"\r\n"
                            "    {\r\n"
                            "      CHUNK \"NUMO\"\r\n"
                            "      {\r\n"
                            "        long 12\r\n"
                            "      }\r\n"
                            "      CHUNK \"MOBJ\"\r\n"
                            "      {\r\n"
                            "        long 0 // hidden\r\n"
                            "        long 1 // type\r\n"
                            "        long 7 // string1\r\n"
                            "        long 7 // string2\r\n"
                            "        long 0 // status\r\n"
                            "        long 2 // counter\r\n"
                            "        long 0\r\n"
                            "        long 0\r\n"
                            "        long 0\r\n"
                            "      }\r\n"
                            "    }\r\n"
                            "    FORM \"PLTS\"\r\n"
                            "    {\r\n"
                            "    }\r\n"
                            "    FORM \"KLBD\"\r\n"
                            "    {\r\n"
                            "      CHUNK \"PLST\"\r\n"
                            "      {\r\n"
                            "      }\r\n"
                            "    }\r\n"
                            "  }\r\n"
                            "}\r\n";
    EXPECT_TRUE(linked.ends_with(iff)) << linked;
}

TEST(UnitForms, SectorObjectsKeepTheirEightBlanks) {
    CompileRun r("sector S;\r\nobject L (Sun) AS LIGHT x: 0; y: 0; z: 0; end;\r\n");
    ASSERT_FALSE(r.threw) << r.All();
    const std::string linked = r.compiler->Link();
    EXPECT_NE(linked.find("    FORM \"OBJS\"\r\n    {\r\n        FORM \"OBJ_\"\r\n        {\r\n"
                          "          CHUNK \"TYPE\"\r\n"),
              std::string::npos)
        << linked;
    EXPECT_NE(linked.find("        }\r\n    }\r\n  }\r\n  FORM \"EDTR\"\r\n"), std::string::npos) << linked;
}

TEST(UnitForms, OtherKindsAreTheRawListAlone) {
    CompileRun unit("unit U;\r\nvar a;\r\n");
    unit.compiler->Data().RawList = {"IFF \"x\"", "{", "}"};
    EXPECT_EQ(unit.compiler->Link(), "IFF \"x\"\r\n{\r\n}\r\n");
    CompileRun project("project P;\r\n");
    EXPECT_EQ(project.compiler->Link(), "");
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
