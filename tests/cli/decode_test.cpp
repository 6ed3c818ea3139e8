#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace velkor::test {
namespace {

std::string Be(std::uint32_t v) {
    std::string s;
    for (int i = 3; i >= 0; --i) s += static_cast<char>(v >> (8 * i));
    return s;
}

std::string Chunk(const std::string& id, const std::string& data) {
    return id + Be(static_cast<std::uint32_t>(data.size())) + data +
           (data.size() % 2 ? std::string(1, '\0') : "");
}

std::string Form(const std::string& type, const std::string& body) {
    return "FORM" + Be(static_cast<std::uint32_t>(body.size() + 4)) + type + body;
}

std::string Bytes(std::size_t n, int seed) {
    std::string s(n, '\0');
    for (std::size_t i = 0; i < n; ++i)
        s[i] = static_cast<char>((i * 7 + static_cast<std::size_t>(seed)) & 0xFF);
    return s;
}

const std::string kSmall = Form("TEST", Chunk("DATA", "\x01\x02\x03") + Chunk("BULL", "\xFF"));

TEST(VelkorcDecode, WritesTheTextBesideTheFileAndPrintsNothing) {
    TempDir dir;
    WriteFile(dir / "small.iff", kSmall);
    const ToolResult r = RunVelkorc({"decode", "small.iff"}, dir.path());
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(ReadFile(dir / "small.iff.pas"), "IFF \"small.iff\"\r\n"
                                               "{\r\n"
                                               "  FORM \"TEST\"\r\n"
                                               "  {\r\n"
                                               "    CHUNK \"DATA\"\r\n"
                                               "    {\r\n"
                                               "      BYTE [3] $01 $02 $03\r\n"
                                               "    }\r\n"
                                               "    CHUNK \"BULL\"\r\n"
                                               "    {\r\n"
                                               "      BYTE [1] $FF\r\n"
                                               "    }\r\n"
                                               "  }\r\n"
                                               "}\r\n");
    std::filesystem::rename(dir / "small.iff", dir / "original.iff");
    const ToolResult back = RunVelkorc({"asm", "small.iff.pas"}, dir.path());
    EXPECT_EQ(back.exitCode, 0) << back.err;
    EXPECT_EQ(ReadFile(dir / "small.iff"), kSmall);
}

TEST(VelkorcDecode, OutputFileSideFilesAndTheLimit) {
    TempDir dir;
    const std::string file = Form("TEST", Chunk("BIGG", Bytes(41, 3)) + Chunk("EDGE", Bytes(40, 5)));
    WriteFile(dir / "in.iff", file);
    std::filesystem::create_directories(dir / "out");
    const ToolResult r =
        RunVelkorc({"decode", "--max-decode-size", "40", "-o", "out/text.pas", "in.iff"}, dir.path());
    EXPECT_EQ(r.exitCode, 0) << r.err;
    const std::string text = ReadFile(dir / "out" / "text.pas");
    EXPECT_NE(text.find("      // offset: C\r\n      // size: 29\r\n      file \"in.iff_BIGG_C.bin\"\r\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(ReadFile(dir / "out" / "in.iff_BIGG_C.bin"), Bytes(41, 3));
    EXPECT_NE(text.find("CHUNK \"EDGE\"\r\n    {\r\n      BYTE [16]"), std::string::npos);

    const ToolResult back = RunVelkorc({"asm", "--out-dir", "again", "out/text.pas"}, dir.path());
    EXPECT_EQ(back.exitCode, 0) << back.err;
    EXPECT_EQ(ReadFile(dir / "again" / "in.iff"), file);
}

std::string Le(std::uint32_t v) {
    std::string s;
    for (int i = 0; i < 4; ++i) s += static_cast<char>(v >> (8 * i));
    return s;
}

std::string Fl(float v) {
    return Le(std::bit_cast<std::uint32_t>(v));
}

// The bullet record is exactly the limit of 40 bytes and stays inline; the chunk "TXT " has one byte more and
// goes to a side file whose name keeps the id's blank.
TEST(VelkorcDecode, TheWholeTextByteForByte) {
    TempDir dir;
    const std::string bullet = Le(7) + Le(1234) + Le(0xFFFFFFFF) + Fl(1500) + Fl(2000) + Fl(0.25f) + Fl(10) +
                               Fl(20.5f) + Fl(0.75f) + Le(1);
    const std::string file = Form(
        "WEAP", Chunk(std::string("\x01ID\x7F", 4), std::string("\x0A\x1F\x00", 3)) +
                    Form("BULL", Chunk("DATA", bullet)) + Form("TIME", Chunk("TIME", Fl(1.5f) + Fl(0.125f))) +
                    Chunk("TXT ", Bytes(41, 1)) + Chunk("EDGE", Bytes(18, 2)));
    WriteFile(dir / "w.iff", file);
    const ToolResult r = RunVelkorc({"decode", "--max-decode-size", "40", "w.iff"}, dir.path());
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(ReadFile(dir / "w.iff.pas"),
              "IFF \"w.iff\"\r\n"
              "{\r\n"
              "  FORM \"WEAP\"\r\n"
              "  {\r\n"
              "    CHUNK $7F444901\r\n"
              "    {\r\n"
              "      BYTE [3] $0A $1F $00\r\n"
              "    }\r\n"
              "    FORM \"BULL\"\r\n"
              "    {\r\n"
              "      CHUNK \"DATA\"\r\n"
              "      {\r\n"
              "        long 7                //bullet ID\r\n"
              "        long 1234             //name (points to a string in spacefli.eng)\r\n"
              "        long -1               //sound\r\n"
              "        float 1500.0          //speed\r\n"
              "        float 2000.0          //range\r\n"
              "        float 0.25            //charge time\r\n"
              "        float 10.0            //energy\r\n"
              "        float 20.5            //damage\r\n"
              "        float 0.75            //refire delay\r\n"
              "        long 1                //needs ammo\r\n"
              "      }\r\n"
              "    }\r\n"
              "    FORM \"TIME\"\r\n"
              "    {\r\n"
              "      CHUNK \"TIME\"\r\n"
              "      {\r\n"
              "             float 1.50\r\n"
              "             float 0.125\r\n"
              "      }\r\n"
              "    }\r\n"
              "    CHUNK \"TXT \"\r\n"
              "    {\r\n"
              "      // offset: 70\r\n"
              "      // size: 29\r\n"
              "      file \"w.iff_TXT _70.bin\"\r\n"
              "    }\r\n"
              "    CHUNK \"EDGE\"\r\n"
              "    {\r\n"
              "      BYTE [16] $02 $09 $10 $17 $1E $25 $2C $33 $3A $41 $48 $4F $56 $5D $64 $6B\r\n"
              "      BYTE [2] $72 $79\r\n"
              "    }\r\n"
              "  }\r\n"
              "}\r\n");
    EXPECT_EQ(ReadFile(dir / "w.iff_TXT _70.bin"), Bytes(41, 1));
    std::filesystem::rename(dir / "w.iff", dir / "original.iff");
    const ToolResult back = RunVelkorc({"asm", "w.iff.pas"}, dir.path());
    EXPECT_EQ(back.exitCode, 0) << back.err;
    EXPECT_EQ(ReadFile(dir / "w.iff"), file);
}

TEST(VelkorcDecode, ExactFloatsKeepEveryBit) {
    TempDir dir;
    const std::string tenth("\xCD\xCC\xCC\x3D", 4); // 0.1f
    const std::string third("\xAB\xAA\xAA\x3E", 4); // 1/3f
    const std::string file = Form("MESH", Chunk("RADI", tenth + third));
    WriteFile(dir / "m.iff", file);
    ASSERT_EQ(RunVelkorc({"decode", "m.iff"}, dir.path()).exitCode, 0);
    EXPECT_NE(ReadFile(dir / "m.iff.pas").find("float 0.33\r\n"), std::string::npos);
    ASSERT_EQ(RunVelkorc({"decode", "--exact-floats", "m.iff"}, dir.path()).exitCode, 0);
    const std::string text = ReadFile(dir / "m.iff.pas");
    EXPECT_NE(text.find("float 0.1\r\n"), std::string::npos);
    EXPECT_NE(text.find("float 0.33333334\r\n"), std::string::npos);
    std::filesystem::remove(dir / "m.iff");
    ASSERT_EQ(RunVelkorc({"asm", "m.iff.pas"}, dir.path()).exitCode, 0);
    EXPECT_EQ(ReadFile(dir / "m.iff"), file);
}

TEST(VelkorcDecode, FailuresAreReportedPerFileAndTheOthersStillDecode) {
    TempDir dir;
    WriteFile(dir / "good.iff", kSmall);
    WriteFile(dir / "text.txt", "hello world, no IFF here");
    WriteFile(dir / "tiny.iff", "FO");
    WriteFile(dir / "cut.iff", kSmall.substr(0, 16));
    const ToolResult r =
        RunVelkorc({"decode", "missing.iff", "text.txt", "good.iff", "tiny.iff", "cut.iff"}, dir.path());
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "velkorc: missing.iff: Cannot open file \"missing.iff\": No such file or directory\n"
                     "velkorc: text.txt: TIffReader: text.txtnot a valid .iff file!\n"
                     "velkorc: tiny.iff: TIffReader: tiny.iffnot a valid .iff file!\n"
                     "velkorc: cut.iff: EIffReader_ErrorInChunk: Error in Chunk \"DATA\" at offset C\n");
    EXPECT_TRUE(std::filesystem::exists(dir / "good.iff.pas"));
    // A file named twice is decoded once and reported for each name.
    const ToolResult twice =
        RunVelkorc({"decode", "good.iff", "./good.iff", "cut.iff", "cut.iff"}, dir.path());
    EXPECT_EQ(twice.exitCode, 2);
    EXPECT_EQ(twice.err, "velkorc: cut.iff: EIffReader_ErrorInChunk: Error in Chunk \"DATA\" at offset C\n"
                         "velkorc: cut.iff: EIffReader_ErrorInChunk: Error in Chunk \"DATA\" at offset C\n");
    EXPECT_FALSE(std::filesystem::exists(dir / "text.txt.pas"));
    EXPECT_FALSE(std::filesystem::exists(dir / "cut.iff.pas"));
}

// A truncated file and a form of odd size decode, with exit status 0; stderr says why the text is not
// exact, and the text assembles into the whole file of what was there. Ids in messages are quoted visibly.
TEST(VelkorcDecode, TruncatedAndOddFilesDecodeAndSaySo) {
    TempDir dir;
    const std::string whole = Form("TEST", Chunk("DATA", "\x01\x02\x03\x04") + Chunk("MORE", "\x05\x06"));
    WriteFile(dir / "cut.iff", whole.substr(0, 24));
    WriteFile(dir / "odd.iff", "FORM" + Be(17) + "TEST" + Chunk("ABCD", "\x01\x02\x03\x04\x05"));
    // Not "nul.iff": on Windows that names the null device.
    WriteFile(dir / "zero.iff", Form("TEST", std::string("N\0ME", 4) + Be(8) + "abcd"));
    const ToolResult r = RunVelkorc({"decode", "cut.iff", "odd.iff"}, dir.path());
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(
        r.err,
        "velkorc: cut.iff: the file is truncated: form TEST at offset 00000000 ends at 00000022, the "
        "data at 00000018: the decode is not exact\n"
        "velkorc: odd.iff: form TEST at offset 00000000 has the odd size 17, which the text cannot keep: "
        "the decode is not exact\n");
    for (const char* text : {"cut.iff.pas", "odd.iff.pas"})
        ASSERT_EQ(RunVelkorc({"asm", "--out-dir", "back", text}, dir.path()).exitCode, 0) << text;
    EXPECT_EQ(ReadFile(dir / "back" / "cut.iff"), Form("TEST", Chunk("DATA", "\x01\x02\x03\x04")));
    std::string odd = ReadFile(dir / "odd.iff");
    odd[7] = 18;
    EXPECT_EQ(ReadFile(dir / "back" / "odd.iff"), odd);

    const ToolResult nul = RunVelkorc({"decode", "zero.iff"}, dir.path());
    EXPECT_EQ(nul.exitCode, 2);
    EXPECT_EQ(nul.err,
              "velkorc: zero.iff: TIffReader: Chunk (N\\x00ME) at offset 0000000C runs past the end of the "
              "data!\n");
}

TEST(VelkorcDecode, ManyFilesAtOnceGiveWhatOneAtATimeGives) {
    TempDir together, alone;
    std::vector<std::string> names;
    for (int i = 0; i < 24; ++i) {
        std::string body;
        for (int c = 0; c <= i % 5; ++c)
            body += Chunk("C" + std::to_string(c) + "__",
                          Bytes(static_cast<std::size_t>(i * 13 + c * 50), i + c));
        body += Form("SUBF", Chunk("RADI", Bytes(static_cast<std::size_t>(4 * i + 4), i)));
        const std::string name = "f" + std::to_string(i) + ".iff";
        WriteFile(together / name, Form("TEST", body));
        WriteFile(alone / name, Form("TEST", body));
        names.push_back(name);
    }
    std::vector<std::string> args = {"decode", "--max-decode-size", "100"};
    args.insert(args.end(), names.begin(), names.end());
    ASSERT_EQ(RunVelkorc(args, together.path()).exitCode, 0);
    for (const std::string& name : names)
        ASSERT_EQ(RunVelkorc({"decode", "--max-decode-size", "100", name}, alone.path()).exitCode, 0);
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(alone.path())) {
        const std::string name = entry.path().filename().string();
        EXPECT_EQ(ReadFile(together / name), ReadFile(entry.path())) << name;
        ++files;
    }
    EXPECT_GT(files, 2 * names.size()); // side files included
}

// A text that cannot give back the same bytes is said so on stderr, file by file; the decode succeeds.
TEST(VelkorcDecode, LossyDecodesAreReported) {
    TempDir dir;
    struct Case {
        std::string name;
        std::string bytes;
        std::string note; // empty for an exact decode
    };
    const std::vector<Case> cases = {
        {"exact.iff", kSmall, ""},
        {"tail.iff", kSmall + std::string(2, '\0'),
         "2 bytes at offset 00000022 lie behind the last form and are left out: the decode is not exact"},
        {"type.iff", Form(std::string("T\x01ST", 4), Chunk("DATA", "\x01")),
         "the form type cannot be written as it is and becomes \"T_ST\": the decode is not exact"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WriteFile(dir / c.name, c.bytes);
        const ToolResult r = RunVelkorc({"decode", c.name}, dir.path());
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.err, c.note.empty() ? "" : "velkorc: " + c.name + ": " + c.note + "\n");
        EXPECT_TRUE(std::filesystem::exists(dir / (c.name + ".pas")));
    }
}

} // namespace
} // namespace velkor::test

namespace velkor::test {
namespace {

// The campaign's missions and series: their functions as listings with the library's names, or with
// --no-disassemble as a side file of bytes; either text assembles to the same bytes.
TEST(VelkorcDecode, FunctionsAsListingsOrAsBytes) {
    const std::filesystem::path golden = std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/golden/campaign";
    for (const char* name : {"patrol.mis", "escort.mis", "frontier.srs"}) {
        SCOPED_TRACE(name);
        TempDir dir;
        const std::string original = ReadFile(golden / name);
        WriteFile(dir / name, original);
        for (const bool listing : {true, false}) {
            std::vector<std::string> args{"decode", "-o", "out/text.pas", name};
            if (!listing) args.insert(args.begin() + 1, "--no-disassemble");
            std::filesystem::create_directories(dir / "out");
            const ToolResult r = RunVelkorc(args, dir.path());
            ASSERT_EQ(r.exitCode, 0) << r.err;
            const std::string text = ReadFile(dir / "out" / "text.pas");
            EXPECT_EQ(text.find("WCP_ASM") != std::string::npos, listing);
            EXPECT_EQ(text.find("\r\n        func ") != std::string::npos, listing);
            EXPECT_EQ(text.find("CHUNK $164A8982 // OBJ_PROP_PROG_MAIN\r\n") != std::string::npos, listing);
            EXPECT_EQ(text.find("//function record"), std::string::npos);
            const ToolResult back = RunVelkorc({"asm", "--out-dir", "again", "out/text.pas"}, dir.path());
            ASSERT_EQ(back.exitCode, 0) << back.err;
            EXPECT_EQ(ReadFile(dir / "again" / name), original);
            std::filesystem::remove_all(dir / "out");
            std::filesystem::remove_all(dir / "again");
        }
    }
    const ToolResult help = RunVelkorc({"decode", "--help"}, std::filesystem::current_path());
    EXPECT_NE(help.out.find("--no-disassemble writes them as byte rows"), std::string::npos) << help.out;
}

} // namespace
} // namespace velkor::test
