#include "iff/iff_reader.h"
#include "tests/iff/iff_test_helpers.h"

#include <gtest/gtest.h>
#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

#include <string>

namespace velkor {
namespace {

using test::Be32;
using test::Bytes;
using test::Cat;
using test::Chunk;
using test::Form;
using test::Str;

std::string MessageOf(const std::function<void()>& body) {
    try {
        body();
    } catch (const EIffReader& e) {
        return e.what();
    }
    return "(no EIffReader)";
}

// Forms nested `depth` deep, each claiming nearly 4 GB so that each holds the next.
Bytes DeepForms(int depth) {
    Bytes out;
    out.reserve(static_cast<std::size_t>(depth) * 12 + 16);
    for (int i = 0; i < depth; ++i) {
        const Bytes header = Cat({Str("FORM"), Be32(0xFFFFFFF0u), Str("DEEP")});
        out.insert(out.end(), header.begin(), header.end());
    }
    return out;
}

TEST(IffReaderHostile, HundredsOfThousandsOfNestedFormsNeitherRecurseNorCrash) {
    const int depth = 300000;
    Bytes data = DeepForms(depth);
    const Bytes leaf = Chunk("LEAF", Cat({Str("ok"), Bytes{0}}));
    data.insert(data.end(), leaf.begin(), leaf.end());
    {
        TIffReader r(data);
        const TForm* form = &r.Root();
        int levels = 1;
        while (!form->Forms.empty()) {
            form = form->Forms[0].get();
            ++levels;
        }
        EXPECT_EQ(levels, depth);
        ASSERT_EQ(form->Chunks.size(), 1u);
        r.OpenChunk(*form->Chunks[0]);
        EXPECT_EQ(r.ReadString(), "ok");
    } // the whole tree is destroyed here

    // Forms whose sizes all end 2 bytes behind a 10-byte leaf chunk: the empty chunk after it, in the last
    // 8 bytes of every form's span, fits none of them and climbs all the way up before failing.
    Bytes tall;
    tall.reserve(static_cast<std::size_t>(depth) * 12 + 20);
    for (int i = 0; i < depth; ++i) {
        const Bytes header =
            Cat({Str("FORM"), Be32(static_cast<std::uint32_t>(4 + 12 * (depth - 1 - i) + 18)), Str("DEEP")});
        tall.insert(tall.end(), header.begin(), header.end());
    }
    const Bytes tail = Cat({Chunk("LEAF", Str("ab")), Chunk("OUTS", {})});
    tall.insert(tall.end(), tail.begin(), tail.end());
    EXPECT_EQ(MessageOf([&] { TIffReader r(tall); }), "TIffReader: , error at offset 0036EE8A!");
}

TEST(IffReaderHostile, SizesPastTheEndAreCaughtWhenRead) {
    const Bytes data = Form("TEST", {Cat({Str("HUGE"), Be32(0xFFFFFFFFu), Str("abc")})});
    TIffReader r(data);
    ASSERT_EQ(r.Root().Chunks.size(), 1u);
    const TChunk& huge = *r.Root().Chunks[0];
    EXPECT_EQ(huge.Size, 0x100000000LL); // made even without wrapping
    const std::string past = "TIffReader: Chunk (HUGE) at offset 0000000C runs past the end of the data!";
    EXPECT_EQ(MessageOf([&] { (void)r.ChunkData(huge); }), past);
    r.OpenChunk("HUGE");
    std::uint8_t b[4];
    EXPECT_EQ(MessageOf([&] { r.Read(b); }), past);
    EXPECT_EQ(r.Position(), 8);
    std::uint8_t three[3];
    r.Read(three);
    EXPECT_EQ(Bytes(three, three + 3), Str("abc"));
    EXPECT_EQ(MessageOf([&] { r.ReadString(); }), past); // no zero before the data ends
    EXPECT_EQ(MessageOf([&] { r.ReadLong(); }), past);
}

TEST(IffReaderHostile, AnOddSizeWithoutItsPadByteAtTheEnd) {
    // An odd size without its pad byte at the very end.
    Bytes noPad = Form("TEST", {Chunk("ODD_", Str("abc"))});
    noPad.pop_back();
    TIffReader r(noPad);
    r.OpenChunk("ODD_");
    std::uint8_t three[3];
    r.Read(three);
    std::uint8_t pad[1];
    EXPECT_EQ(MessageOf([&] { r.Read(pad); }),
              "TIffReader: Chunk (ODD_) at offset 0000000C runs past the end of the data!");
}

// Address space that is reserved but never touched: reading it would fault, so nothing may.
void* ReserveUntouchable(std::size_t size) {
#ifdef _WIN32
    return VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
#else
    void* p = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return p == MAP_FAILED ? nullptr : p;
#endif
}

void Release(void* p, [[maybe_unused]] std::size_t size) {
#ifdef _WIN32
    VirtualFree(p, 0, MEM_RELEASE);
#else
    munmap(p, size);
#endif
}

TEST(IffReaderHostile, DataOfFourGigabytesOrMoreIsRefused) {
    const std::size_t size = 0x100000000ULL;
    void* p = ReserveUntouchable(size);
    if (!p) GTEST_SKIP() << "cannot reserve 4 GB of address space";
    const std::span<const std::uint8_t> huge(static_cast<const std::uint8_t*>(p), size);
    EXPECT_EQ(MessageOf([&] { TIffReader r(huge); }), "TIffReader: data larger than 4 GB!");
    Release(p, size);
    EXPECT_EQ(IffFreeHandleCount(), kIffHandleCount);
}

} // namespace
} // namespace velkor
