#include "iff/decoder_settings.h"
#include "iff/iff_decoder.h"
#include "platform/ini_file.h"
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velkor::test {
namespace {

// Restores every decoder's flag after a test that changes them.
class SpecialDecoders : public ::testing::Test {
protected:
    void TearDown() override {
        for (const std::string& name : SpecialDecoderNames()) SetSpecialDecoderEnabled(name, true);
    }
};

TEST_F(SpecialDecoders, TheListInItsOrder) {
    const std::vector<std::string> expected = {"SHIP, CAPS, CMIS",
                                               "TIME/TIME",
                                               "DATA/LANG/TEXT",
                                               "LOUT/LIST",
                                               "VERT",
                                               "VTNM",
                                               "NORM",
                                               "FVRT",
                                               "FACE",
                                               "RADI",
                                               "HARD",
                                               "STRU",
                                               "BULL/DATA",
                                               "MISS/DATA"};
    EXPECT_EQ(SpecialDecoderNames(), expected);
    for (const std::string& name : expected) EXPECT_TRUE(SpecialDecoderEnabled(name));
    ExpectError<EIffDecoder>([] { SpecialDecoderEnabled("BULL"); }, "unknown decoder: BULL");
    ExpectError<EIffDecoder>([] { SetSpecialDecoderEnabled("vert", false); }, "unknown decoder: vert");
}

TEST_F(SpecialDecoders, DisabledDecodersLeaveByteRows) {
    const Bytes one{0, 0, 0x80, 0x3F}; // 1.0f
    SetSpecialDecoderEnabled("VERT", false);
    EXPECT_FALSE(SpecialDecoderEnabled("VERT"));
    const std::string text =
        DecodeIff(Form("MESH", {Chunk("VERT", one), Chunk("NORM", one)}), "s.iff", 1024).text;
    EXPECT_NE(text.find("CHUNK \"VERT\"\r\n    {\r\n      BYTE [4] $00 $00 $80 $3F\r\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("CHUNK \"NORM\"\r\n    {\r\n      float 1.0\r\n"), std::string::npos) << text;
}

TEST_F(SpecialDecoders, SettingsComeFromSectionIffd) {
    TempDir dir;
    TIniFile ini(dir / "velkor.ini");
    ini.WriteInteger("iffd", "maxdecodesize", 77);
    ini.WriteBool("iffd", "exact_floats", true);
    ini.WriteInteger("iffd", "NORM", 0);
    ini.WriteInteger("iffd", "FACE", 1);
    const DecoderSettings settings = ApplyDecoderSettings(ini);
    EXPECT_EQ(settings.maxDecodeSize, 77);
    EXPECT_TRUE(settings.options.exactFloats);
    EXPECT_FALSE(SpecialDecoderEnabled("NORM"));
    EXPECT_TRUE(SpecialDecoderEnabled("FACE"));
    EXPECT_TRUE(SpecialDecoderEnabled("SHIP, CAPS, CMIS"));

    SaveSpecialDecoderFlags(ini);
    EXPECT_EQ(ini.ReadInteger("iffd", "NORM", -1), 0);
    EXPECT_EQ(ini.ReadInteger("iffd", "SHIP, CAPS, CMIS", -1), 1);
    const DecoderSettings defaults = ApplyDecoderSettings(TIniFile(dir / "none.ini"));
    EXPECT_EQ(defaults.maxDecodeSize, 1024);
    EXPECT_FALSE(defaults.options.exactFloats);
    EXPECT_TRUE(SpecialDecoderEnabled("NORM"));
}

} // namespace
} // namespace velkor::test
