// Function records decoded as WCP_ASM listings: what the listing shows for each instruction, operand and
// name, where it falls back to byte rows, and that in every case the text assembles to the same bytes.
#include "iff/checksum.h"
#include "iff/hash_names.h"
#include "iff/iff_decoder.h"
#include "iff/wcp_opcodes.h"
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/decode_roundtrip.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace velkor::test {
namespace {

Bytes Words(std::initializer_list<std::uint32_t> words) {
    Bytes out;
    for (std::uint32_t w : words) AppendLittleEndian(out, w);
    return out;
}

// A record as the assembler writes it: name hash, reserved 0, count, descriptors, body size, body.
Bytes Record(std::string_view name, std::uint32_t parameters, const Bytes& body) {
    Bytes out = Words({NameHash(name), 0, parameters});
    for (std::uint32_t i = 0; i < parameters; ++i) AppendLittleEndian(out, kWcpParameterWord);
    AppendLittleEndian(out, static_cast<std::uint32_t>(body.size()));
    out.insert(out.end(), body.begin(), body.end());
    return out;
}

// The lines inside the FUNC chunk's braces, without the chunk's indentation.
std::string FuncChunkContent(const std::string& text) {
    const std::size_t chunk = text.find("CHUNK \"FUNC\"\r\n");
    EXPECT_NE(chunk, std::string::npos) << text;
    const std::size_t lineStart = text.rfind("\r\n", chunk) + 2;
    const std::string indent = text.substr(lineStart, chunk - lineStart);
    std::size_t at = text.find("\r\n", chunk) + 2;
    at = text.find("\r\n", at) + 2; // the "{"
    std::string out;
    for (;;) {
        const std::size_t end = text.find("\r\n", at);
        const std::string line = text.substr(at, end - at);
        if (line == indent + "}") return out;
        out += line.substr(std::min(line.size(), indent.size() + 2));
        out += '\n';
        at = end + 2;
    }
}

TEST(WcpDisassembler, NamesFromTheFileItself) {
    // The names of the editor form's CRCS chunk and a program name property, as a compiled unit has them.
    Bytes crcs = Words({2, NameHash("gFlag"), NameHash("Patrol_Main")});
    const Bytes text = Str(std::string("gFlag\0Patrol_Main\0", 18));
    crcs.insert(crcs.end(), text.begin(), text.end());
    const Bytes body = Words({0xFFC58608, 8, NameHash("gFlag"), 0xF0CEE008, NameHash("Patrol_Main"), 0});
    const Bytes file = Cat(
        {Form("MISN", {Chunk("FUNC", Record("Patrol_Main", 0, body))}), Form("EDTR", {Chunk("CRCS", crcs)})});
    DecodeOptions noSystemNames;
    const DecodedIff decoded = DecodeIff(file, "t.mis", 1024, noSystemNames);
    EXPECT_EQ(FuncChunkContent(decoded.text), "WCP_ASM\n{\n  func Patrol_Main\n  {\n    movv v8 gFlag;\n"
                                              "    call Patrol_Main 0;\n  }\n}\n");
}

TEST(HashNames, MadeUpNamesAndLineLabelsHaveTheHashTheyStandFor) {
    std::mt19937 rng(19);
    for (int i = 0; i < 2000; ++i) {
        const std::uint32_t hash = static_cast<std::uint32_t>(rng());
        const std::string name = NameWithHash("fn_", hash);
        ASSERT_EQ(NameHash(name), hash) << name;
        ASSERT_TRUE(IsIdentifier(name)) << name;
        ASSERT_TRUE(ReadsAsItself(name)) << name;
    }
    for (const char* label : {"1000w", "1012f", "9999e", "10000w", "54321f", "999999e"}) {
        const std::optional<std::string> found = LineLabelWithHash(NameHash(label));
        ASSERT_TRUE(found.has_value()) << label;
        EXPECT_EQ(NameHash(*found), NameHash(label)) << label;
    }
    EXPECT_FALSE(ReadsAsItself("v31"));
    EXPECT_FALSE(ReadsAsItself("V8"));
    EXPECT_TRUE(ReadsAsItself("v32"));
}

} // namespace
} // namespace velkor::test
