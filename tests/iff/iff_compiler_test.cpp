#include "iff/checksum.h"
#include "iff/iff_compiler.h"
#include "tests/support/assemble.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <bit>
#include <filesystem>

namespace velkor::test {
namespace {

// Both scanner classes must assemble every text alike.
class IffCompiler : public ::testing::TestWithParam<ScannerClass> {
protected:
    Assembled Run(std::string_view text, const std::filesystem::path& base = {}) {
        return Assemble(text, GetParam(), base);
    }
    // The data of the single chunk "DATA" in form "TEST" of a one-file text.
    Bytes ChunkData(std::string_view values) {
        Assembled a =
            Run("IFF \"t.iff\" { form \"TEST\" { chunk \"DATA\" { " + std::string(values) + " } } }\r\n");
        EXPECT_EQ(a.error, "");
        if (a.files.size() != 1) return {};
        const Bytes& f = a.files[0].second;
        if (f.size() < 20) return {};
        const size_t size = (size_t{f[16]} << 24) | (size_t{f[17]} << 16) | (size_t{f[18]} << 8) | f[19];
        return Bytes(f.begin() + 20,
                     f.begin() + 20 + static_cast<std::ptrdiff_t>(std::min(size, f.size() - 20)));
    }
    std::string ChunkError(std::string_view values) {
        return Run("IFF \"t.iff\" { form \"TEST\" { chunk \"DATA\" { " + std::string(values) + " } } }\r\n")
            .error;
    }
};

TEST_P(IffCompiler, TheThirtyByteExample) {
    Assembled a = Run("IFF \"a.iff\" { form \"TEST\" { chunk \"DATA\" { long [2] 1, 2 byte [2] 3 4 } } }");
    ASSERT_EQ(a.error, "");
    ASSERT_EQ(a.files.size(), 1u);
    EXPECT_EQ(a.files[0].first, "a.iff");
    Bytes want = B("FORM");
    AppendBigEndian(want, 22);
    for (auto b : B("TESTDATA")) want.push_back(b);
    AppendBigEndian(want, 10);
    for (int b : {1, 0, 0, 0, 2, 0, 0, 0, 3, 4}) want.push_back(static_cast<std::uint8_t>(b));
    EXPECT_EQ(a.files[0].second, want);
    EXPECT_TRUE(a.messages.empty());
}

TEST_P(IffCompiler, FormAndChunkNames) {
    Assembled a = Run("IFF \"m.iff\" { form \"MISSION\" { chunk \"DATAX\" { } } }");
    ASSERT_EQ(a.error, "");
    EXPECT_EQ(a.files[0].second, OneChunkFile("MISS", "DATA", {}));
    // Keywords ignore case, names may be identifiers, and a numeric id is its little-endian bytes.
    a = Run("iff m { FORM TEST { CHUNK $44434241 { } Chunk 1096045633 { } } }");
    ASSERT_EQ(a.error, "");
    Bytes want = B("FORM");
    AppendBigEndian(want, 20);
    for (auto b : B("TESTABCD")) want.push_back(b);
    AppendBigEndian(want, 0);
    for (auto b : B("ATTA")) want.push_back(b);
    AppendBigEndian(want, 0);
    EXPECT_EQ(a.files[0].first, "m");
    EXPECT_EQ(a.files[0].second, want);

    EXPECT_EQ(Run("IFF \"a\" { form \"TEST\" { chunk \"DAT\" { } } }").error,
              "[error] line 1: Range check error");
    EXPECT_EQ(Run("IFF \"a\" { form \"TES\" { } }").error, "[error] line 1: Range check error");
}

TEST_P(IffCompiler, NestedFormsEmptyFormsAndSeveralBlocks) {
    Assembled a =
        Run("IFF \"one\" { form \"OUTR\" { form \"EMPT\" { } chunk \"ODD_\" { cstring \"ab\" } } }\r\n"
            "IFF \"two\" { form \"EMPT\" { } }\r\n"
            "IFF \"three\" { }");
    ASSERT_EQ(a.error, "");
    ASSERT_EQ(a.files.size(), 3u);
    Bytes one = B("FORM");
    AppendBigEndian(one, 4 + 12 + 12);
    for (auto b : B("OUTRFORM")) one.push_back(b);
    AppendBigEndian(one, 4);
    for (auto b : B("EMPTODD_")) one.push_back(b);
    AppendBigEndian(one, 3);
    for (auto b : B("ab")) one.push_back(b);
    one.push_back(0);
    one.push_back(0); // the pad byte
    EXPECT_EQ(a.files[0].second, one);
    EXPECT_EQ(a.files[1].second, Bytes({'F', 'O', 'R', 'M', 0, 0, 0, 4, 'E', 'M', 'P', 'T'}));
    EXPECT_EQ(a.files[2].first, "three");
    EXPECT_TRUE(a.files[2].second.empty());
}

TEST_P(IffCompiler, IntegerValues) {
    EXPECT_EQ(ChunkData("word 65535"), Bytes({0xFF, 0xFF}));
    EXPECT_EQ(ChunkData("word [2] $1234 0"), Bytes({0x34, 0x12, 0, 0}));
    EXPECT_EQ(ChunkData("long -1 long - 2 long $80000000"),
              Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0x80}));
    EXPECT_EQ(ChunkData("byte [0] long [1] 7,"), Bytes({7, 0, 0, 0}));
    EXPECT_EQ(ChunkData("byte 255 byte 0"), Bytes({255, 0}));
    EXPECT_EQ(ChunkError("byte -1"), "[error] line 1: value doesn't fit into a byte");
    EXPECT_EQ(ChunkError("byte 256"), "[error] line 1: value doesn't fit into a byte");
    EXPECT_EQ(ChunkError("word 65536"), "[error] line 1: value doesn't fit into a word");
    EXPECT_EQ(ChunkError("word -1"), "[error] line 1: value doesn't fit into a word");
    EXPECT_EQ(ChunkError("long 2147483648"), "[error] line 1: 2147483648 is not a valid integer value.");
    EXPECT_EQ(ChunkError("long 1.5"), "[error] line 1: 1.5 is not a valid integer value.");
    EXPECT_EQ(ChunkError("long \"7\""), "");
    EXPECT_EQ(ChunkError("long ;"), "[error] line 1: ; is not a valid integer value.");
}

TEST_P(IffCompiler, TheSentinelCannotBeWritten) {
    EXPECT_EQ(ChunkError("long 251702015"), "[error] line 1: 251702015 is not a valid integer value.");
    EXPECT_EQ(ChunkError("long $0F00AAFF"), "[error] line 1: $0F00AAFF is not a valid integer value.");
    EXPECT_EQ(ChunkData("long 251702014"), Bytes({0xFE, 0xAA, 0x00, 0x0F}));
}

TEST_P(IffCompiler, WithoutACountAValueHasOneItem) {
    EXPECT_EQ(ChunkError("long 1, 2"), "[error] line 1: expected <type>, but found 2");
    EXPECT_EQ(ChunkError("bogus 1"), "[error] line 1: expected <type>, but found bogus");
    EXPECT_EQ(ChunkError("byte [2 1"), "[error] line 1: expected ], but found 1");
}

TEST_P(IffCompiler, FloatsAndDoubles) {
    auto le = [](std::uint64_t v, int n) {
        Bytes out;
        for (int i = 0; i < n; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
        return out;
    };
    EXPECT_EQ(ChunkData("float 1.5"), le(std::bit_cast<std::uint32_t>(1.5f), 4));
    EXPECT_EQ(ChunkData("float - 2.5E+3"), le(std::bit_cast<std::uint32_t>(-2500.0f), 4));
    EXPECT_EQ(ChunkData("float 0.1"), le(std::bit_cast<std::uint32_t>(0.1f), 4));
    EXPECT_EQ(ChunkData("double 0.1"), le(std::bit_cast<std::uint64_t>(0.1), 8));
    EXPECT_EQ(Run("IFF a { const half = 0.5 form TEST { chunk DATA { float half } } }").files.at(0).second,
              OneChunkFile("TEST", "DATA", le(std::bit_cast<std::uint32_t>(0.5f), 4)));
    // A name whose value is no number gets the message with the lone parenthesis; other tokens do not.
    EXPECT_EQ(ChunkError("float speed"), "[error] line 1: speed) is not a valid floating point value.");
    EXPECT_EQ(ChunkError("double $10"), "[error] line 1: $10 is not a valid floating point value.");
    EXPECT_EQ(ChunkError("float {"), "[error] line 1: { is not a valid floating point value.");
    EXPECT_EQ(ChunkError("float 1e40"), "[error] line 1: value doesn't fit into a float");
}

TEST_P(IffCompiler, Crc32AndCStrings) {
    Bytes crc;
    AppendLittleEndian(crc, NameHash("Main"));
    AppendLittleEndian(crc, NameHash("x"));
    // The checksum is of the token as written: no constant substitution, no change of case.
    EXPECT_EQ(
        Run("IFF a { const x = 9 form TEST { chunk DATA { crc32 [2] Main, \"x\" } } }").files.at(0).second,
        OneChunkFile("TEST", "DATA", crc));
    EXPECT_EQ(ChunkData("cstring \"abc\""), Bytes({'a', 'b', 'c', 0}));
    EXPECT_EQ(ChunkData("cstring \"\""), Bytes({0}));
    EXPECT_EQ(Run("IFF a { const greeting = \"hi there\" form TEST { chunk DATA { cstring greeting } } }")
                  .files.at(0)
                  .second,
              OneChunkFile("TEST", "DATA", B(std::string("hi there\0", 9))));
    EXPECT_EQ(ChunkError("cstring 5"), "[error] line 1: expected <string>, but found 5");
    // CRC32 takes any token, the end of the text too; what stops the text is the type name that should
    // follow it.
    EXPECT_EQ(Run("IFF a { form TEST { chunk DATA { crc32\r\n").error,
              "[error] line 2: expected <type>, but found ");
    EXPECT_EQ(Run("IFF a { form TEST { chunk DATA { crc32 [3] x\r\n").error,
              "[error] line 2: expected <type>, but found ");
}

TEST_P(IffCompiler, ConstantsAndTypesFirstDefinitionWins) {
    Assembled a = Run("IFF a {\r\n"
                      "  const x = 5, X = 7\r\n"
                      "  type small = byte, Small = long\r\n"
                      "  form TEST { chunk DATA { long x small [2] X 6 } }\r\n"
                      "}\r\n"
                      "IFF b { form TEST { chunk DATA { SMALL x } } }\r\n");
    ASSERT_EQ(a.error, "");
    ASSERT_EQ(a.files.size(), 2u);
    EXPECT_EQ(a.files[0].second, OneChunkFile("TEST", "DATA", Bytes({5, 0, 0, 0, 5, 6})));
    // Definitions stay in force in the blocks after theirs.
    EXPECT_EQ(a.files[1].second, OneChunkFile("TEST", "DATA", Bytes({5})));
    // The value is one token of any class, substituted as text one level deep.
    a = Run("IFF a { const y = 3, z = y form TEST { chunk DATA { long y long z } } }");
    EXPECT_EQ(a.error, "[error] line 1: z is not a valid integer value.");
}

TEST_P(IffCompiler, TreAndFlatAreSilent) {
    for (const char* text : {"TRE\r\n", "FLAT\r\n", "tre flat TRE\r\n", ""}) {
        Assembled a = Run(text);
        EXPECT_EQ(a.error, "") << text;
        EXPECT_TRUE(a.files.empty()) << text;
        EXPECT_TRUE(a.messages.empty()) << text;
    }
    Assembled a = Run("TRE IFF \"x\" { } FLAT");
    EXPECT_EQ(a.files.size(), 1u);
}

TEST_P(IffCompiler, ExpectErrors) {
    EXPECT_EQ(Run("FORM\r\n").error, "[error] line 1: expected IFF, TRE or FLAT, but found FORM");
    EXPECT_EQ(Run("IFF { }").error, "[error] line 1: expected <filename>, but found {");
    EXPECT_EQ(Run("IFF a form\r\n").error, "[error] line 1: expected {, but found form");
    EXPECT_EQ(Run("IFF a { chunk DATA { } }").error,
              "[error] line 1: expected CONST, TYPE or FORM, but found chunk");
    EXPECT_EQ(Run("IFF a { form 5 { } }").error, "[error] line 1: expected <name>, but found 5");
    EXPECT_EQ(Run("IFF a { form TEST { long 5 } }").error,
              "[error] line 1: expected form or chunk, but found long");
    EXPECT_EQ(Run("IFF a { form TEST { file x } }").error, "[error] line 1: Couldn't find file x");
    EXPECT_EQ(Run("IFF a { const x 5 }").error, "[error] line 1: expected =, but found 5");
    EXPECT_EQ(Run("IFF a { const x =-5 }").error, "[error] line 1: expected =, but found =-");
    EXPECT_EQ(Run("IFF a { type t = 5 }").error, "[error] line 1: expected <name>, but found 5");
    EXPECT_EQ(Run("IFF a { form TEST { chunk { } } }").error, "[error] line 1: expected <name>, but found {");
    // A string is never punctuation.
    EXPECT_EQ(Run("IFF a \"{\" }").error, "[error] line 1: expected {, but found {");
}

TEST_P(IffCompiler, ErrorsNameTheLineAndTheRoutine) {
    Assembled a = Run("// a comment\r\nIFF \"a.iff\"\r\n{\r\n  form \"TEST\"\r\n  {\r\n"
                      "    chunk \"DATA\" { byte 300 }\r\n  }\r\n}\r\n");
    EXPECT_EQ(a.error, "[error] line 6: value doesn't fit into a byte");
    ASSERT_EQ(a.messages.size(), 2u);
    EXPECT_EQ(a.messages[0], a.error);
    // The routine is named with its class where the compiler gives it (g++), bare where not (clang).
    EXPECT_TRUE(a.messages[1].starts_with("  raised in TIffCompiler.Value, line ") ||
                a.messages[1].starts_with("  raised in Value, line "))
        << a.messages[1];
    EXPECT_EQ(a.levels, std::vector<int>({0, 0}));
    EXPECT_TRUE(a.files.empty());
    // Line breaks of any style count alike.
    EXPECT_EQ(Run("IFF a {\n\n form TEST {\r\r chunk DATA { byte -1 } } }").error,
              "[error] line 5: value doesn't fit into a byte");
    EXPECT_EQ(Run("IFF a {\n\n bogus }").error,
              "[error] line 3: expected CONST, TYPE or FORM, but found bogus");
}

TEST_P(IffCompiler, AFailedBlockIsNeverHandedOver) {
    Assembled a =
        Run("IFF \"good\" { form TEST { } }\r\nIFF \"bad\" { form TEST { chunk DATA { byte 999 } } }\r\n"
            "IFF \"after\" { }");
    EXPECT_EQ(a.error, "[error] line 2: value doesn't fit into a byte");
    ASSERT_EQ(a.files.size(), 1u);
    EXPECT_EQ(a.files[0].first, "good");
}

TEST_P(IffCompiler, FileValuesAndRawInclusion) {
    TempDir dir;
    std::filesystem::create_directories(dir / "Data");
    WriteFile(dir / "Data" / "Blob.BIN", std::string("\x01\x02\x03", 3));
    // Looked up relative to the text's folder, "\" as a separator and without regard to case.
    Assembled a =
        Run("IFF a { form TEST { chunk DATA { file \"data\\blob.bin\" byte 9 } file \"DATA/BLOB.bin\" } }",
            dir.path());
    ASSERT_EQ(a.error, "");
    Bytes want = B("FORM");
    AppendBigEndian(want, 4 + 8 + 4 + 3);
    for (auto b : B("TESTDATA")) want.push_back(b);
    AppendBigEndian(want, 4);
    for (int b : {1, 2, 3, 9, 1, 2, 3}) want.push_back(static_cast<std::uint8_t>(b));
    EXPECT_EQ(a.files.at(0).second, want);
    // An absolute name ignores the text's folder.
    std::string absolute = (dir / "Data" / "Blob.BIN").string();
    a = Run("IFF a { form TEST { chunk DATA { file \"" + absolute + "\" } } }");
    EXPECT_EQ(a.files.at(0).second, OneChunkFile("TEST", "DATA", Bytes({1, 2, 3})));
    EXPECT_EQ(Run("IFF a { form TEST { chunk DATA { FILE \"nope.bin\" } } }", dir.path()).error,
              "[error] line 1: Couldn't find file nope.bin");
    EXPECT_EQ(Run("IFF a { form TEST { chunk DATA { FILE \"Data\" } } }", dir.path()).error,
              "[error] line 1: Couldn't find file Data");
}

TEST_P(IffCompiler, MalformedTextEndsInAnError) {
    const char* texts[] = {
        "IFF",
        "IFF \"a",
        "IFF a {",
        "IFF a { form TEST {",
        "IFF a { form TEST { chunk DATA {",
        "IFF a { form TEST { chunk DATA { byte [5] 1 2",
        "IFF a { form TEST { chunk DATA { crc32 [1000000000]",
        "IFF a { form TEST { chunk DATA { cstring \"abc",
        "IFF a { form TEST { chunk DATA { WCP_ASM { func f { movc v8",
        "IFF a { form TEST { chunk DATA { WCP_ASM { func f { Foo 1 2",
        "IFF a { form TEST { chunk DATA { crc32 [3] x #",
        "IFF a { const x = ",
        "\x01\x02 x",
    };
    for (const char* text : texts) {
        Assembled a = Run(text);
        EXPECT_TRUE(a.error.starts_with("[error] line 1: ")) << text << " -> " << a.error;
        EXPECT_TRUE(a.files.empty()) << text;
    }
    // A stray character at the very end is refused by both: TFastScanner reads it whole, TScanner as an
    // empty token (its collecting loop never takes the text's last character), which is not the end.
    Assembled a = Run("IFF a { } #");
    EXPECT_EQ(a.files.size(), 1u);
    EXPECT_EQ(a.error, GetParam() == ScannerClass::Fast
                           ? "[error] line 1: expected IFF, TRE or FLAT, but found #"
                           : "[error] line 1: expected IFF, TRE or FLAT, but found ");
    // The empty token does not advance: a count must not loop on it.
    a = Run("IFF a { form TEST { chunk DATA { crc32 [1000000000] x #");
    EXPECT_TRUE(a.error.starts_with("[error] line 1: expected <type>, but found ")) << a.error;
}

TEST_P(IffCompiler, DeepNestingIsRefusedNotFollowedIntoTheStack) {
    std::string text = "IFF a { ";
    for (int i = 0; i < 100; ++i) text += "form NEST { ";
    for (int i = 0; i < 100; ++i) text += "} ";
    text += "}";
    EXPECT_EQ(Run(text).error, "");

    text = "IFF a { ";
    for (int i = 0; i <= TIffCompiler::kMaxNesting; ++i) text += "form NEST {\r\n";
    EXPECT_EQ(Run(text).error, "[error] line 10001: forms nested deeper than 10000 levels");
}

TEST_P(IffCompiler, LongLines) {
    std::string text = "IFF a { form TEST { chunk DATA { byte [200000]";
    for (int i = 0; i < 200000; ++i) text += " $7F";
    text += " cstring \"" + std::string(1 << 20, 'x') + "\" } } }";
    Assembled a = Run(text);
    ASSERT_EQ(a.error, "");
    EXPECT_EQ(a.files.at(0).second.size(), 20u + 200000 + (1 << 20) + 1 + 1);
}

INSTANTIATE_TEST_SUITE_P(BothScanners, IffCompiler,
                         ::testing::Values(ScannerClass::Standard, ScannerClass::Fast), [](const auto& p) {
                             return p.param == ScannerClass::Standard ? std::string("TScanner")
                                                                      : std::string("TFastScanner");
                         });

TEST(IffCompilerSetup, InputFileAndCallbacks) {
    TIffCompiler assembler;
    try {
        assembler.SetInputFile("no/such/file.txt");
        FAIL() << "no exception";
    } catch (const EIffCompiler& e) {
        EXPECT_STREQ(e.what(), "no/such/file.txt doesn't exist");
    }

    std::vector<std::string> messages;
    assembler.OnMessage = [&](int, const std::string& line) { messages.push_back(line); };
    assembler.SetInputText("IFF a { }");
    try {
        assembler.Compile();
        FAIL() << "no exception";
    } catch (const EIffCompiler& e) {
        EXPECT_STREQ(e.what(), "[error] line 1: Output callback not assigned!");
    }
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages[0], "[error] line 1: Output callback not assigned!");
}

TEST(IffCompilerSetup, ReadsTheFileThroughTheTextLoader) {
    TempDir dir;
    WriteFile(dir / "In.Txt",
              "IFF \"x\"\n{\n form TEST\n {\n  chunk DATA { byte 1 }\n  chunk ABCD { long x }\n }\n}\n");
    TIffCompiler assembler;
    std::vector<std::string> messages;
    assembler.OnMessage = [&](int, const std::string& line) { messages.push_back(line); };
    assembler.OnBinaryOutput = [](const Bytes&, const std::string&) {};
    assembler.SetInputFile((dir / "in.txt").string()); // found without regard to case
    EXPECT_THROW(assembler.Compile(), EIffCompiler);
    EXPECT_EQ(messages.at(0), "[error] line 6: x is not a valid integer value.");
}

TEST(IffCompilerSetup, DiscardingTheWriterRemovesAStrayPlaceholderFile) {
    TempDir dir;
    const auto old = std::filesystem::current_path();
    std::filesystem::current_path(dir.path());
    WriteFile(dir / "_velkor.iff", "stale");
    Assembled a = Assemble("IFF \"a\" { }");
    std::filesystem::current_path(old);
    EXPECT_EQ(a.files.size(), 1u);
    EXPECT_FALSE(std::filesystem::exists(dir / "_velkor.iff"));
}

} // namespace
} // namespace velkor::test
