// velkorc map: the demo mission against its golden picture, and the messages and exit statuses of what
// cannot be drawn.
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace velkor::test {
namespace {

const std::filesystem::path kSource(VELKOR_SOURCE_DIR);
const std::filesystem::path kCampaign = kSource / "examples/campaign";
// Textual IFF with objects of every kind of trouble, assembled in memory.
const std::string kCase = (kSource / "tests/iff/cases/map_objects.txt").string();

std::string Text(const Bytes& bytes) {
    return std::string(bytes.begin(), bytes.end());
}

// The string file the missions read, assembled into the folder.
void AssembleStrings(const TempDir& dir) {
    const ToolResult r =
        RunVelkorc({"asm", "--out-dir", dir.path().string(), (kCampaign / "campaign_eng.txt").string()});
    ASSERT_EQ(r.exitCode, 0) << r.err;
}

// The picture the README shows is the one velkorc draws of the demo mission, byte for byte.
TEST(VelkorcMap, TheDemoMissionMatchesItsGoldenPicture) {
    TempDir dir;
    AssembleStrings(dir);
    const ToolResult r = RunVelkorc({"map", "-v", "0", "-I", dir.path().string(),
                                     (kCampaign / "patrol.pas").string(), "-o", "patrol.svg"},
                                    dir.path());
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(ReadFile(dir / "patrol.svg"), ReadFile(kSource / "docs/maps/patrol.svg"));
}

// From the built binary file the positions and types are the same; only the names are hashes.
TEST(VelkorcMap, ABinaryFileIsReadAsItIs) {
    TempDir dir;
    const ToolResult r =
        RunVelkorc({"map", (kSource / "tests/golden/campaign/outpost.sec").string()}, dir.path());
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_NE(r.out.find("<text x=\"12\" y=\"27\" font-size=\"14\" font-weight=\"bold\" fill=\"#1f2933\">"
                         "outpost.sec (7 objects)</text>"),
              std::string::npos);
    EXPECT_NE(r.out.find("NAVPOINT&#10;x "), std::string::npos);
}

TEST(VelkorcMap, WhatCannotBeDrawnIsSaid) {
    TempDir dir;
    AssembleStrings(dir);
    const Bytes cargo = Form("OBJ_", {Chunk("TYPE", Str(std::string_view("CARGO\0", 6)))});
    WriteFile(dir / "none.sec", Text(Form("MED_", {Chunk("VERS", Str("abcd"))})));
    WriteFile(dir / "nowhere.sec", Text(Form("MED_", {Form("OBJS", {cargo})})));
    WriteFile(dir / "some.sec",
              Text(Form("MED_", {Form("OBJS", {cargo, Form("OBJ_", {Chunk("COMN", Bytes(16, 0))})})})));
    WriteFile(dir / "broken.sec", "FORM"); // a header cut short
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string err;
        bool written;
    };
    const Case cases[] = {
        {{"map", "none.sec", "-o", "out.svg"}, 1, "velkorc: none.sec: no game objects to map\n", false},
        {{"map", "nowhere.sec", "-o", "out.svg"},
         1,
         "velkorc: nowhere.sec: no object has a position\n",
         false},
        {{"map", "some.sec", "-o", "out.svg"},
         0,
         "velkorc: some.sec: object $00000000 has no position\n",
         true},
        {{"map", "-v", "0", "-I", dir.path().string(), (kCampaign / "frontier.pas").string(), "-o",
          "out.svg"},
         1,
         "velkorc: " + (kCampaign / "frontier.pas").string() + ": no game objects to map\n",
         false},
        {{"map", "missing.pas", "-o", "out.svg"}, 2, "Cannot open file \"missing.pas\"\n", false},
        {{"map", kCase, "-o", "out.svg"},
         0,
         "velkorc: " + kCase + ": object $00000000 has no position\nvelkorc: " + kCase +
             ": object $12345678 has no position\nvelkorc: " + kCase + ": object Bad has no position\n",
         true},
        {{"map", "broken.sec", "-o", "out.svg"},
         2,
         "velkorc: broken.sec: EIffReader_ErrorInForm: Error in Form \"\" at offset 0\n",
         false},
        {{"map", "--view", "front", "some.sec"},
         2,
         "velkorc: --view needs top, side or both\nTry 'velkorc --help'.\n",
         false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args[1]);
        std::filesystem::remove(dir / "out.svg");
        const ToolResult r = RunVelkorc(c.args, dir.path());
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_EQ(r.err, c.err);
        EXPECT_EQ(std::filesystem::exists(dir / "out.svg"), c.written);
    }
}

} // namespace
} // namespace velkor::test
