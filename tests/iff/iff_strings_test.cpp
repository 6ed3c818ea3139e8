#include "iff/iff_reader.h"
#include "iff/iff_strings.h"
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <string>

namespace velkor {
namespace {

using test::Be32;
using test::Bytes;
using test::Cat;
using test::Chunk;
using test::ExpectError;
using test::Form;
using test::Str;

Bytes Le32(std::uint32_t v) {
    return {static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v >> 8),
            static_cast<std::uint8_t>(v >> 16), static_cast<std::uint8_t>(v >> 24)};
}

Bytes ReadBytes(const std::filesystem::path& p) {
    const std::string s = test::ReadFile(p);
    return Bytes(s.begin(), s.end());
}

// INFO with an odd-length text 1 ("Eng" and its zero), numbers 1 and 2, text 2 "x" and its zero, number 3.
Bytes Info(std::uint32_t lines = 0) {
    return Chunk("INFO",
                 Cat({Str("Eng"), Bytes{0}, Le32(1), Le32(2), Str("x"), Bytes{0}, Le32(3), Le32(lines)}));
}

Bytes Table(const Bytes& text) {
    return Form("DATA", {Form("LANG", {Info(), Chunk("TEXT", text)})});
}

TEST(IffStringList, SavesTheExactBytesAndLoadsThemBack) {
    test::TempDir dir;
    TIffStringList list;
    list.Lines = {"Hello", "", "Good bye, pilot"};
    list.InfoText1 = "English";
    list.InfoText2 = "Rev";
    list.InfoValue1 = 7;
    list.InfoValue2 = -1;
    list.InfoValue3 = 0x01020304;
    list.SaveToFile(dir / "t.eng");

    const Bytes info = Cat({Str("English"), Bytes{0}, Le32(7), Le32(0xFFFFFFFFu), Str("Rev"), Bytes{0},
                            Le32(0x01020304), Le32(3)});
    const Bytes text = Cat({Str("Hello"), Bytes{0, 0}, Str("Good bye, pilot"), Bytes{0}});
    EXPECT_EQ(ReadBytes(dir / "t.eng"),
              Form("DATA", {Form("LANG", {Chunk("INFO", info), Chunk("TEXT", text)})}));

    TIffStringList back;
    back.LoadFromFile(dir / "t.eng");
    EXPECT_EQ(back.Lines, (std::vector<std::string>{"Hello", "", "Good bye, pilot"}));
    EXPECT_EQ(back.InfoText1, "English");
    EXPECT_EQ(back.InfoText2, "Rev");
    EXPECT_EQ(back.InfoValue1, 7);
    EXPECT_EQ(back.InfoValue2, -1);
    EXPECT_EQ(back.InfoValue3, 0x01020304);
}

TEST(IffStringList, ASaveAppendsOneEmptyLinePerLine) {
    test::TempDir dir;
    TIffStringList list;
    list.InfoText1 = "Eng";
    list.InfoText2 = "x";
    list.Lines = {"first line", "second", "third"};
    list.SaveToFile(dir / "t.eng");
    EXPECT_EQ(list.Lines, (std::vector<std::string>{"first line", "second", "third", "", "", ""}));
    list.SaveToFile(dir / "t.eng"); // writes all six
    EXPECT_EQ(list.Lines.size(), 12u);
    TIffStringList back;
    back.LoadFromFile(dir / "t.eng");
    // 11 + 7 + 6 + 3 bytes, padded to 28: the three empty strings start in the last 8 bytes.
    EXPECT_EQ(back.Lines, (std::vector<std::string>{"first line", "second", "third"}));
}

// An INFO text goes out rounded up to even length: an even-length text has no terminator.
TEST(IffStringList, InfoTextsAreWrittenToEvenLength) {
    test::TempDir dir;
    auto infoOf = [&](const std::string& text1) {
        TIffStringList list;
        list.InfoText1 = text1;
        list.Lines = {"z"};
        list.SaveToFile(dir / "t.eng");
        TIffReader r = TIffReader::FromCopy(ReadBytes(dir / "t.eng"));
        r.OpenForm("LANG");
        const auto data = r.ChunkData(*r.CurrentForm().Chunks.at(0));
        return Bytes(data.begin(), data.end() - 16); // without the numbers and the empty text 2
    };
    EXPECT_EQ(infoOf("English"), Cat({Str("English"), Bytes{0}}));
    EXPECT_EQ(infoOf("German"), Str("German"));
    EXPECT_EQ(infoOf(""), Bytes{});
    const std::string s254(254, 'a'), s255(255, 'b'), s300(300, 'c');
    EXPECT_EQ(infoOf(s254), Str(s254));
    EXPECT_EQ(infoOf(s255), Cat({Str(s255), Bytes{0}}));
    EXPECT_EQ(infoOf(s300), Cat({Str(s300.substr(0, 255)), Bytes{0}})); // cut to the buffer
}

// Reading text 1 runs on to the next zero, so an even-length text takes the first byte of number 1
// with it and every later field shifts by one. Both texts empty (the default) shift the line count past
// the end of INFO: such a table does not load back.
TEST(IffStringList, AnEvenInfoTextShiftsTheFieldsBehindIt) {
    test::TempDir dir;
    TIffStringList list;
    list.InfoText1 = "German";
    list.InfoText2 = "x";
    list.InfoValue3 = 5;
    list.Lines = {"z"};
    list.SaveToFile(dir / "t.eng");
    TIffStringList back;
    back.LoadFromFile(dir / "t.eng");
    EXPECT_EQ(back.InfoText1, "German");
    EXPECT_EQ(back.InfoValue1, 0);
    EXPECT_EQ(back.InfoValue2, 0x78000000); // the last three bytes of number 2 and the "x"
    EXPECT_EQ(back.InfoText2, "");          // the zero behind the "x"
    EXPECT_EQ(back.InfoValue3, 5);          // back in step
    EXPECT_EQ(back.Lines, (std::vector<std::string>{"z"}));

    TIffStringList empty;
    empty.Lines = {"z"};
    empty.SaveToFile(dir / "empty.eng");
    ExpectError<EIffReader>([&] { back.LoadFromFile(dir / "empty.eng"); },
                            "TIffReader: Read beyond end of chunk!");
}

TEST(IffStringList, OnlyStringsStartingBeforeTheLastEightBytesAreLoaded) {
    auto load = [](const Bytes& text) {
        TIffStringList list;
        list.LoadFromStream(Table(text));
        return list.Lines;
    };
    // "a", "b", "c": after "a" the position is 10, not below the size 6.
    EXPECT_EQ(load(Str(std::string("a\0b\0c\0", 6))), (std::vector<std::string>{"a"}));
    // A 20-byte TEXT: strings at data offsets 0 and 11 load, those at 14 and 17 do not.
    EXPECT_EQ(load(Str(std::string("0123456789\0ab\0cd\0ef\0", 20))),
              (std::vector<std::string>{"0123456789", "ab"}));
    EXPECT_EQ(load(Str(std::string("  padded \t\0\x01trim\x1F\0\0\0\0\0\0\0\0\0", 25))),
              (std::vector<std::string>{"padded", "trim"}));
}

TEST(IffStringList, EmptyTextChunkStillReadsOneString) {
    // TEXT is not the last item of LANG here, so it stays inside it.
    const Bytes emptyText = Form("DATA", {Form("LANG", {Chunk("TEXT", {}), Info()})});
    TIffStringList list;
    ExpectError<EIffReader>([&] { list.LoadFromStream(emptyText); }, "TIffReader: Read beyond end of chunk!");

    // Saved with no lines, the empty TEXT chunk closes LANG and DATA at once and lies outside both.
    test::TempDir dir;
    list.SaveToFile(dir / "empty.eng");
    ExpectError<EIffReader>([&] { list.LoadFromFile(dir / "empty.eng"); },
                            "TIffReader: , error at offset 00000030!");
}

TEST(IffStringList, AFailedLoadChangesNothing) {
    TIffStringList list;
    list.Lines = {"kept"};
    list.InfoText1 = "old";
    ExpectError<EIffReader>([&] { list.LoadFromStream(Form("DATA", {Form("LANG", {Info()})})); },
                            "TIffReader[Form: LANG]: Chunk (TEXT) doesn't exist!");
    ExpectError<EIffReader>([&] { list.LoadFromStream(Form("DATA", {Form("NONE")})); },
                            "TIffReader: Form (LANG) doesn't exist!");
    ExpectError<EIffReader>([&] { list.LoadFromStream(Str("junk")); },
                            "EIffReader_ErrorInChunk: Error in Chunk \"junk\" at offset 0");
    EXPECT_EQ(list.Lines, (std::vector<std::string>{"kept"}));
    EXPECT_EQ(list.InfoText1, "old");
    EXPECT_THROW(list.LoadFromFile("/nonexistent/strings.eng"), EInOutError);
}

TEST(IffStringList, LoadingAppends) {
    TIffStringList list;
    list.Lines = {"first"};
    list.LoadFromStream(Table(Str(std::string("second\0third\0\0\0\0\0\0\0\0\0", 22))));
    EXPECT_EQ(list.Lines, (std::vector<std::string>{"first", "second", "third", ""}));
    EXPECT_EQ(list.InfoText1, "Eng");
    EXPECT_EQ(list.InfoText2, "x");
    EXPECT_EQ(list.InfoValue3, 3);
}

TEST(IffStringList, LookupsIgnoreCase) {
    TIffStringList list;
    list.Lines = {"Launch", "say hello there", "HELLO"};
    EXPECT_EQ(list.IndexOfText("HELLO"), 1);
    EXPECT_EQ(list.IndexOfText("unch"), 0);
    EXPECT_EQ(list.IndexOfText("missing"), -1);
    EXPECT_EQ(list.IndexOfText(""), -1);
    EXPECT_EQ(list.IndexOf("hello"), 2);
    EXPECT_EQ(list.IndexOf("hell"), -1);
    EXPECT_EQ(list.IndexOf("LAUNCH"), 0);
}

TEST(IffStringList, SavingToAStreamIsNotImplemented) {
    TIffStringList list;
    MemoryStream stream;
    ExpectError<Exception>([&] { list.SaveToStream(stream); }, "TIffStringList.SaveToStream not implemented");
}

} // namespace
} // namespace velkor
