#include "iff/checksum.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace velkor::test {
namespace {

std::string Le(std::uint32_t v) {
    std::string s;
    for (int i = 0; i < 4; ++i) s += static_cast<char>(v >> (8 * i));
    return s;
}

std::string Be(std::uint32_t v) {
    std::string s;
    for (int i = 3; i >= 0; --i) s += static_cast<char>(v >> (8 * i));
    return s;
}

// A mission file as a user would write it by hand, with Linux line breaks.
constexpr const char* kMission = "// hand-written\n"
                                 "IFF \"demo.mis\"\n"
                                 "{\n"
                                 "  const speed = 250, name = \"Alpha\"\n"
                                 "  type u8 = byte\n"
                                 "  FORM \"MISSION\"\n"
                                 "  {\n"
                                 "    CHUNK \"NAME\" { CSTRING name }\n"
                                 "    FORM \"DATA\"\n"
                                 "    {\n"
                                 "      chunk \"VALS\" { u8 [3] 1, 2, speed word $1234 long -1 float 0.5 }\n"
                                 "      chunk \"FUNC\"\n"
                                 "      {\n"
                                 "        WCP_ASM\n"
                                 "        {\n"
                                 "          func main\n"
                                 "          {\n"
                                 "            movc v8 - 5;\n"
                                 "            if v1\n"
                                 "            {\n"
                                 "              goto \"012w\";\n"
                                 "            }\n"
                                 "          }\n"
                                 "        }\n"
                                 "      }\n"
                                 "    }\n"
                                 "  }\n"
                                 "}\n";

std::string ExpectedMission() {
    std::string vals = std::string("\x01\x02\xFA\x34\x12\xFF\xFF\xFF\xFF", 9) + Le(0x3F000000);
    std::string func = Le(NameHash("main")) + Le(0) + Le(0) + Le(36) + Le(0x5414BB08) + Le(8) +
                       Le(0xFFFFFFFB) + Le(0xB2995D04) + Le(1) + Le(0x15FBBB00) + Le(0x69557404) + "012w" +
                       Le(0x00827700);
    std::string data = "DATA";
    data += "VALS" + Be(13) + vals + std::string(1, '\0');
    data += "FUNC" + Be(static_cast<std::uint32_t>(func.size())) + func;
    std::string mission = "MISS";
    mission += "NAME" + Be(6) + "Alpha" + std::string(1, '\0');
    mission += "FORM" + Be(static_cast<std::uint32_t>(data.size())) + data;
    return "FORM" + Be(static_cast<std::uint32_t>(mission.size())) + mission;
}

TEST(VelkorcAsm, HandWrittenTextIntoExactBytes) {
    TempDir dir;
    WriteFile(dir / "demo.txt", kMission);
    for (const char* scanner : {"", "--fast-scanner"}) {
        std::vector<std::string> args = {"asm", "demo.txt"};
        if (*scanner) args.push_back(scanner);
        auto r = RunVelkorc(args, dir.path());
        EXPECT_EQ(r.exitCode, 0) << r.err;
        EXPECT_EQ(r.err, "");
        const std::string want = ExpectedMission();
        EXPECT_EQ(r.out, "** demo.mis ** (" + std::to_string(want.size()) + " bytes)\n");
        EXPECT_EQ(ReadFile(dir / "demo.mis"), want);
        std::filesystem::remove(dir / "demo.mis");
    }
}

TEST(VelkorcAsm, OutputPlacementAndSizes) {
    TempDir dir;
    std::filesystem::create_directories(dir / "Sub");
    std::string big = "IFF \"big.iff\" { form BIGG { chunk DATA { byte [1200]";
    for (int i = 0; i < 1200; ++i) big += " 7";
    big += " } } }\n";
    WriteFile(dir / "t.txt", big + "IFF \"sub\\x.iff\" { form TEST { } }\nIFF \"y.iff\" { }\n");
    auto r = RunVelkorc({"asm", "--out-dir", "out", "t.txt"}, dir.path());
    EXPECT_EQ(r.exitCode, 0) << r.err;
    // Bare names go into --out-dir; names with a folder are taken from the current folder, without regard
    // to case.
#ifdef _WIN32
    // Folders the system's way; it finds "sub" itself, so that name stays as the text wrote it.
    EXPECT_EQ(r.out,
              "** out\\big.iff ** (1,220 bytes)\n** sub\\x.iff ** (12 bytes)\n** out\\y.iff ** (0 bytes)\n");
#else
    EXPECT_EQ(r.out,
              "** out/big.iff ** (1,220 bytes)\n** Sub/x.iff ** (12 bytes)\n** out/y.iff ** (0 bytes)\n");
#endif
    EXPECT_EQ(ReadFile(dir / "out" / "big.iff").size(), 1220u);
    EXPECT_EQ(ReadFile(dir / "Sub" / "x.iff"), std::string("FORM\0\0\0\x04TEST", 12));
    EXPECT_TRUE(std::filesystem::exists(dir / "out" / "y.iff"));

    r = RunVelkorc({"asm", (dir / "t.txt").string()}, dir.path());
    EXPECT_EQ(r.exitCode, 0) << r.err;
#ifdef _WIN32
    EXPECT_EQ(r.out, "** big.iff ** (1,220 bytes)\n** sub\\x.iff ** (12 bytes)\n** y.iff ** (0 bytes)\n");
#else
    EXPECT_EQ(r.out, "** big.iff ** (1,220 bytes)\n** Sub/x.iff ** (12 bytes)\n** y.iff ** (0 bytes)\n");
#endif
}

TEST(VelkorcAsm, AnErrorKeepsTheFilesBeforeIt) {
    TempDir dir;
    WriteFile(dir / "t.txt",
              "IFF \"first.iff\" { form TEST { } }\r\n"
              "IFF \"second.iff\" {\r\n  form TEST {\r\n    chunk DATA { byte 256 }\r\n  }\r\n}\r\n");
    auto r = RunVelkorc({"asm", "t.txt"}, dir.path());
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "** first.iff ** (12 bytes)\n");
    EXPECT_TRUE(r.err.starts_with("[error] line 4: value doesn't fit into a byte\n  raised in ")) << r.err;
    EXPECT_TRUE(std::filesystem::exists(dir / "first.iff"));
    EXPECT_FALSE(std::filesystem::exists(dir / "second.iff"));
}

// The default scanner trims the text, and its collecting loop never takes the last character: a stray
// character there is an empty token, refused like any other.
TEST(VelkorcAsm, AStrayLastCharacterIsAnError) {
    TempDir dir;
    WriteFile(dir / "t.txt", "IFF \"a.iff\" { } #");
    auto r = RunVelkorc({"asm", "t.txt"}, dir.path());
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "** a.iff ** (0 bytes)\n");
    EXPECT_TRUE(r.err.starts_with("[error] line 1: expected IFF, TRE or FLAT, but found \n  raised in "))
        << r.err;
    r = RunVelkorc({"asm", "--fast-scanner", "t.txt"}, dir.path());
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.starts_with("[error] line 1: expected IFF, TRE or FLAT, but found #\n")) << r.err;
}

TEST(VelkorcAsm, UsageAndInputErrors) {
    TempDir dir;
    auto r = RunVelkorc({"asm", "nope.txt"}, dir.path());
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(r.err, "nope.txt doesn't exist\n");
    EXPECT_EQ(RunVelkorc({"asm"}, dir.path()).exitCode, 2);
    EXPECT_EQ(RunVelkorc({"asm", "a.txt", "b.txt"}, dir.path()).exitCode, 2);
    EXPECT_NE(RunVelkorc({"asm", "--help"}).out.find("velkorc asm"), std::string::npos);
    // A target that cannot be written is an input/output error.
    WriteFile(dir / "t.txt", "IFF \"missing/folder/a.iff\" { }\n");
    r = RunVelkorc({"asm", "t.txt"}, dir.path());
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(r.out, "");
    EXPECT_FALSE(r.err.empty());
}

} // namespace
} // namespace velkor::test
