#include "iff/decoder_settings.h"
#include "iff/iff_decoder.h"
#include "platform/ini_file.h"
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/decode_roundtrip.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace velkor::test {
namespace {

Bytes Le(std::uint32_t v) {
    return {static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v >> 8),
            static_cast<std::uint8_t>(v >> 16), static_cast<std::uint8_t>(v >> 24)};
}
Bytes F(float v) {
    return Le(std::bit_cast<std::uint32_t>(v));
}
// A value line as the decoder writes it at `level`: padded to 30 characters when labelled.
std::string L(int level, const std::string& text, const std::string& label = {}) {
    std::string line = std::string(static_cast<std::size_t>(2 * level), ' ') + text;
    if (!label.empty()) line += std::string(line.size() < 30 ? 30 - line.size() : 0, ' ') + "//" + label;
    return line;
}

// The lines between the "{" and "}" of the first chunk with this id.
std::vector<std::string> ChunkLines(const std::string& text, std::string_view id) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t at; (at = text.find("\r\n", start)) != std::string::npos; start = at + 2)
        lines.push_back(text.substr(start, at - start));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::size_t blanks = lines[i].find_first_not_of(' ');
        if (lines[i].substr(blanks) != "CHUNK \"" + std::string(id) + "\"") continue;
        const std::string close = std::string(blanks, ' ') + "}";
        std::vector<std::string> body;
        for (std::size_t j = i + 2; j < lines.size() && lines[j] != close; ++j) body.push_back(lines[j]);
        return body;
    }
    ADD_FAILURE() << "no chunk " << id << " in\n" << text;
    return {};
}

// Restores every decoder's flag after a test that changes them.
class SpecialDecoders : public ::testing::Test {
protected:
    void TearDown() override {
        for (const std::string& name : SpecialDecoderNames()) SetSpecialDecoderEnabled(name, true);
    }

    // Decodes and checks the round trip in exact mode under both scanners.
    static std::string Decoded(const Bytes& file, bool exactFloats = false) {
        DecodeOptions options;
        options.exactFloats = exactFloats;
        const DecodedIff decoded = DecodeIff(file, "s.iff", 4096, options);
        DecodeOptions exact;
        exact.exactFloats = true;
        const DecodedIff lossless = DecodeIff(file, "s.iff", 4096, exact);
        EXPECT_TRUE(lossless.lossless);
        TempDir dir;
        for (ScannerClass scanner : {ScannerClass::Standard, ScannerClass::Fast}) {
            const Assembled back = AssembleDecoded(lossless, dir.path(), scanner);
            EXPECT_EQ(back.error, "") << lossless.text;
            if (!back.files.empty()) {
                EXPECT_EQ(back.files[0].second, file) << lossless.text;
            }
        }
        return decoded.text;
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
    const Bytes file = Form("MESH", {Chunk("VERT", F(1)), Chunk("NORM", F(1))});
    SetSpecialDecoderEnabled("VERT", false);
    EXPECT_FALSE(SpecialDecoderEnabled("VERT"));
    const std::string text = Decoded(file);
    EXPECT_EQ(ChunkLines(text, "VERT"), (std::vector<std::string>{L(3, "BYTE [4] $00 $00 $80 $3F")}));
    EXPECT_EQ(ChunkLines(text, "NORM"), (std::vector<std::string>{L(3, "float 1.0")}));
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
