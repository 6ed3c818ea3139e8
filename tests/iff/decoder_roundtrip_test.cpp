// The decoder's promise, checked over thousands of generated IFF trees: decoding and assembling the text
// gives back the input bytes.
#include "iff/iff_decoder.h"
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/decode_roundtrip.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace velkor::test {
namespace {

// Random canonical IFF: nested forms of random types holding chunks of random ids and sizes, sized and
// padded exactly as the writer does it.
class TreeGenerator {
public:
    explicit TreeGenerator(std::uint32_t seed) : rng_(seed) {}

    Bytes File(std::int64_t limit) {
        limit_ = limit;
        return FormBytes(0, Pick(kFormTypes));
    }

private:
    static constexpr const char* kFormTypes[] = {"SHIP", "ENGN", "GUNS", "ARMR", "DEST", "SHLD",
                                                 "TIME", "DATA", "LANG", "LOUT", "BULL", "MISS",
                                                 "MESH", "CAPS", "CMIS", "TEST"};
    static constexpr const char* kChunkIds[] = {"TIME", "TEXT", "LIST", "VERT", "VTNM", "NORM", "FVRT",
                                                "FACE", "RADI", "HARD", "STRU", "DATA", "BASE", "PHYS",
                                                "HITP", "POWR", "CONE", "GUN_", "LNCH", "MESH", "INFO"};

    std::size_t Below(std::size_t n) { return static_cast<std::size_t>(rng_() % n); }
    bool OneIn(std::size_t n) { return Below(n) == 0; }
    template <std::size_t N>
    std::string Pick(const char* const (&list)[N]) {
        return list[Below(N)];
    }

    std::string Id() {
        std::string id(4, ' ');
        switch (Below(4)) {
        case 0:
            for (char& c : id) c = static_cast<char>(rng_()); // any byte, non-printable ones included
            break;
        case 1:
            for (char& c : id) c = static_cast<char>(0x20 + Below(0x5F)); // printable, quotes and slashes too
            break;
        default: id = Pick(kChunkIds);
        }
        if (id == "FORM") id = "FORN";
        return id;
    }

    std::size_t Size() {
        switch (Below(6)) {
        case 0: return 0;
        case 1:
            if (limit_ >= 0 && limit_ < 1000)
                return static_cast<std::size_t>(limit_) + Below(3) - (limit_ > 0);
            return Below(300);
        case 2: return Below(200);
        default: return Below(40);
        }
    }

    void Append(Bytes& out, std::string_view text) { out.insert(out.end(), text.begin(), text.end()); }

    // Data that special decoders meet: floats of any bits, longs including the one the assembler refuses,
    // strings with and without characters the scanners would change, and plain noise.
    Bytes Data(std::size_t size) {
        Bytes out;
        while (out.size() < size) {
            switch (Below(5)) {
            case 0: {
                static constexpr std::uint32_t kSpecial[] = {0x0F00AAFF, 0x7FC00000, 0xFF800000, 0x80000000,
                                                             0x7F7FFFFF, 0x00000001, 0x3DCCCCCD};
                const std::uint32_t v =
                    OneIn(2) ? kSpecial[Below(std::size(kSpecial))] : static_cast<std::uint32_t>(rng_());
                for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
                break;
            }
            case 1: {
                const float f = static_cast<float>(static_cast<int>(Below(20000)) - 10000) /
                                static_cast<float>(1 + Below(64));
                const auto v = std::bit_cast<std::uint32_t>(f);
                for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
                break;
            }
            case 2: {
                static constexpr const char* kTexts[] = {"hello",   "",      "a//b",     "x/*y",
                                                         "q\"q",    "tab\t", "line\r\n", "\xE4\xF6",
                                                         "hp_gun1", "*/",    "##00001"};
                Append(out, kTexts[Below(std::size(kTexts))]);
                out.push_back(0);
                break;
            }
            default: out.push_back(static_cast<std::uint8_t>(rng_()));
            }
        }
        out.resize(size);
        return out;
    }

    Bytes ChunkBytes() {
        const std::size_t size = Size();
        Bytes out = Str(Id());
        const Bytes be = Be32(static_cast<std::uint32_t>(size));
        out.insert(out.end(), be.begin(), be.end());
        const Bytes data = Data(size);
        out.insert(out.end(), data.begin(), data.end());
        if (size % 2) out.push_back(0);
        return out;
    }

    Bytes FormBytes(int depth, const std::string& type) {
        Bytes body = Str(type);
        const std::size_t items = Below(depth == 0 ? 8 : 5);
        for (std::size_t i = 0; i < items; ++i) {
            const Bytes item = depth < 6 && OneIn(3)
                                   ? FormBytes(depth + 1, OneIn(8) ? Id() : Pick(kFormTypes))
                                   : ChunkBytes();
            body.insert(body.end(), item.begin(), item.end());
        }
        if (depth == 0) {
            // The reader refuses an empty chunk that ends the outermost form (its containment rule); a
            // last chunk with data keeps the nested forms' empty last chunks inside the file.
            const Bytes last = Cat({Str("LAST"), Be32(2), {1, 2}});
            body.insert(body.end(), last.begin(), last.end());
        } else if (OneIn(4)) { // an empty chunk at the end of the form
            const Bytes empty = Cat({Str(Pick(kChunkIds)), Be32(0)});
            body.insert(body.end(), empty.begin(), empty.end());
        }
        return Cat({Str("FORM"), Be32(static_cast<std::uint32_t>(body.size())), body});
    }

    std::mt19937 rng_;       // the source of every choice
    std::int64_t limit_ = 0; // the decode limit the sizes cluster around
};

class DecoderRoundTrip : public ::testing::Test {
protected:
    void TearDown() override { SetAllDecoders(true); }
    static void SetAllDecoders(bool enabled) {
        for (const std::string& name : SpecialDecoderNames()) SetSpecialDecoderEnabled(name, enabled);
    }
};

TEST_F(DecoderRoundTrip, GeneratedTreesComeBackByteForByte) {
    constexpr int kTrees = 3000;
    constexpr std::int64_t kLimits[] = {0, 1, 16, 17, 64, 1024};
    TempDir dir;
    int refusedByReader = 0, lossy = 0;
    for (int i = 0; i < kTrees; ++i) {
        const std::int64_t limit = kLimits[i % std::size(kLimits)];
        const Bytes file = TreeGenerator(static_cast<std::uint32_t>(i)).File(limit);
        SetAllDecoders(i % 3 != 0);
        DecodeOptions options;
        options.exactFloats = i % 2 == 0;
        DecodedIff decoded;
        try {
            decoded = DecodeIff(file, "tree.iff", limit, options);
        } catch (const EIffReader& e) {
            // The reader's containment rule refuses an empty chunk in the last 8 bytes of the outermost form.
            EXPECT_NE(std::string(e.what()).find(", error at offset "), std::string::npos) << e.what();
            ++refusedByReader;
            continue;
        }
        if (options.exactFloats) {
            ASSERT_TRUE(decoded.lossless) << "tree " << i << "\n" << decoded.text;
        }
        const ScannerClass scanner = i % 4 < 2 ? ScannerClass::Standard : ScannerClass::Fast;
        const Assembled back = AssembleDecoded(decoded, dir.path(), scanner);
        ASSERT_EQ(back.error, "") << "tree " << i << "\n" << decoded.text;
        ASSERT_EQ(back.files.size(), 1u);
        if (decoded.lossless) {
            ASSERT_EQ(back.files[0].second, file) << "tree " << i << "\n" << decoded.text;
        } else {
            ++lossy;
            // Rounded floats are rounded once: the text of the result is the same text.
            EXPECT_EQ(DecodeIff(back.files[0].second, "tree.iff", limit, options).text, decoded.text)
                << "tree " << i;
        }
    }
    EXPECT_EQ(refusedByReader, 0);
    EXPECT_GT(lossy, 0);
}

TEST_F(DecoderRoundTrip, ParallelDecodesWriteWhatSequentialOnesDo) {
    std::vector<Bytes> files;
    for (std::uint32_t i = 0; i < 64; ++i) files.push_back(TreeGenerator(100000 + i).File(32));
    auto decodeOne = [&](std::size_t i) {
        try {
            return DecodeIff(files[i], "p" + std::to_string(i) + ".iff", 32).text;
        } catch (const EIffReader& e) {
            return std::string(e.what());
        }
    };
    std::vector<std::string> sequential, parallel(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) sequential.push_back(decodeOne(i));
    {
        std::vector<std::jthread> threads;
        for (std::size_t t = 0; t < 8; ++t)
            threads.emplace_back([&, t] {
                for (std::size_t i = t; i < files.size(); i += 8) parallel[i] = decodeOne(i);
            });
    }
    EXPECT_EQ(parallel, sequential);
}

} // namespace
} // namespace velkor::test
