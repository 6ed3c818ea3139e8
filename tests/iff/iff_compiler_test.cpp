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
};

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
