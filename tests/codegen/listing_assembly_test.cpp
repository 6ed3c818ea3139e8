// The listings the code generator writes go through the WCP_ASM assembler unchanged, optimised or not, and
// encode to the words the game reads.
#include "codegen/optimizer.h"
#include "iff/checksum.h"
#include "iff/iff_compiler.h"
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace velkor::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// The FUNC chunk's data of a one-chunk text wrapped around the listing.
Bytes Assemble(const StringList& listing) {
    std::string text =
        "IFF \"t.iff\"\r\n{\r\n  FORM \"MISN\"\r\n  {\r\n    CHUNK \"FUNC\"\r\n    {\r\n      WCP_ASM\r\n"
        "      {\r\n";
    for (const auto& line : listing) text += "        " + line + "\r\n";
    text += "      }\r\n    }\r\n  }\r\n}\r\n";
    TIffCompiler assembler;
    Bytes file;
    assembler.OnBinaryOutput = [&](const Bytes& bytes, const std::string&) { file = bytes; };
    assembler.SetInputText(text);
    assembler.Compile();
    // FORM <size> MISN FUNC <size> <data>
    return file.size() < 20 ? Bytes{} : Bytes(file.begin() + 20, file.end());
}

Bytes Words(const std::vector<std::uint32_t>& words) {
    Bytes bytes;
    for (std::uint32_t w : words)
        for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<std::uint8_t>(w >> (8 * i)));
    return bytes;
}

std::uint32_t Tag(const char (&text)[5]) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(text[0])) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(text[1])) << 8 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(text[2])) << 16 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(text[3])) << 24;
}

TEST(ListingAssembly, AFunctionEncodesWordForWord) {
    CompileRun r({"mission M;", "function f(p);", "var a;", "begin", "while (a) do a := p", "end;"});
    ASSERT_EQ(r.failure, "");
    const std::uint32_t kMovv = 0xFFC58608, kIf = 0xB2995D04, kGoto = 0x69557404, kLabel = 0xF49C3204;
    const std::uint32_t kOpen = 0x15FBBB00, kClose = 0x00827700, kElse = 0x6E8E7D00;
    const std::vector<std::uint32_t> body = {
        0xE3877404, 1,     kLabel,      Tag("005w"), kMovv, 8,           24,     kIf,        8,
        kOpen,      kMovv, 8,           16,          kMovv, 24,          8,      kClose,     kElse,
        kOpen,      kGoto, Tag("005e"), kClose,      kGoto, Tag("005w"), kLabel, Tag("005e")};
    std::vector<std::uint32_t> words{NameHash("f"), 0, 1, 0xEB1003A3,
                                     static_cast<std::uint32_t>(body.size() * 4)};
    words.insert(words.end(), body.begin(), body.end());
    EXPECT_EQ(Assemble(r.Code()), Words(words));
}

TEST(ListingAssembly, EveryConstructAssemblesOptimisedOrNot) {
    CompileRun r({"mission M;", "var g;", "const K = $10, S = \"a b\";", "function W(a, b); external;",
                  "function u(x, y); forward;", "object O (O) AS SHIP x: 0; y: 0; z: 0; end;",
                  "function f(p);", "var a = 5, b;", "begin", "  a := (1 + p) * 2 - K / 3 and g or b;",
                  "  if (NOT a <> b) then b := O else begin g := S; inc(g) end;",
                  "  for b := 1 to a do begin dec(a, 2); if (a < 0) then break; end;",
                  "  until (a > 3) do W(@g, u(a 1));", "  result := a = b", "end;",
                  "function u(x, y); begin result := x end;"});
    ASSERT_EQ(r.failure, "");
    Bytes plain;
    ASSERT_NO_THROW(plain = Assemble(r.Code()));
    TOptimizer optimizer;
    optimizer.Load(r.Code());
    optimizer.Run();
    ASSERT_LT(optimizer.Result().size(), r.Code().size());
    Bytes optimised;
    ASSERT_NO_THROW(optimised = Assemble(optimizer.Result()));
    EXPECT_LT(optimised.size(), plain.size());
}

} // namespace
} // namespace velkor::test
