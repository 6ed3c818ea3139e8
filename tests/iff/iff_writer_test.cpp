#include "iff/checksum.h"
#include "iff/iff_writer.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>
#include <random>
#include <string>

namespace velkor {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes B(std::string_view s) {
    return Bytes(s.begin(), s.end());
}

Bytes Span(std::initializer_list<int> v) {
    Bytes b;
    for (int x : v) b.push_back(static_cast<std::uint8_t>(x));
    return b;
}

TEST(NameHash, IsTheZeroSeededCrcWithoutInversion) {
    EXPECT_EQ(NameHash(""), 0u);
    // The zip CRC-32 of "123456789" is CBF43926; this one starts from 0 and is not inverted.
    EXPECT_EQ(NameHash("123456789"), 0x2DFD2D88u);
    EXPECT_NE(NameHash("main"), NameHash("Main"));
}

TEST(IffWriter, OddChunkIsPaddedAndCountedInItsForm) {
    TIffWriter w("_unused.iff", TIffWriter::InMemory);
    w.OpenForm("TEST");
    w.OpenChunk("DATA");
    w.Write(B("abc"));
    w.CloseChunk();
    w.CloseForm();
    Bytes want = B("FORM");
    for (int x : {0, 0, 0, 16}) want.push_back(static_cast<std::uint8_t>(x));
    for (auto b : B("TESTDATA")) want.push_back(b);
    for (auto b : Span({0, 0, 0, 3, 'a', 'b', 'c', 0})) want.push_back(b);
    EXPECT_EQ(w.Bytes(), want);
}

TEST(IffWriter, NestedSizesCountEveryHeaderAndPad) {
    TIffWriter w("_unused.iff", TIffWriter::InMemory);
    w.OpenForm("OUTR");
    w.OpenForm("EMPT");
    w.CloseForm(); // an empty form: "FORM", size 4, type
    w.OpenForm("INNR");
    w.OpenChunk("ONE_");
    w.WriteLong(0x01020304);
    w.CloseChunk();
    w.OpenChunk("TWO_");
    w.WriteCString("ab"); // 3 bytes and a pad
    w.CloseChunk();
    w.CloseForm();
    w.CloseForm();
    const Bytes& b = w.Bytes();
    auto be = [&](size_t at) { return (b[at] << 24) | (b[at + 1] << 16) | (b[at + 2] << 8) | b[at + 3]; };
    ASSERT_EQ(b.size(), 12u + 12 + 12 + 12 + 12);
    EXPECT_EQ(be(4), 4 + 12 + 12 + 12 + 12); // OUTR: type, EMPT, INNR header, two chunks
    EXPECT_EQ(be(16), 4);                    // EMPT
    EXPECT_EQ(be(28), 4 + 12 + 12);          // INNR
    EXPECT_EQ(be(40), 4);                    // ONE_
    EXPECT_EQ(Bytes(b.begin() + 44, b.begin() + 48), Span({4, 3, 2, 1}));
    EXPECT_EQ(be(52), 3); // TWO_ keeps its true length
    EXPECT_EQ(Bytes(b.begin() + 56, b.end()), Span({'a', 'b', 0, 0}));
}

TEST(IffWriter, ValueWritersAreLittleEndian) {
    TIffWriter w("_unused.iff", TIffWriter::InMemory);
    w.OpenForm("TEST");
    w.OpenChunk("DATA");
    w.WriteFloat(1.0f);
    w.WriteCrc("");
    w.WriteCrc("123456789");
    w.CloseChunk();
    w.CloseForm();
    Bytes tail(w.Bytes().begin() + 20, w.Bytes().end());
    EXPECT_EQ(tail, Span({0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0x88, 0x2D, 0xFD, 0x2D}));
}

TEST(IffWriter, CompressedWriteIsAZlibStream) {
    TIffWriter w("_unused.iff", TIffWriter::InMemory);
    w.OpenForm("TEST");
    w.OpenChunk("ZDAT");
    Bytes input(1000, 'x');
    w.WriteCompressed(input);
    w.CloseChunk();
    w.CloseForm();
    const Bytes& b = w.Bytes();
    uLongf n = static_cast<uLongf>(b[16] << 24 | b[17] << 16 | b[18] << 8 | b[19]);
    Bytes back(1000);
    uLongf outLen = back.size();
    ASSERT_EQ(uncompress(back.data(), &outLen, b.data() + 20, n), Z_OK);
    EXPECT_EQ(back, input);
    EXPECT_EQ(b[20], 0x78); // zlib header
}

TEST(IffWriter, RefusesMisnestedItemsWithItsMessages) {
    TIffWriter w("_unused.iff", TIffWriter::InMemory);
    auto message = [](auto&& f) {
        try {
            f();
        } catch (const EIffWriter& e) {
            return std::string(e.what());
        }
        return std::string("no exception");
    };
    EXPECT_EQ(message([&] { w.OpenChunk("DATA"); }), "TIffWriter.OpenChunk (DATA): Chunk outside form!");
    EXPECT_EQ(message([&] { w.CloseChunk(); }), "TIffWriter.CloseChunk: No open chunk!");
    EXPECT_EQ(message([&] { w.CloseForm(); }), "TIffWriter.CloseForm: No open form!");
    w.OpenForm("TEST");
    w.OpenChunk("DATA");
    EXPECT_EQ(message([&] { w.OpenChunk("MORE"); }), "TIffWriter.OpenChunk (MORE): Chunk inside chunk!");
    EXPECT_EQ(message([&] { w.OpenForm("SUBF"); }), "TIffWriter.OpenForm (SUBF): Form inside chunk!");
    w.CloseChunk();
    EXPECT_EQ(message([&] { w.Close(); }), "TIffWriter.Destroy: Form TEST still open!");
}

TEST(IffWriter, FileModeWritesStraightAndDiscardDeletes) {
    test::TempDir dir;
    auto path = dir / "out.iff";
    {
        TIffWriter w(path, TIffWriter::ToFile);
        EXPECT_TRUE(std::filesystem::exists(path));
        w.OpenForm("TEST");
        w.CloseForm();
        w.Close();
    }
    EXPECT_EQ(test::ReadFile(path), std::string("FORM\0\0\0\4TEST", 12));
    {
        TIffWriter w(path, TIffWriter::InMemory);
        w.OpenForm("GONE");
        w.Discard();
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    {
        TIffWriter w(path, TIffWriter::InMemory);
        w.OpenForm("SAVE");
        w.CloseForm();
        w.Close();
    }
    EXPECT_EQ(test::ReadFile(path), std::string("FORM\0\0\0\4SAVE", 12));
}

// A spooled file must read as the memory stream given the same writes: appends of every size around the
// window, sizes patched inside the window, behind it and across its start, and writes past the end.
TEST(SpoolStream, ReadsAsAMemoryStreamGivenTheSameWrites) {
    for (const unsigned seed : {1u, 2u, 3u}) {
        test::TempDir dir;
        std::mt19937 random(seed);
        MemoryStream memory;
        std::uint64_t end = 0;
        {
            SpoolStream spool(dir / "out.bin");
            auto both = [&](std::uint64_t at, std::size_t n) {
                Bytes bytes(n);
                for (auto& b : bytes) b = static_cast<std::uint8_t>(random());
                for (ByteStream* s : {static_cast<ByteStream*>(&memory), static_cast<ByteStream*>(&spool)}) {
                    s->Seek(at);
                    s->Write(bytes);
                    EXPECT_EQ(s->Position(), at + n);
                }
                end = std::max(end, at + n);
            };
            for (int step = 0; step < 400; ++step) {
                const unsigned kind = random() % 10;
                if (kind < 6) {
                    both(end, random() % 3000);
                } else if (kind == 6) {
                    both(end, SpoolStream::kWindow - 1 + random() % 3);
                } else if (kind == 7) {
                    both(end + random() % 5, random() % 9); // the gap reads as zeros
                } else if (kind == 8) {
                    both(end - std::min<std::uint64_t>(end, 2), 4); // over the end, often just flushed
                } else {
                    const std::size_t n = 1 + random() % 8;
                    if (end >= n) both(random() % (end - n + 1), n);
                }
            }
            both(SpoolStream::kWindow - 2, 4); // behind the first window and, if it is still open, in it
            EXPECT_FALSE(std::filesystem::exists(dir / "out.bin"));
            // The bytes reach the disk as they come, all but the last window.
            std::uintmax_t spooled = 0;
            for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
                spooled += entry.file_size();
            EXPECT_GT(spooled + SpoolStream::kWindow, end);
            spool.Commit();
        }
        const std::string file = test::ReadFile(dir / "out.bin");
        EXPECT_TRUE(Bytes(file.begin(), file.end()) == memory.Bytes()) << "seed " << seed;
    }
}

TEST(IffWriter, AtomicModeReplacesTheFileWithTheBytesOfMemoryModeOnlyAtClose) {
    test::TempDir dir;
    const auto path = dir / "out.iff";
    test::WriteFile(path, "old");
    auto write = [](TIffWriter& w) {
        w.OpenForm("OUTR");
        for (const std::size_t n :
             {std::size_t{3}, SpoolStream::kWindow - 9, std::size_t{0}, 2 * SpoolStream::kWindow + 1}) {
            w.OpenForm("INNR");
            w.OpenChunk("DATA");
            w.Write(Bytes(n, static_cast<std::uint8_t>(n)));
            w.CloseChunk();
            w.WriteLong(static_cast<std::int32_t>(n)); // outside any chunk, as the assembler may
            w.CloseForm();
        }
        w.CloseForm();
    };
    TIffWriter memory("_unused.iff", TIffWriter::InMemory);
    write(memory);
    {
        TIffWriter lost(path, TIffWriter::Atomic);
        write(lost);
        lost.Discard();
    }
    EXPECT_EQ(test::ReadFile(path), "old");
    TIffWriter atomic(path, TIffWriter::Atomic);
    write(atomic);
    EXPECT_EQ(test::ReadFile(path), "old");
    atomic.Close();
    const std::string file = test::ReadFile(path);
    EXPECT_EQ(Bytes(file.begin(), file.end()), memory.Bytes());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1); // no temporary file
}

} // namespace
} // namespace velkor
