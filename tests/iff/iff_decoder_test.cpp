#include "iff/iff_decoder.h"
#include "iff/iff_reader.h"
#include "platform/strings.h"
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/decode_roundtrip.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velkor::test {
namespace {

// The text's lines without their CR LF; every line must end in CR LF.
std::vector<std::string> Lines(const std::string& text) {
    EXPECT_TRUE(text.ends_with("\r\n"));
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t at; (at = text.find("\r\n", start)) != std::string::npos; start = at + 2)
        lines.push_back(text.substr(start, at - start));
    return lines;
}

Bytes Seq(std::size_t n, std::uint8_t first = 1) {
    Bytes b(n);
    for (std::size_t i = 0; i < n; ++i) b[i] = static_cast<std::uint8_t>(first + i);
    return b;
}

// Decodes, assembles the text again and expects the input back, under both scanners.
void ExpectRoundTrip(const Bytes& file, std::int64_t limit = 1024, DecodeOptions options = {}) {
    const DecodedIff decoded = DecodeIff(file, "t.iff", limit, options);
    EXPECT_TRUE(decoded.lossless);
    TempDir dir;
    for (ScannerClass scanner : {ScannerClass::Standard, ScannerClass::Fast}) {
        const Assembled back = AssembleDecoded(decoded, dir.path(), scanner);
        ASSERT_EQ(back.error, "") << decoded.text;
        ASSERT_EQ(back.files.size(), 1u);
        EXPECT_EQ(back.files[0].first, "t.iff");
        EXPECT_EQ(back.files[0].second, file) << decoded.text;
    }
}

TEST(IffDecoderText, FormsChunksAndByteRowsExactly) {
    const Bytes file = Form("TEST", {Chunk("DATA", Seq(3, 0x0A)),
                                     Form("SUBF", {Chunk("\x01"
                                                         "BCD",
                                                         {})}),
                                     Chunk("ROWS", Seq(17, 0xF0))});
    const DecodedIff decoded = DecodeIff(file, "/some/folder/test.iff", 1024);
    const std::vector<std::string> expected = {
        "IFF \"test.iff\"",
        "{",
        "  FORM \"TEST\"",
        "  {",
        "    CHUNK \"DATA\"",
        "    {",
        "      BYTE [3] $0A $0B $0C",
        "    }",
        "    FORM \"SUBF\"",
        "    {",
        "      CHUNK $44434201",
        "      {",
        "      }",
        "    }",
        "    CHUNK \"ROWS\"",
        "    {",
        "      BYTE [16] $F0 $F1 $F2 $F3 $F4 $F5 $F6 $F7 $F8 $F9 $FA $FB $FC $FD $FE $FF",
        "      BYTE [1] $00",
        "    }",
        "  }",
        "}",
    };
    EXPECT_EQ(Lines(decoded.text), expected);
    EXPECT_TRUE(decoded.sideFiles.empty());
    EXPECT_TRUE(decoded.lossless);
    ExpectRoundTrip(file);
}

TEST(IffDecoderText, IdsThatTheScannersWouldChangeAreWrittenAsNumbers) {
    struct Case {
        std::string id;
        std::string line;
    };
    const std::vector<Case> cases = {
        {"AB D", "CHUNK \"AB D\""},
        {"A/B*", "CHUNK \"A/B*\""},
        {"a*/b", "CHUNK \"a*/b\""},
        {"A\"CD", "CHUNK $44432241"},
        {"A//B", "CHUNK $422F2F41"},
        {"A/*B", "CHUNK $422A2F41"},
        {"AB\r\n", "CHUNK $0A0D4241"},
        {"AB\tC", "CHUNK $43094241"},
        {"AB\x7F"
         "C",
         "CHUNK $437F4241"},
        {"\xC4"
         "BCD",
         "CHUNK $444342C4"},
        {std::string("\0ABC", 4), "CHUNK $43424100"},
    };
    for (const Case& c : cases) {
        const Bytes file = Form("TEST", {Chunk(c.id, {7}), Chunk("LAST", {1, 2})});
        const DecodedIff decoded = DecodeIff(file, "t.iff", 1024);
        EXPECT_EQ(Lines(decoded.text)[4], "    " + c.line);
        ExpectRoundTrip(file);
    }
}

TEST(IffDecoderText, TheDecodeLimitIsInclusive) {
    const Bytes inside = Form("TEST", {Chunk("DATA", Seq(20))});
    const DecodedIff inline20 = DecodeIff(inside, "t.iff", 20);
    EXPECT_TRUE(inline20.sideFiles.empty());
    EXPECT_EQ(Lines(inline20.text)[7], "      BYTE [4] $11 $12 $13 $14");

    const Bytes over = Form("TEST", {Chunk("PADD", {9}), Chunk("DATA", Seq(21))});
    const DecodedIff side = DecodeIff(over, "dir\\game.iff", 20);
    const std::vector<std::string> lines = Lines(side.text);
    EXPECT_EQ(lines[8], "    CHUNK \"DATA\"");
    EXPECT_EQ(lines[10], "      // offset: 16");
    EXPECT_EQ(lines[11], "      // size: 15");
    EXPECT_EQ(lines[12], "      file \"game.iff_DATA_16.bin\"");
    ASSERT_EQ(side.sideFiles.size(), 1u);
    EXPECT_EQ(side.sideFiles[0].name, "game.iff_DATA_16.bin");
    EXPECT_EQ(side.sideFiles[0].data, Seq(21)); // the data without its pad byte
    ExpectRoundTrip(over, 20);
    ExpectRoundTrip(over, 0);
}

TEST(IffDecoderText, SideFileNamesAreValidWhateverTheIdAndTheInputName) {
    const Bytes file = Form("TEST", {Chunk("a/\"\x01", Seq(4))});
    const DecodedIff decoded = DecodeIff(file, "we\"ird*name.iff", 2);
    ASSERT_EQ(decoded.sideFiles.size(), 1u);
    EXPECT_EQ(decoded.sideFiles[0].name, "we_ird_name.iff_a____C.bin");
    EXPECT_EQ(Lines(decoded.text)[0], "IFF \"we_ird_name.iff\"");
}

TEST(IffDecoderText, SideFileNamesKeepTheIdWhereAFileNameCanHoldIt) {
    const Bytes file = Form("TEST", {Chunk("TXT ", Seq(3)), Chunk("a.$(", Seq(3)), Chunk("\xE4:|Z", Seq(3))});
    const DecodedIff decoded = DecodeIff(file, "t.iff", 2);
    ASSERT_EQ(decoded.sideFiles.size(), 3u);
    EXPECT_EQ(decoded.sideFiles[0].name, "t.iff_TXT _C.bin");
    EXPECT_EQ(decoded.sideFiles[1].name, "t.iff_a.$(_18.bin");
    EXPECT_EQ(decoded.sideFiles[2].name, "t.iff____Z_24.bin");
    const std::vector<std::string> lines = Lines(decoded.text);
    EXPECT_EQ(lines[4], "    CHUNK \"TXT \"");
    EXPECT_EQ(lines[6], "      // offset: C");
    EXPECT_EQ(lines[7], "      // size: 3");
    EXPECT_EQ(lines[8], "      file \"t.iff_TXT _C.bin\"");
    ExpectRoundTrip(file, 2);
}

TEST(IffDecoderText, ItemsInTheLastEightBytesOfAFormStayInIt) {
    // The reader gives the empty chunk, which starts in the last 8 bytes of SUBF's span, to TEST; the text
    // must keep it inside SUBF, or the sizes change.
    const Bytes file =
        Form("TEST", {Form("SUBF", {Chunk("ONE_", {1}), Chunk("EMPT", {})}), Chunk("NEXT", {5})});
    const TIffReader reader(file);
    ASSERT_EQ(reader.Root().Chunks.size(), 2u);
    EXPECT_EQ(reader.Root().Chunks[0]->ID, "EMPT");

    const std::vector<std::string> lines = Lines(DecodeIff(file, "t.iff", 1024).text);
    EXPECT_EQ(lines[10], "      CHUNK \"EMPT\"");
    EXPECT_EQ(lines[12], "      }");
    EXPECT_EQ(lines[13], "    }");
    EXPECT_EQ(lines[14], "    CHUNK \"NEXT\"");
    ExpectRoundTrip(file);
}

TEST(IffDecoderText, FormsTheTextCannotNameAreIncludedRaw) {
    const Bytes bad = Form("B\"D!", {Chunk("DATA", {1, 2})});
    const Bytes file = Form("TEST", {Chunk("HEAD", {0}), bad, Chunk("TAIL", {3})});
    const DecodedIff decoded = DecodeIff(file, "t.iff", 1024);
    const std::vector<std::string> lines = Lines(decoded.text);
    EXPECT_EQ(lines[8], "    // offset: 16");
    EXPECT_EQ(lines[9], "    // size: 16");
    EXPECT_EQ(lines[10], "    file \"t.iff_FORM_16.bin\"");
    ASSERT_EQ(decoded.sideFiles.size(), 1u);
    EXPECT_EQ(decoded.sideFiles[0].data, bad);
    ExpectRoundTrip(file);
}

TEST(IffDecoderText, TheOutermostFormTypeIsMadeQuotableAndReportedLossy) {
    const Bytes file = Form("A\"/\x01", {Chunk("DATA", {1})});
    const DecodedIff decoded = DecodeIff(file, "t.iff", 1024);
    EXPECT_EQ(Lines(decoded.text)[2], "  FORM \"A___\"");
    EXPECT_FALSE(decoded.lossless);
    TempDir dir;
    const Assembled back = AssembleDecoded(decoded, dir.path());
    ASSERT_EQ(back.error, "");
    EXPECT_EQ(DecodeIff(back.files[0].second, "t.iff", 1024).text, decoded.text);
}

TEST(IffDecoderText, EveryTopLevelFormIsDecoded) {
    // A linked unit's file: the game's form followed by the editor form.
    const Bytes file = Cat({Form("MISN", {Chunk("VERS", Seq(6))}), Form("EDTR", {Chunk("CRCS", Seq(3))})});
    ExpectRoundTrip(file);
    const std::vector<std::string> lines = Lines(DecodeIff(file, "t.iff", 1024).text);
    EXPECT_NE(std::find(lines.begin(), lines.end(), "  FORM \"EDTR\""), lines.end());
    // Bytes behind the last form that no form can hold are left out, and the decode says so.
    EXPECT_FALSE(DecodeIff(Cat({file, Bytes{0, 0}}), "t.iff", 1024).lossless);
}

TEST(IffDecoderText, BytesThatAreNoItemsAreIncludedRaw) {
    // An odd pad byte that is not zero, the id the assembler cannot read as a number, a chunk and a form
    // running past their form, and a tail too short for a header.
    const Bytes oddPad = Cat({Str("ODDP"), Be32(1), {7, 9}});
    const Bytes sentinel = Chunk(std::string("\xFF\xAA\x00\x0F", 4), {1, 2});
    const Bytes overlong = Cat({Str("LONG"), Be32(12), {1, 2}});
    EXPECT_EQ(Lines(DecodeIff(Form("TEST", {oddPad}), "t.iff", 1024).text)[4], "    // offset: C");
    ExpectRoundTrip(Form("TEST", {oddPad, Chunk("NEXT", {1})}));
    ExpectRoundTrip(Form("TEST", {sentinel, Chunk("NEXT", {1})}));
    ExpectRoundTrip(Form("TEST", {Form("SUBF", {overlong}), Chunk("NEXT", Bytes(12, 0))}));
    ExpectRoundTrip(Form("TEST", {Form("SUBF", {Cat({Str("FORM"), Be32(50), Str("XXXX")})})}));
    ExpectRoundTrip(Form("TEST", {Chunk("GOOD", {1}), {0, 2, 3, 4, 5, 6}}));
}

TEST(IffDecoderText, DeepNestingEndsInRawInclusionAndIndentationStopsGrowing) {
    constexpr int kDepth = 12000;
    Bytes file = Chunk("LEAF", {1, 2, 3});
    for (int i = 0; i < kDepth; ++i) {
        Bytes outer = Cat({Str("FORM"), Be32(static_cast<std::uint32_t>(file.size() + 4)), Str("NEST")});
        outer.insert(outer.end(), file.begin(), file.end());
        file = std::move(outer);
    }
    const DecodedIff decoded = DecodeIff(file, "t.iff", 1024);
    ASSERT_EQ(decoded.sideFiles.size(), 1u);
    EXPECT_LT(decoded.text.size(), 200u * kDepth); // linear, not quadratic, in the depth
    ExpectRoundTrip(file);
}

TEST(IffDecoderText, TrailingBytesBehindTheFormAreDroppedAndReportedLossy) {
    Bytes file = Form("TEST", {Chunk("DATA", {1})});
    file.insert(file.end(), {0, 0, 0, 0, 0});
    const DecodedIff decoded = DecodeIff(file, "t.iff", 1024);
    EXPECT_FALSE(decoded.lossless);
    TempDir dir;
    const Assembled back = AssembleDecoded(decoded, dir.path());
    EXPECT_EQ(back.files.at(0).second, Form("TEST", {Chunk("DATA", {1})}));
}

// A decode that cannot be exact: it says why, and its text assembles into `back` under both scanners.
void ExpectInexactDecode(const char* what, const Bytes& file, const Bytes& back, const std::string& note) {
    const DecodedIff decoded = DecodeIff(file, "t.iff", 1024);
    EXPECT_FALSE(decoded.lossless) << what;
    EXPECT_EQ(decoded.notes, std::vector<std::string>{note}) << what;
    TempDir dir;
    for (ScannerClass scanner : {ScannerClass::Standard, ScannerClass::Fast}) {
        const Assembled assembled = AssembleDecoded(decoded, dir.path(), scanner);
        ASSERT_EQ(assembled.error, "") << what << "\n" << decoded.text;
        EXPECT_EQ(assembled.files.at(0).second, back) << what << "\n" << decoded.text;
    }
}

// A file cut short after a complete item: every item up to the cut is decoded, and the decode says that
// it is not exact. Assembled, the text gives a whole file of those items.
TEST(IffDecoderText, TruncatedFilesDecodeAsFarAsTheirItemsGo) {
    const Bytes good = Form("TEST", {Chunk("DATA", Seq(10)), Chunk("MORE", Seq(6))});
    const Bytes nested =
        Form("ROOT", {Form("SUBF", {Chunk("ONE_", Seq(4)), Chunk("TWO_", Seq(4))}), Chunk("END_", {})});
    struct Case {
        const char* what;
        Bytes file;
        Bytes back;       // what the text assembles into
        std::string note; // what the decode says
    };
    const Case cases[] = {
        {"cut after the first chunk", Bytes(good.begin(), good.begin() + 30),
         Form("TEST", {Chunk("DATA", Seq(10))}),
         "the file is truncated: form TEST at offset 00000000 ends at 0000002C, the data at 0000001E: the "
         "decode is not exact"},
        {"a size of 40 with 32 bytes there",
         Cat({Str("FORM"), Be32(40), Str("TEST"), Chunk("ABCD", Seq(12))}),
         Form("TEST", {Chunk("ABCD", Seq(12))}),
         "the file is truncated: form TEST at offset 00000000 ends at 00000030, the data at 00000020: the "
         "decode is not exact"},
        {"cut inside a nested form", Bytes(nested.begin(), nested.begin() + 36),
         Form("ROOT", {Form("SUBF", {Chunk("ONE_", Seq(4))})}),
         "the file is truncated: form ROOT at offset 00000000 ends at 00000038, the data at 00000024: the "
         "decode is not exact"},
        {"nothing behind the header", Bytes(good.begin(), good.begin() + 12), Form("TEST"),
         "the file is truncated: form TEST at offset 00000000 ends at 0000002C, the data at 0000000C: the "
         "decode is not exact"},
    };
    for (const Case& c : cases) ExpectInexactDecode(c.what, c.file, c.back, c.note);
    // Cut right behind an empty chunk, the form would end with it once assembled, which the reader refuses
    // for that file as for this one.
    ExpectError<EIffReader>(
        [] {
            DecodeIff(Cat({Str("FORM"), Be32(40), Str("TEST"), Chunk("DATA", {})}), "cut.iff", 1024);
        },
        "TIffReader: cut.iff, error at offset 0000000C!");
    ExpectError<EIffReader>([] { DecodeIff(Form("TEST", {Chunk("DATA", {})}), "whole.iff", 1024); },
                            "TIffReader: whole.iff, error at offset 0000000C!");
    // Bytes too few for a header behind the last item are kept, as bytes that are no item always are.
    const Bytes tail = Cat({Bytes(good.begin(), good.begin() + 30), {0x4D, 0x4F}});
    const DecodedIff decoded = DecodeIff(tail, "t.iff", 1024);
    EXPECT_FALSE(decoded.lossless);
    ASSERT_EQ(decoded.sideFiles.size(), 1u);
    EXPECT_EQ(decoded.sideFiles[0].data, Bytes({0x4D, 0x4F}));
}

// Every size is made even, a form's as a chunk's: a form whose size field is odd holds its last chunk's pad
// byte all the same. The text gives back every byte but the odd size itself, and the decode says so.
TEST(IffDecoderText, OddFormSizesAreMadeEven) {
    auto oddForm = [](std::string_view type, const Bytes& chunk) {
        return Cat({Str("FORM"), Be32(static_cast<std::uint32_t>(4 + chunk.size() - 1)), Str(type), chunk});
    };
    const Bytes single = oddForm("TEST", Chunk("ABCD", Seq(5)));
    ASSERT_EQ(single.size(), 26u);
    const Bytes inner = Form("ROOT", {oddForm("SUBF", Chunk("ABCD", Seq(5))), Chunk("NEXT", {1, 2})});
    struct Case {
        const char* what;
        Bytes file;
        std::size_t sizeByte; // the low byte of the odd size field
        std::string note;
    };
    const Case cases[] = {
        {"the outermost form", single, 7,
         "form TEST at offset 00000000 has the odd size 17, which the text cannot keep: the decode is not "
         "exact"},
        {"a nested form", inner, 19,
         "form SUBF at offset 0000000C has the odd size 17, which the text cannot keep: the decode is not "
         "exact"},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(DecodeIff(c.file, "t.iff", 1024).sideFiles.empty()) << c.what;
        Bytes back = c.file;
        back[c.sizeByte] += 1;
        ExpectInexactDecode(c.what, c.file, back, c.note);
    }
    EXPECT_EQ(Lines(DecodeIff(single, "t.iff", 1024).text),
              (std::vector<std::string>{"IFF \"t.iff\"", "{", "  FORM \"TEST\"", "  {", "    CHUNK \"ABCD\"",
                                        "    {", "      BYTE [5] $01 $02 $03 $04 $05", "    }", "  }", "}"}));
}

// Ids quoted in messages show their control bytes and bytes above 126 as \xNN: a NUL cuts nothing off.
TEST(IffDecoderHostile, MessagesQuoteIdBytesVisibly) {
    auto decode = [](const Bytes& b) { return [b] { DecodeIff(b, "bad.iff", 1024); }; };
    ExpectError<EIffReader>(
        decode(Form("TEST", {Cat({Str(std::string("N\0M\x1B", 4)), Be32(8), {1}})})),
        "TIffReader: Chunk (N\\x00M\\x1B) at offset 0000000C runs past the end of the data!");
    ExpectError<EIffReader>(decode(Cat({Str("FORM"), Be32(4), Str(std::string("\xFF\n", 2))})),
                            "EIffReader_ErrorInForm: Error in Form \"\\xFF\\x0A\" at offset 0");
    ExpectError<EIffReader>(decode(Form("TEST", {Str(std::string("\x7F\0\r\t", 4))})),
                            "EIffReader_ErrorInChunk: Error in Chunk \"\\x7F\\x00\\x0D\\x09\" at offset C");
    ExpectError<EIffDecoder>(
        decode(Cat({Form("TEST", {Cat({Str(std::string("L\0\xE9G", 4)), Be32(6), {1, 2}})}), {3, 4, 5, 6}})),
        "TIffDecoder: Chunk (L\\x00\\xE9G) at offset 0000000C runs past the end of form TEST!");
}

TEST(IffDecoderHostile, InvalidFilesEndInTheReadersMessages) {
    const Bytes good = Form("TEST", {Chunk("DATA", Seq(10)), Chunk("MORE", Seq(6))});
    auto decode = [](const Bytes& b) { return [b] { DecodeIff(b, "bad.iff", 1024); }; };
    ExpectError<EIffReader>(decode({}), "TIffReader: bad.iffnot a valid .iff file!");
    ExpectError<EIffReader>(decode(Bytes(good.begin(), good.begin() + 10)),
                            "EIffReader_ErrorInForm: Error in Form \"TE\" at offset 0");
    ExpectError<EIffReader>(decode(Bytes(good.begin(), good.begin() + 16)),
                            "EIffReader_ErrorInChunk: Error in Chunk \"DATA\" at offset C");
    ExpectError<EIffReader>(decode(Bytes(good.begin(), good.begin() + 25)),
                            "TIffReader: Chunk (DATA) at offset 0000000C runs past the end of the data!");
    // Assembled, the form would end where its size says and cut the chunk off behind it.
    ExpectError<EIffDecoder>(decode(Cat({Form("TEST", {Cat({Str("LONG"), Be32(6), {1, 2}})}), {3, 4, 5, 6}})),
                             "TIffDecoder: Chunk (LONG) at offset 0000000C runs past the end of form TEST!");
    // The reader takes a chunk as the first item, but the text has no place for one outside a form.
    ExpectError<EIffReader>(decode(Chunk("DATA", Seq(4))), "TIffReader: bad.iffnot a valid .iff file!");
}

TEST(IffDecoderFiles, DecodeWritesTheTextAndItsSideFilesBesideIt) {
    TempDir dir;
    const Bytes file = Form("TEST", {Chunk("BIGG", Seq(40)), Chunk("SMAL", Seq(2))});
    WriteFile(dir / "in.iff", std::string(file.begin(), file.end()));
    std::filesystem::create_directories(dir / "out");
    Decode(dir / "in.iff", dir / "out" / "x.pas", 32);
    const std::string text = ReadFile(dir / "out" / "x.pas");
    EXPECT_NE(text.find("file \"in.iff_BIGG_C.bin\"\r\n"), std::string::npos);
    const std::string side = ReadFile(dir / "out" / "in.iff_BIGG_C.bin");
    EXPECT_EQ(Bytes(side.begin(), side.end()), Seq(40));

    const Assembled back = Assemble(text, ScannerClass::Standard, dir / "out");
    EXPECT_EQ(back.files.at(0).second, file);
    ExpectError<EInOutError>([&] { Decode(dir / "none.iff", dir / "none.pas", 32); },
                             "Cannot open file \"" + (dir / "none.iff").string() +
                                 "\": No such file or directory");
}

// A decode that cannot write one of its files writes none: what stood there before stays.
TEST(IffDecoderFiles, DecodeWritesAllItsFilesOrNone) {
    TempDir dir;
    const Bytes file = Form("TEST", {Chunk("ONE ", Seq(40)), Chunk("TWO ", Seq(50))});
    WriteFile(dir / "in.iff", std::string(file.begin(), file.end()));
    WriteFile(dir / "x.pas", "old text");
    std::filesystem::create_directories(dir / "in.iff_TWO _3C.bin"); // no file can replace a folder
    EXPECT_THROW(Decode(dir / "in.iff", dir / "x.pas", 32), EInOutError);
    EXPECT_EQ(ReadFile(dir / "x.pas"), "old text");
    EXPECT_FALSE(std::filesystem::exists(dir / "in.iff_ONE _C.bin"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 3);
}

} // namespace
} // namespace velkor::test
