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

std::string BodyError(const std::string& body) {
    return AssembleListing("func t {\r\n" + body + "\r\n}").error;
}

std::uint32_t Tag(const char (&s)[5]) {
    return std::uint8_t(s[0]) | (std::uint8_t(s[1]) << 8) | (std::uint8_t(s[2]) << 16) |
           (std::uint32_t(std::uint8_t(s[3])) << 24);
}

TEST(WcpAsm, EveryBuiltInInstructionWord) {
    struct Case {
        const char* line;
        Words words;
    };
    const Case cases[] = {
        {"addc v8 v8 1;", {0xE499DC0C, 8, 8, 1}},
        {"addv v8 v8 v9;", {0x4F48E10C, 8, 8, 9}},
        {"alloc 3;", {0xE3877404, 3}},
        {"andv v8 v8 v9;", {0xD5C05A0C, 8, 8, 9}},
        {"divc v8 v8 2;", {0x101F240C, 8, 8, 2}},
        {"divv v8 v8 v9;", {0xBBCE190C, 8, 8, 9}},
        {"goto \"012e\";", {0x69557404, Tag("012e")}},
        {"label \"012w\";", {0xF49C3204, Tag("012w")}},
        {"movc v8 1;", {0x5414BB08, 8, 1}},
        {"movv v8 v9;", {0xFFC58608, 8, 9}},
        {"mulc v8 v8 3;", {0xDBC32C0C, 8, 8, 3}},
        {"op v8 0 5;", {0x7D04E60C, 8, 0, 5}},
        {"opc v8 2 5;", {0x7D04E60C, 8, 2, 5}},
        {"opv v8 4 v9;", {0xD6D5DB0C, 8, 4, 9}},
        {"orv v8 v8 v9;", {0x28BF6C0C, 8, 8, 9}},
        {"push v8;", {0x75F3CE04, 8}},
        {"return v0;", {0xE3041204, 0}},
        {"subc v8 v8 1;", {0x5312750C, 8, 8, 1}},
        {"subv v1 v2 v3;", {0xF8C3480C, 1, 2, 3}},
        {"mulv v1 v2 v3;", {0x7012110C, 1, 2, 3}},
        {"xorc v8 v8 3;", {0xF8C3480C, 8, 8, 3}},
        {"xorv v1 v2 v3;", {0x7012110C, 1, 2, 3}},
        {"if v1;", {0xB2995D04, 1}},
        {"else;", {0x6E8E7D00}},
        {"call main 2;", {0xF0CEE008, NameHash("main"), 2}},
    };
    for (const auto& c : cases) EXPECT_EQ(Body(c.line), c.words) << c.line;
    // The table keeps its two unselected entries.
    const auto words = WcpOpcodeWords();
    EXPECT_NE(std::find(words.begin(), words.end(), 0x93B8970Cu), words.end());
    EXPECT_NE(std::find(words.begin(), words.end(), 0x3869AA0Cu), words.end());
    for (const auto& m : WcpMnemonics()) EXPECT_EQ(words[m.index] & 0xFF, 4u * m.operandCount) << m.name;
}

TEST(WcpAsm, FunctionRecords) {
    Listing l = AssembleListing("func main { }");
    EXPECT_EQ(l.error, "");
    EXPECT_EQ(l.words, Words({NameHash("main"), 0, 0, 0}));
    l = AssembleListing("func f 2 { return v8; }");
    EXPECT_EQ(l.words, Words({NameHash("f"), 0, 2, 0xEB1003A3, 0xEB1003A3, 8, 0xE3041204, 8}));
    // Several functions in one block, names quoted or not, case kept for the hash.
    l = AssembleListing("FUNC \"Go\" { alloc 1; }\r\nfunc go 1 { { } }");
    EXPECT_EQ(l.words, Words({NameHash("Go"), 0, 0, 8, 0xE3877404, 1, NameHash("go"), 0, 1, 0xEB1003A3, 8,
                              0x15FBBB00, 0x00827700}));
    // Two blocks in one chunk, and an empty block.
    Assembled a = Assemble("IFF a { form MISN { chunk FUNC { WCP_ASM { } WCP_ASM { func a { } } } } }");
    ASSERT_EQ(a.error, "");
    EXPECT_EQ(a.files.at(0).second.size(), 20u + 16);
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
    // Counts whose descriptors cannot fit into a file whose sizes are 32-bit are refused before anything
    // is written, naming the count.
    struct Hostile {
        const char* text;
        const char* count;
    };
    for (const Hostile h : {Hostile{"2147483647", "2147483647"}, Hostile{"1073741820", "1073741820"},
                            Hostile{"$7FFFFFFF", "2147483647"}}) {
        EXPECT_EQ(AssembleListing("func t " + std::string(h.text) + " { }").error,
                  "[error] line 5: func t: " + std::string(h.count) +
                      " parameter descriptors make the output file larger than 4 GB");
    }
}

TEST(WcpAsm, ConstantOperandsJoinASeparateSign) {
    EXPECT_EQ(Body("movc v8 -5;"), Words({0x5414BB08, 8, 0xFFFFFFFB}));
    EXPECT_EQ(Body("movc v8 - 5;"), Words({0x5414BB08, 8, 0xFFFFFFFB}));
    EXPECT_EQ(Body("movc v8 + 5;"), Words({0x5414BB08, 8, 5}));
    EXPECT_EQ(Body("movc v8 $FF;"), Words({0x5414BB08, 8, 0xFF}));
    // Value operands join nothing: the sign is an operand of its own, hashed.
    EXPECT_EQ(Body("Foo - 5;"), Words({(NameHash("Foo") & 0xFFFFFF00) | 8, NameHash("-"), 5}));
    // The sentinel of the conversion yields a hash, even spelled out.
    EXPECT_EQ(Body("movc v8 251702015;"), Words({0x5414BB08, 8, NameHash("251702015")}));
    EXPECT_EQ(Body("movc v8 $0F00AAFF;"), Words({0x5414BB08, 8, NameHash("$0F00AAFF")}));
    EXPECT_EQ(Body("movc v8 251702014;"), Words({0x5414BB08, 8, 251702014}));
    // Names that are no constants are hashed as written.
    EXPECT_EQ(Body("movc v8 Speed;"), Words({0x5414BB08, 8, NameHash("Speed")}));
    EXPECT_EQ(Body("movc v8 1.5;"), Words({0x5414BB08, 8, NameHash("1.5")}));
}

TEST(WcpAsm, Labels) {
    EXPECT_EQ(Body("goto \"012w\";"), Words({0x69557404, Tag("012w")}));
    EXPECT_EQ(Body("goto \"1012w\";"), Words({0x69557404, NameHash("1012w")}));
    EXPECT_EQ(Body("label abc;"), Words({0xF49C3204, NameHash("abc")}));
    // The 4 label bytes appear in text order in the file.
    Assembled a = Assemble("IFF a { form MISN { chunk FUNC { WCP_ASM { func t { label \"012w\"; } } } } }");
    const Bytes& f = a.files.at(0).second;
    EXPECT_EQ(std::string(f.end() - 4, f.end()), "012w");
}

TEST(WcpAsm, ConstantsStandForAnyOperand) {
    const std::string prelude = "const top = \"100w\", Limit = 7, minus = -, again = v9\r\n";
    EXPECT_EQ(Body("goto TOP; movc v8 limit; opc v8 2 minus 3; movv v8 again;", prelude),
              Words({0x69557404, Tag("100w"), 0x5414BB08, 8, 7, 0x7D04E60C, 8, 2, 0xFFFFFFFD, 0xFFC58608, 8,
                     NameHash("v9")}));
    // The registers are constants too, and stay defined for the rest of the text.
    Assembled a = Assemble("IFF a { form MISN { chunk FUNC { WCP_ASM { } long v31 } } }");
    ASSERT_EQ(a.error, "");
    EXPECT_EQ(a.files.at(0).second, OneChunkFile("MISN", "FUNC", Bytes({31, 0, 0, 0})));
    // A constant defined before the block keeps its value: the first definition wins.
    EXPECT_EQ(Body("push v8;", "const v8 = 3\r\n"), Words({0x75F3CE04, 3}));
}

TEST(WcpAsm, BlocksIfAndElse) {
    EXPECT_EQ(
        Body("if v8\r\n{\r\n}\r\nelse\r\n{\r\nreturn v0;\r\n}"),
        Words({0xB2995D04, 8, 0x15FBBB00, 0x00827700, 0x6E8E7D00, 0x15FBBB00, 0xE3041204, 0, 0x00827700}));
    EXPECT_EQ(Body("{ }"), Words({0x15FBBB00, 0x00827700}));
    EXPECT_EQ(Body("{ { } }"), Words({0x15FBBB00, 0x15FBBB00, 0x00827700, 0x00827700}));
    EXPECT_EQ(Body("if v8; else; else"), Words({0xB2995D04, 8, 0x6E8E7D00, 0x6E8E7D00}));
    // Deep nesting is followed without recursion.
    std::string deep(100000, '{');
    deep += std::string(100000, '}');
    Words words = Body(deep);
    ASSERT_EQ(words.size(), 200000u);
    EXPECT_EQ(words.front(), 0x15FBBB00u);
    EXPECT_EQ(words.back(), 0x00827700u);
}

TEST(WcpAsm, MnemonicsIgnoreCaseGameFunctionsDoNot) {
    EXPECT_EQ(Body("MOVC v8 1; MovV v8 V9;"), Words({0x5414BB08, 8, 1, 0xFFC58608, 8, 9}));
    Words lower = Body("getship v15, v14;");
    Words upper = Body("GetShip v15 v14;");
    ASSERT_EQ(lower.size(), 3u);
    ASSERT_EQ(upper.size(), 3u);
    EXPECT_EQ(lower[0], (NameHash("getship") & 0xFFFFFF00) | 8);
    EXPECT_EQ(upper[0], (NameHash("GetShip") & 0xFFFFFF00) | 8);
    EXPECT_NE(lower[0], upper[0]);
    EXPECT_EQ(Body("wait;"), Words({NameHash("wait") & 0xFFFFFF00}));
    // A misspelt instruction is a game-function call, never an error.
    EXPECT_EQ(Body("movx v8 1;"), Words({(NameHash("movx") & 0xFFFFFF00) | 8, 8, 1}));
}

TEST(WcpAsm, SixteenOperandsAtMost) {
    std::string ops;
    for (int i = 0; i < 16; ++i) ops += " " + std::to_string(i);
    Words words = Body("Many" + ops + ";");
    ASSERT_EQ(words.size(), 17u);
    EXPECT_EQ(words[0] & 0xFF, 64u);
    EXPECT_EQ(BodyError("Many" + ops + " 16;"), "[error] line 6: Range check error");
}

TEST(WcpAsm, Errors) {
    EXPECT_EQ(AssembleListing("fun t { }").error, "[error] line 5: expected <func>, but found fun");
    EXPECT_EQ(AssembleListing("func 5 { }").error, "[error] line 5: expected <name>, but found 5");
    EXPECT_EQ(AssembleListing("func t 1.5 { }").error, "[error] line 5: 1.5 is not a valid integer value.");
    EXPECT_EQ(AssembleListing("func t ( }").error, "[error] line 5: expected {, but found (");
    EXPECT_EQ(BodyError("movc v8 1\r\nmovc v8 2;"), "[error] line 7: expected ;, but found movc");
    EXPECT_EQ(BodyError("addc v8 v8 1, ;"), "");
    // A text that ends inside a body: the end reads as a game-function call that never meets its ";", and
    // its empty operands reach the limit of sixteen.
    Assembled a = Assemble("IFF a { form MISN { chunk FUNC { WCP_ASM { func t {\r\nmovc v8 1;\r\n");
    EXPECT_EQ(a.error, "[error] line 3: Range check error");
    a = Assemble("IFF a { form MISN { chunk FUNC { WCP_ASM { func t {\r\nFoo 1\r\n");
    EXPECT_EQ(a.error, "[error] line 3: Range check error");
    a = Assemble("IFF a { form MISN { chunk FUNC { WCP_ASM { func t {\r\nmovc v8\r\n");
    EXPECT_EQ(a.error, "[error] line 3: expected ;, but found ");
}

TEST(WcpAsm, BothScannersAgree) {
    const std::string listing =
        "func main 1 {\r\n  //symbol: x v16\r\n  alloc 2;\r\n  movc v8 - 1;\r\n"
        "  if v1\r\n  {\r\n    label \"012w\";\r\n  }\r\n  SetTarget v15 \"abc\";\r\n}";
    Listing standard = AssembleListing(listing);
    Listing fast = AssembleListing(listing, "", ScannerClass::Fast);
    EXPECT_EQ(standard.error, "");
    EXPECT_EQ(standard.words, fast.words);
    EXPECT_EQ(standard.words.size(), 5u + 2 + 3 + 2 + 1 + 2 + 1 + 3);
}

} // namespace
} // namespace velkor::test
