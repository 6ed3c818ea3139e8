#include "iff/iff_handles.h"
#include "iff/iff_reader.h"
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

namespace velkor {
namespace {

using test::Bytes;
using test::Chunk;
using test::Form;
using test::Str;

TEST(IffHandles, ThirtyTwoSlotsNumberedFromOne) {
    const Bytes data = Str("abc");
    std::vector<int> taken;
    for (int i = 0; i < kIffHandleCount; ++i) taken.push_back(IffOpenHandle(data));
    for (int i = 0; i < kIffHandleCount; ++i) EXPECT_EQ(taken[static_cast<std::size_t>(i)], i + 1);
    EXPECT_EQ(IffFreeHandleCount(), 0);
    try {
        IffOpenHandle(data);
        ADD_FAILURE() << "a 33rd handle was handed out";
    } catch (const EIffReader_NoFreeFileHandles& e) {
        EXPECT_STREQ(e.what(), "EIffReader_NoFreeFileHandles: No free file handles! Cannot open stream");
    }
    // A scan needs a slot too, and fails the same way.
    const Bytes iff = Form("TEST");
    EXPECT_THROW(TIffReader r(iff), EIffReader_NoFreeFileHandles);
    IffCloseHandle(7);
    EXPECT_EQ(IffOpenHandle(data), 7); // the lowest free slot
    for (int h : taken) IffCloseHandle(h);
    EXPECT_EQ(IffFreeHandleCount(), kIffHandleCount);
    TIffReader ok(iff); // the slot was given back after the scan
    EXPECT_EQ(IffFreeHandleCount(), kIffHandleCount);
}

TEST(IffHandles, ClosingTwiceOrAnUnknownHandleFails) {
    const int h = IffOpenHandle(Str("abc"));
    IffCloseHandle(h);
    for (int bad : {h, 0, -1, kIffHandleCount + 1}) {
        try {
            IffCloseHandle(bad);
            ADD_FAILURE() << "closed handle " << bad;
        } catch (const EIffReader& e) {
            EXPECT_STREQ(e.what(), "TIffReader: handle to closed file!");
        }
    }
    std::uint8_t b[1];
    EXPECT_THROW(IffRead(h, b), EIffReader);
}

TEST(IffHandles, ReadsFromTheSlotPosition) {
    const Bytes data = Str("abcdef");
    const int h = IffOpenHandle(data);
    std::array<std::uint8_t, 4> b{};
    EXPECT_EQ(IffRead(h, b), 4u);
    EXPECT_EQ(IffRead(h, b), 2u); // what is left
    EXPECT_EQ(b[0], 'e');
    IffSeek(h, 100);
    EXPECT_EQ(IffRead(h, b), 0u);
    EXPECT_EQ(IffPosition(h), 100);
    EXPECT_EQ(IffHandleCopy(h), nullptr); // borrowed bytes
    IffCloseHandle(h);
}

TEST(IffHandles, AFileHandleOwnsItsMemoryCopyUntilClosed) {
    test::TempDir dir;
    test::WriteFile(dir / "f.bin", "xyz");
    const int h = IffOpenFile(dir / "f.bin");
    std::weak_ptr<const std::vector<std::uint8_t>> copy = IffHandleCopy(h);
    ASSERT_FALSE(copy.expired());
    EXPECT_EQ(*copy.lock(), Str("xyz"));
    IffCloseHandle(h);
    EXPECT_TRUE(copy.expired());
    const int before = IffFreeHandleCount();
    EXPECT_THROW(IffOpenFile(dir / "none.bin"), EInOutError);
    EXPECT_EQ(IffFreeHandleCount(), before);
}

// Many threads scan at once; the table hands no slot to two of them and ends with every slot free.
TEST(IffHandles, ConcurrentScansShareTheTable) {
    const Bytes data = Form("TEST", {Form("SUB_", {Chunk("DATA", Str("abcd"))}), Chunk("MORE", Str("xy"))});
    std::array<std::atomic<int>, kIffHandleCount + 1> holders{};
    std::atomic<int> clashes{0}, scans{0}, exhausted{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 40; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 300; ++i) {
                if (t % 2 == 0) {
                    TIffReader r(data);
                    r.OpenForm("SUB_");
                    r.OpenChunk("DATA");
                    if (r.ReadLong() == 0x64636261) scans.fetch_add(1);
                    continue;
                }
                int h = 0;
                try {
                    h = IffOpenHandle(data);
                } catch (const EIffReader_NoFreeFileHandles&) {
                    exhausted.fetch_add(1);
                    continue;
                }
                if (holders[static_cast<std::size_t>(h)].fetch_add(1) != 0) clashes.fetch_add(1);
                std::this_thread::yield();
                holders[static_cast<std::size_t>(h)].fetch_sub(1);
                IffCloseHandle(h);
            }
        });
    }
    for (auto& th : threads) th.join();
    EXPECT_EQ(clashes.load(), 0);
    // Scans may run out of slots while the others hold 20 of them; those that ran read correctly.
    EXPECT_GT(scans.load(), 0);
    EXPECT_EQ(IffFreeHandleCount(), kIffHandleCount);
}

} // namespace
} // namespace velkor
