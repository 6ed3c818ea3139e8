#include "iff/checksum.h"
#include "iff/wcp_opcodes.h"
#include "tests/support/assemble.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace velkor::test {
namespace {

using Words = std::vector<std::uint32_t>;

// The words of the chunk a WCP_ASM block assembles into, or the error text.
struct Listing {
    Words words;
    std::string error;
};

Listing AssembleListing(const std::string& functions, const std::string& prelude = "",
                        ScannerClass scanner = ScannerClass::Standard) {
    Assembled a =
        Assemble("IFF \"m.iff\" {\r\n" + prelude + "form \"MISN\" {\r\nchunk \"FUNC\" {\r\nWCP_ASM {\r\n" +
                     functions + "\r\n}\r\n}\r\n}\r\n}\r\n",
                 scanner);
    Listing out;
    out.error = a.error;
    if (a.files.size() != 1) return out;
    const Bytes& f = a.files[0].second;
    for (size_t i = 20; i + 4 <= f.size(); i += 4)
        out.words.push_back(f[i] | (f[i + 1] << 8) | (f[i + 2] << 16) | (std::uint32_t{f[i + 3]} << 24));
    return out;
}

// The body words of a single function "func t { <body> }".
Words Body(const std::string& body, const std::string& prelude = "") {
    Listing l = AssembleListing("func t {\r\n" + body + "\r\n}", prelude);
    EXPECT_EQ(l.error, "") << body;
    if (l.words.size() < 4) return {};
    EXPECT_EQ(l.words[0], NameHash("t"));
    EXPECT_EQ(l.words[3], 4 * (l.words.size() - 4)) << "body size";
    return Words(l.words.begin() + 4, l.words.end());
}

TEST(WcpAsm, TheOpcodeTable) {
    // The table keeps its two unselected entries.
    const auto words = WcpOpcodeWords();
    EXPECT_NE(std::find(words.begin(), words.end(), 0x93B8970Cu), words.end());
    EXPECT_NE(std::find(words.begin(), words.end(), 0x3869AA0Cu), words.end());
    for (const auto& m : WcpMnemonics()) EXPECT_EQ(words[m.index] & 0xFF, 4u * m.operandCount) << m.name;
}

// A parameter count has no limit of its own: as many descriptors as it says, however many that is.
TEST(WcpAsm, AnyParameterCountWritesThatManyDescriptors) {
    for (const std::uint32_t count : {0u, 1u, 31u, 32u, 255u, 256u, 16384u, 16385u, 100000u}) {
        const Listing l = AssembleListing("func t " + std::to_string(count) + " { return v8; }");
        ASSERT_EQ(l.error, "") << count;
        ASSERT_EQ(l.words.size(), 3u + count + 3) << count;
        EXPECT_EQ(Words(l.words.begin(), l.words.begin() + 3), Words({NameHash("t"), 0, count}));
        EXPECT_EQ(std::count(l.words.begin() + 3, l.words.begin() + 3 + count, 0xEB1003A3u),
                  static_cast<std::ptrdiff_t>(count));
        EXPECT_EQ(Words(l.words.end() - 3, l.words.end()), Words({8, 0xE3041204, 8})) << count;
    }
}

TEST(WcpAsm, DeepNestingIsFollowedWithoutRecursion) {
    std::string deep(100000, '{');
    deep += std::string(100000, '}');
    Words words = Body(deep);
    ASSERT_EQ(words.size(), 200000u);
    EXPECT_EQ(words.front(), 0x15FBBB00u);
    EXPECT_EQ(words.back(), 0x00827700u);
}

// A build reads a unit's listing lines by themselves, and what a repeated line did is looked up rather than
// read again; an "if" or "else" without its ";" looks for it on the lines that follow. Read in place, every
// listing gives the files, messages and line numbers that the whole text gives, under either scanner.
TEST(WcpAsm, ListingLinesReadInPlaceAsInTheWholeText) {
    const std::vector<std::vector<std::string>> listings = {
        {"func t", "{", "  if v8", "  {", "    movc v8 1;", "  }", "  else", "  {", "  }", "}"},
        {"func t", "{", "if v8", "; movc v8 1;", "if v8", ";", "else", ";", "else", "movc v8 2;", "}"},
        {"func t", "{", "if v8", ", v9;", "if v8", ",", ";", "else", ",", "}"},
        {"func t", "{", "if v8", "// a comment", "", "; movv v8 v9;", "else", "  ", "}", "func u", "{", "}"},
        {"func t", "{", "if v8,", "else", "if v8;", "if v8 ;", "if v8 v9", "}"},
        {"func t", "{", "movv v8 v9;", "if v8", "{", "movv v8 v9;", "}", "if v8", "movv v8 v9;", "}",
         "func u", "{", "movv v8 v9;", "if v8", "movv v8 v9;", "}"},
        {"func t", "{", "if v8", "if v9", "else", "{", "}", "}"},
        {"func t", "{", "if v8"},
        {"func t", "{", "else"},
        {"func t", "{", "movc v8 1;", "movc v8 1;", "bogus v8 v9", "}"},
        {"func t", "{", "movc v8 1;", "if v8", "", "movc v8;", "}"},
        {"func t", "{", "{", "{", "}", "}", "}", "}", "movc v8 1;"},
    };
    const std::string before = "IFF \"m.iff\" {\r\nform \"MISN\" {\r\nchunk \"FUNC\" {\r\nWCP_ASM {\r\n";
    const std::string after = "}\r\n}\r\n}\r\n}\r\n";
    for (const auto& lines : listings) {
        std::string whole = before;
        for (const auto& line : lines) whole += line + "\r\n";
        whole += after;
        for (ScannerClass scanner : {ScannerClass::Standard, ScannerClass::Fast}) {
            const Assembled expected = Assemble(whole, scanner);
            const Assembled got = AssembleSpliced(before + after, before.size(), lines, scanner);
            EXPECT_EQ(got.files, expected.files) << whole;
            EXPECT_EQ(got.messages, expected.messages) << whole;
            EXPECT_EQ(got.error, expected.error) << whole;
        }
    }
}

} // namespace
} // namespace velkor::test
