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

TEST(IffReaderScan, BuildsTheTreeWithOffsetsAndEvenSizes) {
    const Bytes data = Mission();
    TIffReader r(data);
    const TForm& root = r.Root();
    EXPECT_EQ(root.ID, "MISN");
    EXPECT_EQ(root.Offset, 0);
    EXPECT_EQ(root.Size, static_cast<std::int64_t>(data.size()) - 8);
    EXPECT_EQ(root.Parent, nullptr);
    ASSERT_EQ(root.Chunks.size(), 2u);
    ASSERT_EQ(root.Forms.size(), 2u);
    EXPECT_EQ(root.Chunks[0]->ID, "HEAD");
    EXPECT_EQ(root.Chunks[0]->Offset, 12);
    EXPECT_EQ(root.Chunks[0]->Size, 4); // 3 on disk, made even
    const TForm& objs = *root.Forms[0];
    EXPECT_EQ(objs.ID, "OBJS");
    EXPECT_EQ(objs.Offset, 24);
    EXPECT_EQ(objs.Parent, &root);
    ASSERT_EQ(objs.Chunks.size(), 2u);
    EXPECT_EQ(objs.Chunks[1]->Offset, 48);
    EXPECT_EQ(objs.Chunks[1]->Size, 2);
    EXPECT_EQ(objs.Chunks[1]->Parent, &objs);
    EXPECT_EQ(root.Chunks[1]->ID, "TAIL");
    EXPECT_EQ(root.Forms[1]->ID, "LAST");
    EXPECT_EQ(&r.CurrentForm(), &root);
    EXPECT_EQ(r.CurrentChunk(), nullptr);
}

TEST(IffReaderScan, ChildrenComeInFileOrder) {
    const Bytes data = Mission();
    TIffReader r(data);
    std::string order;
    for (const TIffItem* item : r.Root().Children()) order += item->ID + (item->IsForm() ? "/ " : " ");
    EXPECT_EQ(order, "HEAD OBJS/ TAIL LAST/ ");
}

// An empty chunk closing a nested form starts exactly at that form's offset + size, outside the
// strict span, so it is filed under the form above. So is anything in the last 8 bytes of a span.
TEST(IffReaderScan, ItemsInTheLastEightBytesOfAFormBelongToItsParent) {
    const Bytes data = Form(
        "OUTR", {Form("INNR", {Chunk("FULL", Str("abcd")), Chunk("EMPT", {})}), Chunk("NEXT", Str("zz"))});
    TIffReader r(data);
    const TForm& innr = *r.Root().Forms.at(0);
    ASSERT_EQ(innr.Chunks.size(), 1u);
    EXPECT_EQ(innr.Chunks[0]->ID, "FULL");
    ASSERT_EQ(r.Root().Chunks.size(), 2u);
    EXPECT_EQ(r.Root().Chunks[0]->ID, "EMPT");
    EXPECT_EQ(r.Root().Chunks[0]->Offset, 36);
    EXPECT_EQ(r.Root().Chunks[0]->Parent, &r.Root());

    // One non-empty chunk more and the empty one is inside again.
    const Bytes inside = Form("OUTR", {Form("INNR", {Chunk("EMPT", {}), Chunk("FULL", Str("ab"))})});
    TIffReader r2(inside);
    EXPECT_EQ(r2.Root().Forms.at(0)->Chunks.size(), 2u);

    // A form whose size field stops 2 bytes after its only chunk's start: the next chunk (8 bytes on)
    // lies in its last 8 bytes and goes to the parent.
    Bytes shortForm =
        Form("OUTR", {Cat({Str("FORM"), Be32(4 + 12 + 2), Str("INNR"), Chunk("FULL", Str("abcd"))}),
                      Chunk("NEXT", Str("ab"))});
    TIffReader r3(shortForm);
    EXPECT_EQ(r3.Root().Forms.at(0)->Chunks.size(), 1u);
    ASSERT_EQ(r3.Root().Chunks.size(), 1u);
    EXPECT_EQ(r3.Root().Chunks[0]->ID, "NEXT");
}

TEST(IffReaderScan, EmptyFormAtTheEndOfANestedFormIsItsSibling) {
    const Bytes data = Form("OUTR", {Form("INNR", {Chunk("FULL", Str("abcd")), Form("SUB_")})});
    TIffReader r(data);
    ASSERT_EQ(r.Root().Forms.size(), 1u); // SUB_ lies inside OUTR's span, past INNR's
    const TForm& innr = *r.Root().Forms[0];
    ASSERT_EQ(innr.Forms.size(), 1u);
    EXPECT_EQ(innr.Forms[0]->ID, "SUB_");
}

TEST(IffReaderScan, TrailingZeroBytesAndShortTailsEndTheScan) {
    const Bytes base = Form("TEST", {Chunk("DATA", Str("abcd"))});
    for (const Bytes& tail :
         {Bytes(16, 0), Bytes{1, 2, 3}, Cat({Bytes{0}, Str("BCD"), Chunk("MORE", Str("zz"))})}) {
        TIffReader r = TIffReader::FromCopy(Cat({base, tail}));
        EXPECT_EQ(r.Root().Chunks.size(), 1u);
        EXPECT_EQ(r.Root().Forms.size(), 0u);
    }
}

TEST(IffReaderScan, FailuresNameTheSourceAndOffset) {
    ExpectError<EIffReader>([] { TIffReader r = TIffReader::FromCopy(Bytes{}); },
                            "TIffReader: not a valid .iff file!");
    ExpectError<EIffReader>([] { TIffReader r = TIffReader::FromCopy(Str("FOR")); },
                            "TIffReader: not a valid .iff file!");
    ExpectError<EIffReader>(
        [] {
            TIffReader r = TIffReader::FromCopy(Cat({Bytes{0}, Str("ORM"), Be32(4), Str("TEST")}), "x.iff");
        },
        "TIffReader: x.iffnot a valid .iff file!");
    // An item in the last 8 bytes of the outermost form's span has no form above to go to.
    ExpectError<EIffReader>(
        [] { TIffReader r = TIffReader::FromCopy(Cat({Form("ONE_", {Chunk("EMPT", {})})}), "end.iff"); },
        "TIffReader: end.iff, error at offset 0000000C!");
    ExpectError<EIffReader_ErrorInForm>([] { TIffReader r = TIffReader::FromCopy(Str("FORM")); },
                                        "EIffReader_ErrorInForm: Error in Form \"\" at offset 0");
    ExpectError<EIffReader_ErrorInForm>(
        [] {
            TIffReader r = TIffReader::FromCopy(
                Cat({Str("FORM"), Be32(100), Str("OUTR"), Str("FORM"), Be32(4), Str("IN")}));
        },
        "EIffReader_ErrorInForm: Error in Form \"IN\" at offset C");
    ExpectError<EIffReader_ErrorInChunk>(
        [] {
            TIffReader r = TIffReader::FromCopy(
                Cat({Form("OUTR", {Chunk("ABCD", Str("0123456789"))}), Str("TAIL"), Bytes{0, 0}}));
        },
        "EIffReader_ErrorInChunk: Error in Chunk \"TAIL\" at offset 1E");
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

// The first item is the root even when it is a chunk; nothing can follow it.
TEST(IffReaderScan, AChunkAsFirstItemBecomesTheRoot) {
    TIffReader r = TIffReader::FromCopy(Chunk("ABCD", Str("1234")));
    EXPECT_EQ(r.Root().ID, "ABCD");
    EXPECT_EQ(r.Root().Size, 4);
    // What follows the first item is not indexed.
    TIffReader r2 = TIffReader::FromCopy(Cat({Chunk("ABCD", Str("1234")), Chunk("EFGH", {})}));
    EXPECT_TRUE(r2.Root().Chunks.empty());
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
