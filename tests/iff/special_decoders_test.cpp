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
Bytes Z(std::string_view s) {
    Bytes b = Str(s);
    b.push_back(0);
    return b;
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

TEST_F(SpecialDecoders, BulletRecordWithItsLabels) {
    const Bytes data = Cat({Le(7), Le(1234), Le(static_cast<std::uint32_t>(-1)), F(1500), F(2000), F(0.25f),
                            F(10), F(20.5f), F(0.125f), Le(1)});
    const std::vector<std::string> expected = {
        "      long 7                  //bullet ID",
        "      long 1234               //name (points to a string in spacefli.eng)",
        "      long -1                 //sound",
        "      float 1500.0            //speed",
        "      float 2000.0            //range",
        "      float 0.25              //charge time",
        "      float 10.0              //energy",
        "      float 20.5              //damage",
        "      float 0.13              //refire delay",
        "      long 1                  //needs ammo",
    };
    EXPECT_EQ(ChunkLines(Decoded(Form("BULL", {Chunk("DATA", data)})), "DATA"), expected);
}

TEST_F(SpecialDecoders, MissileRecordWithItsLabels) {
    Bytes data;
    for (int i = 0; i < 24; ++i)
        data = Cat({data, (i < 3 || (i >= 13 && i <= 16) || i == 20 || i == 21 || i == 23)
                              ? Le(static_cast<std::uint32_t>(i))
                              : F(static_cast<float>(i) + 0.5f)});
    const std::vector<std::string> lines = ChunkLines(Decoded(Form("MISS", {Chunk("DATA", data)})), "DATA");
    const std::vector<std::string> expected = {
        L(3, "long 0", "missile ID"),
        L(3, "long 1", "name (points to a string in spacefli.eng)"),
        L(3, "long 2", "sound"),
        L(3, "float 3.5", "speed"),
        L(3, "float 4.5", "duration"),
        L(3, "float 5.5", "range"),
        L(3, "float 6.5"),
        L(3, "float 7.5", "pitch"),
        L(3, "float 8.5", "mass"),
        L(3, "float 9.5", "acceleration"),
        L(3, "float 10.5", "lock time"),
        L(3, "float 11.5", "damage"),
        L(3, "float 12.5", "spin rate"),
        L(3, "long 13", "ignition explosion"),
        L(3, "long 14", "first explosion"),
        L(3, "long 15", "final explosion"),
        L(3, "long $00000010", "flags"),
        L(3, "float 17.5", "refire delay"),
        L(3, "float 18.5", "spoof probability"),
        L(3, "float 19.5", "view cone"),
        L(3, "long 20", "explosion when spawning"),
        L(3, "long 21", "missile to spawn"),
        L(3, "float 22.5", "time before spawning"),
        L(3, "long 23", "missile spawn missile (boolean)"),
    };
    EXPECT_EQ(lines, expected);
}

TEST_F(SpecialDecoders, MeshChunksRepeatTheirEntries) {
    const Bytes face = Cat({Le(1), F(0.5f), Le(2), Le(3), Le(4), Le(5), Le(6)});
    const Bytes file =
        Form("MESH", {Chunk("FACE", Cat({face, face})), Chunk("FVRT", Cat({Le(9), Le(8), F(0.25f), F(1)})),
                      Chunk("NORM", Cat({F(1), F(0), F(-1)})), Chunk("VERT", Cat({F(2), F(3), F(4)})),
                      Chunk("VTNM", Cat({F(5), F(6), F(7)})), Chunk("RADI", Cat({F(100), F(50.5f)})),
                      Chunk("HARD", Cat({F(1), F(2), F(3), F(4), F(5), F(6), F(7), F(8), F(9), F(10), F(11),
                                         F(12), Z("gun1")})),
                      Chunk("STRU", Cat({Z("hull"), F(1), F(2), F(3), F(4), F(5), F(6)}))});
    const std::string text = Decoded(file);
    const std::vector<std::string> faceLines = {L(3, "long 1", "normal_number"),
                                                L(3, "float 0.5", "unknown1"),
                                                L(3, "long 2", "texture"),
                                                L(3, "long 3", "fvrt_ref"),
                                                L(3, "long 4", "sides"),
                                                L(3, "long 5", "unknown2"),
                                                L(3, "long 6")};
    std::vector<std::string> twoFaces = faceLines;
    twoFaces.insert(twoFaces.end(), faceLines.begin(), faceLines.end());
    EXPECT_EQ(ChunkLines(text, "FACE"), twoFaces);
    EXPECT_EQ(ChunkLines(text, "FVRT"),
              (std::vector<std::string>{L(3, "long 9", "vert"), L(3, "long 8", "light_normal"),
                                        L(3, "float 0.25", "x_texture"), L(3, "float 1.0", "y_texture")}));
    EXPECT_EQ(ChunkLines(text, "NORM"),
              (std::vector<std::string>{L(3, "float 1.0"), L(3, "float 0.0"), L(3, "float -1.0")}));
    EXPECT_EQ(ChunkLines(text, "VERT"),
              (std::vector<std::string>{L(3, "float 2.0"), L(3, "float 3.0"), L(3, "float 4.0")}));
    EXPECT_EQ(ChunkLines(text, "VTNM"),
              (std::vector<std::string>{L(3, "float 5.0"), L(3, "float 6.0"), L(3, "float 7.0")}));
    EXPECT_EQ(ChunkLines(text, "RADI"), (std::vector<std::string>{L(3, "float 100.0"), L(3, "float 50.5")}));
    const std::vector<std::string> hard = ChunkLines(text, "HARD");
    ASSERT_EQ(hard.size(), 13u);
    EXPECT_EQ(hard[11], L(3, "float 12.0"));
    EXPECT_EQ(hard[12], L(3, "cstring \"gun1\"", "name"));
    EXPECT_EQ(ChunkLines(text, "STRU"),
              (std::vector<std::string>{L(3, "cstring \"hull\""), L(3, "float 1.0"), L(3, "float 2.0"),
                                        L(3, "float 3.0"), L(3, "float 4.0"), L(3, "float 5.0"),
                                        L(3, "float 6.0")}));
}

TEST_F(SpecialDecoders, ListsTextsAndTimes) {
    const Bytes list = Cat({Le(1), Z("intro.mis"), Z("theme"), Le(40), Le(2)});
    const Bytes file =
        Form("DATA", {Form("LANG", {Chunk("TEXT", Cat({Z("Hello"), Z(""), Z("Ja, hier: \xE4")}))}),
                      Form("LOUT", {Chunk("LIST", Cat({list, list}))}),
                      Form("TIME", {Chunk("TIME", Cat({F(1.5f), F(0.125f), F(2)}))})});
    const std::string text = Decoded(file);
    EXPECT_EQ(ChunkLines(text, "TEXT"),
              (std::vector<std::string>{L(4, "cstring \"Hello\""), L(4, "cstring \"\""),
                                        L(4, "cstring \"Ja, hier: \xE4\"")}));
    const std::vector<std::string> oneList = {
        L(4, "long 1", "unknown"), L(4, "cstring \"intro.mis\"", "file"), L(4, "cstring \"theme\"", "music"),
        L(4, "long 40", "string"), L(4, "long 2", "unknown")};
    std::vector<std::string> twoLists = oneList;
    twoLists.insert(twoLists.end(), oneList.begin(), oneList.end());
    EXPECT_EQ(ChunkLines(text, "LIST"), twoLists);
    EXPECT_EQ(ChunkLines(text, "TIME"),
              (std::vector<std::string>{"             float 1.50", "             float 0.125",
                                        "             float 2.00"}));
}

TEST_F(SpecialDecoders, ShipSubChunks) {
    const Bytes file = Form(
        "SHIP", {Chunk("BASE", Z("fighter")), Chunk("PHYS", Cat({F(12), F(3)})), Chunk("HITP", F(250)),
                 Form("ENGN", {Chunk("POWR", F(1)),
                               Chunk("DATA", Cat({F(1), F(2), F(3), F(4), F(5), F(6), F(7), F(8), F(9)}))}),
                 Chunk("CONE", Cat({Z("cone.msh"), F(30)})),
                 Form("GUNS", {Chunk("POWR", Cat({F(1), F(2), F(3), F(4)})),
                               Chunk("GUN_", Cat({Le(3), Le(100), Z("hp_gun1")}))}),
                 Chunk("LNCH", Z("hp_missile")), Form("SHLD", {Chunk("DATA", Cat({F(80), F(60)}))}),
                 Form("ARMR", {Chunk("MESH", Z("armor.msh")), Chunk("DATA", Cat({F(1), F(2), F(3), F(4)}))}),
                 Form("DEST", {Chunk("DATA", Cat({Z("hp"), Z("a.msh"), Z("b.msh"), F(5)}))})});
    const std::string text = Decoded(file);
    EXPECT_EQ(ChunkLines(text, "BASE"), (std::vector<std::string>{L(3, "cstring \"fighter\"")}));
    EXPECT_EQ(ChunkLines(text, "PHYS"),
              (std::vector<std::string>{L(3, "float 12.0", "mass"), L(3, "float 3.0")}));
    EXPECT_EQ(ChunkLines(text, "HITP"), (std::vector<std::string>{L(3, "float 250.0", "hitpoints")}));
    EXPECT_EQ(ChunkLines(text, "POWR"), (std::vector<std::string>{L(4, "float 1.0")}));
    const std::vector<std::string> engine = ChunkLines(text, "DATA");
    const std::vector<std::string> engineLabels = {"speed max",     "speed std",
                                                   "speed min",     "acceleration",
                                                   "afterb. speed", "afterb. acceleration",
                                                   "afterb. fuel",  "YPR rate of change"};
    ASSERT_EQ(engine.size(), 9u);
    for (std::size_t i = 0; i < engineLabels.size(); ++i)
        EXPECT_EQ(engine[i], L(4, "float " + std::to_string(i + 1) + ".0", engineLabels[i]));
    EXPECT_EQ(engine[8], L(4, "float 9.0"));
    EXPECT_EQ(ChunkLines(text, "CONE"),
              (std::vector<std::string>{L(3, "cstring \"cone.msh\"", "mesh"), L(3, "float 30.0")}));
    EXPECT_EQ(ChunkLines(text, "GUN_"),
              (std::vector<std::string>{L(4, "long 3", "gun id"), L(4, "long 100", "ammo"),
                                        L(4, "cstring \"hp_gun1\"", "hardpoint")}));
    EXPECT_EQ(ChunkLines(text, "LNCH"),
              (std::vector<std::string>{L(3, "cstring \"hp_missile\"", "hardpoint")}));
    EXPECT_NE(text.find(L(4, "float 4.0", "recharge min")), std::string::npos);
    EXPECT_NE(text.find(L(4, "float 60.0", "shields rear")), std::string::npos);
    EXPECT_NE(text.find(L(4, "cstring \"armor.msh\"", "mesh")), std::string::npos);
    EXPECT_NE(text.find(L(4, "float 4.0", "armor right")), std::string::npos);
    EXPECT_NE(text.find(L(4, "cstring \"b.msh\"", "destroyed mesh")), std::string::npos);
    EXPECT_NE(text.find(L(4, "float 5.0", "hitpoints")), std::string::npos);
    // The same sub-forms outside a ship are plain bytes.
    EXPECT_EQ(ChunkLines(Decoded(Form("CARG", {Chunk("HITP", F(250))})), "HITP"),
              (std::vector<std::string>{L(3, "BYTE [4] $00 $00 $7A $43")}));
}

TEST_F(SpecialDecoders, RecordsTooShortOrTooLongEndInByteRows) {
    const std::vector<std::string> shortRecord =
        ChunkLines(Decoded(Form("BULL", {Chunk("DATA", Cat({Le(1), {9, 8}}))})), "DATA");
    EXPECT_EQ(shortRecord, (std::vector<std::string>{L(3, "long 1", "bullet ID"), L(3, "BYTE [2] $09 $08")}));

    const Bytes full = Cat({Le(1), Le(2), Le(3), F(1), F(2), F(3), F(4), F(5), F(6), Le(0)});
    const std::vector<std::string> longRecord =
        ChunkLines(Decoded(Form("BULL", {Chunk("DATA", Cat({full, {1, 2, 3}}))})), "DATA");
    ASSERT_EQ(longRecord.size(), 11u);
    EXPECT_EQ(longRecord[10], L(3, "BYTE [3] $01 $02 $03"));

    const std::vector<std::string> partFace =
        ChunkLines(Decoded(Form("MESH", {Chunk("FACE", Cat({Le(1), F(2), {5}}))})), "FACE");
    EXPECT_EQ(partFace, (std::vector<std::string>{L(3, "long 1", "normal_number"),
                                                  L(3, "float 2.0", "unknown1"), L(3, "BYTE [1] $05")}));
}

TEST_F(SpecialDecoders, ValuesTheTextCannotCarryFallBackPerField) {
    const Bytes texts = Cat({Z("ok"), Z("say \"hi\""), Z("http://x"), Z("a/*b"), Z("line\r\n"),
                             Z("tab\there"), Z("end"), Str("no zero")});
    const std::vector<std::string> lines =
        ChunkLines(Decoded(Form("DATA", {Form("LANG", {Chunk("TEXT", texts)})})), "TEXT");
    const std::vector<std::string> expected = {
        L(4, "cstring \"ok\""),
        L(4, "BYTE [9] $73 $61 $79 $20 $22 $68 $69 $22 $00"),
        L(4, "BYTE [9] $68 $74 $74 $70 $3A $2F $2F $78 $00"),
        L(4, "BYTE [5] $61 $2F $2A $62 $00"),
        L(4, "BYTE [7] $6C $69 $6E $65 $0D $0A $00"),
        L(4, "BYTE [9] $74 $61 $62 $09 $68 $65 $72 $65 $00"),
        L(4, "cstring \"end\""),
        L(4, "BYTE [7] $6E $6F $20 $7A $65 $72 $6F"),
    };
    EXPECT_EQ(lines, expected);

    const Bytes values =
        Cat({Le(0x0F00AAFF), Le(2), Le(3), F(std::numeric_limits<float>::quiet_NaN()),
             F(-std::numeric_limits<float>::infinity()), F(1), F(1), F(1), F(1), Le(0x0F00AAFF)});
    const std::vector<std::string> bullet =
        ChunkLines(Decoded(Form("BULL", {Chunk("DATA", values)})), "DATA");
    EXPECT_EQ(bullet[0], L(3, "BYTE [4] $FF $AA $00 $0F", "bullet ID"));
    EXPECT_EQ(bullet[3], L(3, "long $7FC00000", "speed"));
    EXPECT_EQ(bullet[4], L(3, "long $FF800000", "range"));
    EXPECT_EQ(bullet[9], L(3, "BYTE [4] $FF $AA $00 $0F", "needs ammo"));
}

TEST_F(SpecialDecoders, DefaultFloatsRoundExactFloatsDoNot) {
    const Bytes data = Cat({F(0.1f), F(1e-7f), F(-0.0f), F(std::numeric_limits<float>::max()),
                            F(std::numeric_limits<float>::denorm_min()), F(123456.789f)});
    const Bytes file = Form("TEST", {Chunk("RADI", data)});
    const DecodedIff rounded = DecodeIff(file, "r.iff", 1024);
    EXPECT_FALSE(rounded.lossless);
    EXPECT_EQ(ChunkLines(rounded.text, "RADI"),
              (std::vector<std::string>{L(3, "float 0.1"), L(3, "float 0.0"), L(3, "float 0.0"),
                                        L(3, "float 340282346638528860000000000000000000000.0"),
                                        L(3, "float 0.0"), L(3, "float 123456.79")}));
    DecodeOptions exact;
    exact.exactFloats = true;
    const DecodedIff lossless = DecodeIff(file, "r.iff", 1024, exact);
    EXPECT_TRUE(lossless.lossless);
    EXPECT_EQ(ChunkLines(lossless.text, "RADI"),
              (std::vector<std::string>{L(3, "float 0.1"), L(3, "float 1e-07"), L(3, "float -0.0"),
                                        L(3, "float 3.4028234663852886e+38"), L(3, "float 1e-45"),
                                        L(3, "float 123456.79")}));
    Decoded(file, true);
    // A float that is already exact in the default form keeps the decode lossless.
    EXPECT_TRUE(DecodeIff(Form("TEST", {Chunk("RADI", F(2.5f))}), "r.iff", 1024).lossless);
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
