// BYTE, WORD and LONG rows of plain numbers are read straight from the text; everything else about them goes
// through the general token path. Both must give the same bytes, the same messages and the same error for
// every text, with either scanner class: each row below is assembled both ways and compared, and some are
// also checked against the bytes or the message they must give.
#include "tests/support/assemble.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velkor::test {
namespace {

using namespace std::string_literals;

struct RowCase {
    RowCase(std::string text, std::optional<Bytes> bytes, std::string message = "", bool isWhole = false,
            bool checkMessage = true)
        : values(std::move(text)), data(std::move(bytes)), error(std::move(message)), whole(isWhole),
          checkError(checkMessage) {}

    std::string values;        // the chunk's contents, or with `whole` the whole text
    std::optional<Bytes> data; // the chunk's data it must give, when known
    std::string error;         // the error it must end in ("" when it must assemble)
    bool whole;                // `values` is the whole text, not a chunk's contents
    bool checkError;           // the error text is checked (else only compared between the paths)
};

std::string InChunk(const std::string& values) {
    return "IFF \"t.iff\"\r\n{\r\n  form \"TEST\"\r\n  {\r\n    chunk \"DATA\"\r\n    {\r\n" + values +
           "\r\n    }\r\n  }\r\n}\r\n";
}

Bytes Data(std::initializer_list<int> bytes) {
    Bytes out;
    for (int b : bytes) out.push_back(static_cast<std::uint8_t>(b));
    return out;
}

const std::vector<RowCase>& Cases() {
    static const std::vector<RowCase> cases = {
        // The usual rows, and spacing of every kind.
        {"      BYTE [4] $01 $A2 $fe $0F", Data({0x01, 0xA2, 0xFE, 0x0F})},
        {"BYTE[4]$01,$02 ,$03  ,  $04", Data({1, 2, 3, 4})},
        {"BYTE [3]\t$01\t\t$02 \t $03", Data({1, 2, 3})},
        {"BYTE [2] $01$02", Data({1, 2})},
        {"BYTE [2] $01,\r\n$02", Data({1, 2})},
        {"BYTE [2] $01\r\n,$02", Data({1, 2})},
        {"BYTE [2] $01 $02\r\n      BYTE [1] $03\r\nBYTE $04", Data({1, 2, 3, 4})},
        {"byte [2] $1 $00000001", Data({1, 1})},
        // Decimal and hexadecimal, at and past the edges of each type.
        {"BYTE [4] 0 9 255 007", Data({0, 9, 255, 7})},
        {"WORD [3] 65535 $FFFF $1234", Data({0xFF, 0xFF, 0xFF, 0xFF, 0x34, 0x12})},
        {"LONG [2] $FFFFFFFF $7fffffff", Data({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F})},
        {"LONG [2] 999999999 1234567890", Data({0xFF, 0xC9, 0x9A, 0x3B, 0xD2, 0x02, 0x96, 0x49})},
        {"LONG 2147483647", Data({0xFF, 0xFF, 0xFF, 0x7F})},
        {"LONG $000000001", Data({1, 0, 0, 0})},
        {"LONG [2] $01 $0F00AAFF", std::nullopt, "[error] line 7: $0F00AAFF is not a valid integer value."},
        {"LONG [2] $01 251702015", std::nullopt, "[error] line 7: 251702015 is not a valid integer value."},
        {"LONG 2147483648", std::nullopt, "[error] line 7: 2147483648 is not a valid integer value."},
        {"LONG $100000000", std::nullopt, "[error] line 7: $100000000 is not a valid integer value."},
        {"BYTE [3] $01 $02 $100", std::nullopt, "[error] line 7: value doesn't fit into a byte"},
        {"BYTE [2] $01\r\n256", std::nullopt, "[error] line 8: value doesn't fit into a byte"},
        {"WORD [2] $FFFF $10000", std::nullopt, "[error] line 7: value doesn't fit into a word"},
        {"WORD 65536", std::nullopt, "[error] line 7: value doesn't fit into a word"},
        // Signs, constants and strings go the general way, and the row goes on after them.
        {"LONG [3] -1 $02 +3", Data({0xFF, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0, 3, 0, 0, 0})},
        {"BYTE [2] -1 $01", std::nullopt, "[error] line 7: value doesn't fit into a byte"},
        {"WORD [2] - 5 $01", std::nullopt, "[error] line 7: value doesn't fit into a word"},
        {"BYTE [2] \"5\" $06", Data({5, 6})},
        {"IFF \"t.iff\" { const k = $10, n = 3 form \"TEST\" { chunk \"DATA\" { BYTE [n] $01 k $02 } } }",
         Data({1, 0x10, 2}), "", true},
        {"IFF \"t.iff\" { type b = BYTE form \"TEST\" { chunk \"DATA\" { b [2] $01 $02 } } }", Data({1, 2}),
         "", true},
        // Tokens that only look like plain numbers.
        {"LONG [2] $1E+5 $02", std::nullopt, "", false, false},
        {"LONG [2] 1E5 $02", std::nullopt, "[error] line 7: 1E5 is not a valid integer value."},
        {"LONG [2] 1.5 $02", std::nullopt, "[error] line 7: 1.5 is not a valid integer value."},
        {"BYTE [2] $0.1 $02", std::nullopt, "[error] line 7: $0.1 is not a valid integer value."},
        {"BYTE [2] 12AB $02", std::nullopt, "[error] line 7: 12AB is not a valid integer value."},
        {"BYTE [2] $ $02", std::nullopt, "[error] line 7: $ is not a valid integer value."},
        {"BYTE [2] $G1 $02", std::nullopt, "", false, false},
        {"BYTE [2] 0x10 $02", std::nullopt, "", false, false},
        {"BYTE [2] %101 $02", std::nullopt, "[error] line 7: %101 is not a valid integer value."},
        {"LONG 1234567890123", std::nullopt, "[error] line 7: 1234567890123 is not a valid integer value."},
        // Missing and stray values, separators and comments.
        {"BYTE [4] $01 $02", std::nullopt, "", false, false},
        {"BYTE [3] $01 , , $02", std::nullopt, "", false, false},
        {"BYTE [2] $01;$02", std::nullopt, "", false, false},
        {"BYTE [0] $01", std::nullopt, "", false, false},
        {"BYTE [-1] $01", std::nullopt, "", false, false},
        {"BYTE [3] $01 // one\r\n $02 /* two */ $03", Data({1, 2, 3})},
        {"BYTE [3] $01/*c*/$02//c\r\n$03", Data({1, 2, 3})},
        {"BYTE [2] $01 /* two\r\nlines */ $02\r\nBYTE $300", std::nullopt, "", false, false},
        {"BYTE [2] $01 ##00009 $02", std::nullopt, "", false, false},
        {"BYTE [2] $01 # $02", std::nullopt, "", false, false},
        // Line ends of every kind, and where the error is then reported.
        {"BYTE [3] $01\r\n$02\r\n$300", std::nullopt, "[error] line 9: value doesn't fit into a byte"},
        {"BYTE [3] $01\n$02\n$03", std::nullopt, "", false, false},
        {"BYTE [3] $01\r$02\r$03", std::nullopt, "", false, false},
        {"BYTE [3] $01\n\r$02\r\n\n$300", std::nullopt, "", false, false},
        // The end of the text inside a row: its last character is a token of its own.
        {"IFF \"t\" { form \"TEST\" { chunk \"DATA\" { BYTE [2] $01 $02", std::nullopt, "", true, false},
        {"IFF \"t\" { form \"TEST\" { chunk \"DATA\" { BYTE [3] $01 $12", std::nullopt, "", true, false},
        {"IFF \"t\" { form \"TEST\" { chunk \"DATA\" { BYTE [3] 1 2 3", std::nullopt, "", true, false},
        {"IFF \"t\" { form \"TEST\" { chunk \"DATA\" { BYTE [9] $01 $02 ", std::nullopt, "", true, false},
        {"IFF \"t\" { form \"TEST\" { chunk \"DATA\" { WORD [1000000000] $01", std::nullopt, "", true, false},
        {"IFF \"t\" { form \"TEST\" { chunk \"DATA\" { BYTE [2] $01 $02 } } }", Data({1, 2}), "", true},
        {"IFF \"t\" { form \"TEST\" { chunk \"DATA\" { BYTE [2] $01 $02\0 } } }"s, std::nullopt, "", true,
         false},
    };
    return cases;
}

// The data of chunk "DATA", the first chunk of the first file.
std::optional<Bytes> FirstChunkData(const Assembled& a) {
    if (a.files.empty() || a.files[0].second.size() < 20) return std::nullopt;
    const Bytes& f = a.files[0].second;
    const size_t size = (size_t{f[16]} << 24) | (size_t{f[17]} << 16) | (size_t{f[18]} << 8) | f[19];
    if (size > f.size() - 20) return std::nullopt;
    return Bytes(f.begin() + 20, f.begin() + 20 + static_cast<std::ptrdiff_t>(size));
}

class ValueRows : public ::testing::TestWithParam<ScannerClass> {};

TEST_P(ValueRows, PlainNumbersGiveWhatTheGeneralPathGives) {
    for (const RowCase& c : Cases()) {
        const std::string text = c.whole ? c.values : InChunk(c.values);
        SCOPED_TRACE(text);
        const Assembled fast = Assemble(text, GetParam(), {}, true);
        const Assembled general = Assemble(text, GetParam(), {}, false);
        EXPECT_EQ(fast.error, general.error);
        EXPECT_EQ(fast.messages, general.messages);
        EXPECT_EQ(fast.files, general.files);
        if (c.checkError) {
            EXPECT_EQ(fast.error, c.error);
        }
        if (c.data) {
            EXPECT_EQ(FirstChunkData(fast), c.data);
        }
    }
}

// Long rows cross the reader's batches and mix with items it leaves to the general path.
TEST_P(ValueRows, LongRowsAcrossBatches) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string values = "BYTE [300]";
    Bytes want;
    for (int i = 0; i < 300; ++i) {
        const int v = (i * 37) % 256;
        if (i % 97 == 50)
            values += " \"" + std::to_string(v) + "\"";
        else if (i % 2)
            values += " " + std::to_string(v);
        else
            values += std::string(i % 64 == 0 ? "\r\n$" : " $") + kDigits[v / 16] + kDigits[v % 16];
        want.push_back(static_cast<std::uint8_t>(v));
    }
    const std::string text = InChunk(values + "\r\nLONG [70]" + [] {
        std::string longs;
        for (int i = 0; i < 70; ++i) longs += " $" + std::to_string(10000000 + i);
        return longs;
    }());
    for (int i = 0; i < 70; ++i) {
        const std::uint32_t v = 0x10000000u + static_cast<std::uint32_t>(i / 10 * 16 + i % 10);
        for (int b = 0; b < 4; ++b) want.push_back(static_cast<std::uint8_t>(v >> (8 * b)));
    }
    const Assembled fast = Assemble(text, GetParam(), {}, true);
    const Assembled general = Assemble(text, GetParam(), {}, false);
    ASSERT_EQ(fast.error, "");
    EXPECT_EQ(FirstChunkData(fast), want);
    EXPECT_EQ(fast.files, general.files);
}

INSTANTIATE_TEST_SUITE_P(BothScanners, ValueRows,
                         ::testing::Values(ScannerClass::Standard, ScannerClass::Fast));

} // namespace
} // namespace velkor::test
