#include "iff/iff_reader.h"
#include "iff/iff_writer.h"
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

// MISN { HEAD "abc", FORM OBJS { SHIP 4 bytes, SHIP 2 bytes }, TAIL 0 bytes, FORM LAST {} }, from the writer.
Bytes Mission() {
    TIffWriter w("_unused.iff", TIffWriter::InMemory);
    w.OpenForm("MISN");
    w.OpenChunk("HEAD");
    w.Write(Str("abc"));
    w.CloseChunk();
    w.OpenForm("OBJS");
    w.OpenChunk("SHIP");
    w.WriteLong(0x11223344);
    w.CloseChunk();
    w.OpenChunk("SHIP");
    w.Write(Str("xy"));
    w.CloseChunk();
    w.CloseForm();
    w.OpenChunk("TAIL");
    w.CloseChunk();
    w.OpenForm("LAST");
    w.CloseForm();
    w.CloseForm();
    return w.Bytes();
}

TEST(IffReaderScan, OnlyTheFirstTopLevelItemIsIndexed) {
    // A linked mission file: the game's form, then the editor form as a second top-level form.
    TIffReader r = TIffReader::FromCopy(
        Cat({Form("MISN", {Chunk("VERS", Str("abcd"))}), Form("EDTR", {Chunk("CRCS", Str("xy"))})}),
        "two.iff");
    EXPECT_EQ(r.Root().ID, "MISN");
    ASSERT_EQ(r.Root().Chunks.size(), 1u);
    EXPECT_TRUE(r.Root().Forms.empty());
    r.OpenChunk("VERS");
    EXPECT_EQ(r.ReadLong(), 0x64636261);
}

TEST(IffReaderNavigation, StepsIntoFormsAndChunks) {
    const Bytes data = Mission();
    TIffReader r(data);
    EXPECT_EQ(r.Size(), r.Root().Size);
    r.OpenForm("OBJS");
    EXPECT_EQ(r.CurrentForm().ID, "OBJS");
    EXPECT_EQ(r.Size(), 4 + 12 + 10);
    r.OpenChunk("SHIP");
    EXPECT_EQ(r.CurrentForm().LastFound, 0); // the first of the two
    EXPECT_EQ(r.Position(), 8);
    EXPECT_EQ(r.Size(), 4);
    EXPECT_EQ(r.ReadLong(), 0x11223344);
    EXPECT_EQ(r.Position(), 12);
    r.CloseChunk();
    r.CloseForm();
    EXPECT_EQ(&r.CurrentForm(), &r.Root());
    r.OpenChunk("HEAD");
    r.OpenChunk("TAIL"); // replaces HEAD
    EXPECT_EQ(r.CurrentChunk()->ID, "TAIL");
    EXPECT_EQ(r.Root().LastFound, 1);
}

TEST(IffReaderNavigation, EveryRefusalHasItsMessage) {
    const Bytes data = Mission();
    TIffReader r(data);
    ExpectError<EIffReader>([&] { r.OpenForm("NONE"); }, "TIffReader: Form (NONE) doesn't exist!");
    ExpectError<EIffReader>([&] { r.CloseForm(); }, "TIffReader: Cannot close last form!");
    ExpectError<EIffReader>([&] { r.CloseChunk(); }, "TIffReader: No chunk is open!");
    std::uint8_t b[1];
    ExpectError<EIffReader>([&] { r.Read(b); }, "TIffReader: Must open chunk before reading!");
    ExpectError<EIffReader>([&] { r.ReadString(); }, "TIffReader: Must open chunk before reading!");
    ExpectError<EIffReader>([&] { (void)r.Position(); }, "TIffReader: Must open chunk before seeking!");
    ExpectError<EIffReader>([&] { r.OpenChunk("SHIP"); },
                            "TIffReader[Form: MISN]: Chunk (SHIP) doesn't exist!");
    EXPECT_EQ(r.Root().LastFound, -1);

    r.OpenChunk("HEAD");
    ExpectError<EIffReader>([&] { r.OpenForm("OBJS"); },
                            "TIffReader: Attempt to open new form, but chunk HEAD is still open!");
    ExpectError<EIffReader>([&] { r.CloseForm(); },
                            "TIffReader: Attempt to close form, but chunk HEAD is still open!");
    // A failed lookup leaves the open chunk as it was.
    ExpectError<EIffReader>([&] { r.OpenChunk("NONE"); },
                            "TIffReader[Form: MISN]: Chunk (NONE) doesn't exist!");
    EXPECT_EQ(r.CurrentChunk()->ID, "HEAD");
    EXPECT_EQ(r.Position(), 8);
}

TEST(IffReaderNavigation, IdsAreCaseSensitive) {
    const Bytes data = Mission();
    TIffReader r(data);
    EXPECT_THROW(r.OpenForm("objs"), EIffReader);
    EXPECT_THROW(r.OpenChunk("head"), EIffReader);
}

TEST(IffReaderRead, ReadsUpToThePadByteAndNoFurther) {
    const Bytes data = Form("TEST", {Chunk("ODD_", Str("abc")), Chunk("NEXT", Str("zz"))});
    TIffReader r(data);
    r.OpenChunk("ODD_");
    std::uint8_t buf[5] = {};
    r.Read(std::span(buf, 4)); // three data bytes and the pad
    EXPECT_EQ(Bytes(buf, buf + 4), Cat({Str("abc"), Bytes{0}}));
    ExpectError<EIffReader>([&] { r.Read(std::span(buf, 1)); }, "TIffReader: Read beyond end of chunk!");
    EXPECT_EQ(r.Position(), 12); // nothing was read

    r.OpenChunk("ODD_");
    ExpectError<EIffReader>([&] { r.Read(std::span(buf, 5)); }, "TIffReader: Read beyond end of chunk!");
    EXPECT_EQ(r.Position(), 8);
    r.Read(std::span(buf, 0));
    EXPECT_EQ(r.Position(), 8);
}

TEST(IffReaderRead, StringsLongsAndFloats) {
    const Bytes data =
        Form("TEST", {Chunk("VALS", Cat({Str("hello"), Bytes{0}, Bytes{0}, Bytes{0xFE, 0xFF, 0xFF, 0xFF},
                                         Bytes{0, 0, 0x80, 0x3F}, Str("opens")}))});
    TIffReader r(data);
    r.OpenChunk("VALS");
    EXPECT_EQ(r.ReadString(), "hello");
    EXPECT_EQ(r.Position(), 14);
    EXPECT_EQ(r.ReadString(), "");
    EXPECT_EQ(r.ReadLong(), -2);
    EXPECT_EQ(r.ReadFloat(), 1.0f);
    // The last string has no terminator: its bytes are consumed, then the chunk's end stops it.
    ExpectError<EIffReader>([&] { r.ReadString(); }, "TIffReader: Read beyond end of chunk!");
    EXPECT_EQ(r.Position(), r.Size() + 8);
}

TEST(IffReaderRead, ChunksOfTheTreeCanBeOpenedDirectly) {
    const Bytes data = Mission();
    TIffReader r(data);
    const TChunk& second = *r.Root().Forms[0]->Chunks[1];
    r.OpenChunk(second);
    EXPECT_EQ(r.CurrentForm().ID, "OBJS");
    std::uint8_t xy[2];
    r.Read(xy);
    EXPECT_EQ(Bytes(xy, xy + 2), Str("xy"));
    const auto bytes = r.ChunkData(*r.Root().Chunks[0]);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), Cat({Str("abc"), Bytes{0}}));
}

TEST(IffReaderFile, OpensByNameAndNamesTheFileInMessages) {
    test::TempDir dir;
    const Bytes data = Mission();
    test::WriteFile(dir / "Mission.IFF", std::string(data.begin(), data.end()));
    TIffReader r = TIffReader::FromFile(dir / "mission.iff"); // letter case as the games' sources write it
    EXPECT_EQ(r.SourceName(), (dir / "mission.iff").string());
    r.OpenForm("OBJS");
    r.OpenChunk("SHIP");
    EXPECT_EQ(r.ReadLong(), 0x11223344);

    test::WriteFile(dir / "bad.iff", std::string("\0\0\0\0", 4));
    const std::string bad = (dir / "bad.iff").string();
    ExpectError<EIffReader>([&] { (void)TIffReader::FromFile(bad); },
                            "TIffReader: " + bad + "not a valid .iff file!");
    EXPECT_THROW((void)TIffReader::FromFile(dir / "missing.iff"), EInOutError);
    EXPECT_EQ(IffFreeHandleCount(), kIffHandleCount);
}

TEST(IffReaderFile, AnOwningReaderOutlivesTheCallersBytes) {
    TIffReader r = TIffReader::FromCopy(Mission(), "copy");
    TIffReader moved = std::move(r);
    moved.OpenChunk("HEAD");
    EXPECT_EQ(moved.ReadString(), "abc");
}

} // namespace
} // namespace velkor
