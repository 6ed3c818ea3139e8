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
