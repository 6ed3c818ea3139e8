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

Bytes MissionWithFunctions(const Bytes& data, std::string_view form = "MISN") {
    return Form(form, {Chunk("FUNC", data)});
}

std::shared_ptr<const KnownNames> TestNames() {
    auto names = std::make_shared<KnownNames>();
    names->AddWordsOf("Main Helper WaitSeconds CameraOff OrderAttack gFlag");
    return names;
}

DecodeOptions Listing() {
    DecodeOptions options;
    options.names = TestNames();
    return options;
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

// Decodes, assembles again under both scanners, expects the input back; returns the decoded text.
std::string RoundTrip(const Bytes& file, const DecodeOptions& options = Listing(),
                      std::int64_t limit = 1024) {
    const DecodedIff decoded = DecodeIff(file, "t.mis", limit, options);
    EXPECT_TRUE(decoded.lossless);
    TempDir dir;
    for (ScannerClass scanner : {ScannerClass::Standard, ScannerClass::Fast}) {
        const Assembled back = AssembleDecoded(decoded, dir.path(), scanner);
        EXPECT_EQ(back.error, "") << decoded.text;
        if (back.files.size() != 1) {
            ADD_FAILURE() << decoded.text;
            continue;
        }
        EXPECT_EQ(back.files[0].second, file) << decoded.text;
    }
    return decoded.text;
}

Bytes AssembleListing(const std::string& functions) {
    const Assembled a = Assemble("IFF \"t.mis\" { form \"MISN\" { chunk \"FUNC\" { WCP_ASM {\r\n" +
                                 functions + "\r\n} } } }\r\n");
    EXPECT_EQ(a.error, "") << functions;
    return a.files.empty() ? Bytes{} : a.files[0].second;
}

struct ListingCase {
    const char* what;
    const char* source;   // functions as a unit's listing would hold them
    const char* expected; // the FUNC chunk as decoded
};

const ListingCase kListingCases[] = {
    {"every built-in instruction; shared words show one of their mnemonics",
     R"(func Main { alloc 3; addc v8 v9 -7; addv v1 v2 v3; andv v1 v2 v3; divc v8 v8 4; divv v8 v8 v9;
        mulc v8 v8 100000; movc v8 -2147483648; movv v24 v8; op v8 2 5; opc v8 0 0; opv v8 4 v9; orv v8 v8 v9;
        push v8; return v0; subc v8 v8 1; subv v8 v9 v8; mulv v8 v8 v9; xorc v8 v8 -3; xorv v1 v2 v3; })",
     "WCP_ASM\n{\n  func Main\n  {\n    alloc 3;\n    addc v8 v9 -7;\n    addv v1 v2 v3;\n    andv v1 v2 "
     "v3;\n"
     "    divc v8 v8 4;\n    divv v8 v8 v9;\n    mulc v8 v8 100000;\n    movc v8 $80000000;\n"
     "    movv v24 v8;\n    opc v8 2 5;\n    opc v8 0 0;\n    opv v8 4 v9;\n    orv v8 v8 v9;\n    push v8;\n"
     "    return v0;\n    subc v8 v8 1;\n    subv v8 v9 v8;\n    mulv v8 v8 v9;\n    subv v8 v8 $FFFFFFFD;\n"
     "    mulv v1 v2 v3;\n  }\n}\n"},
    {"parameters, calls by name and game functions known and unknown",
     R"(func Helper 2 { WaitSeconds v15; CameraOff; OrderAttack v15 v14; Mystery v15 v14 v13; return v16; }
        func Main { push v8; push v9; call Helper 2; call Elsewhere 0; movv v8 gFlag; })",
     "WCP_ASM\n{\n  func Helper 2\n  {\n    WaitSeconds v15;\n    CameraOff;\n    OrderAttack v15 v14;\n"
     "    wcp_29123E_olkolihnhkjh v15 v14 v13;\n    return v16;\n  }\n  func Main\n  {\n    push v8;\n"
     "    push v9;\n    call Helper 2;\n    call fn_4D55C3B8_nllmlhohjljh 0;\n    movv v8 gFlag;\n  }\n}\n"},
    {"blocks: if and else, nested and empty ones",
     R"(func Main { if v8 { movc v8 1; if v1 { } else { goto "012e"; } } else; { { } } movc v8 0; })",
     "WCP_ASM\n{\n  func Main\n  {\n    if v8\n    {\n      movc v8 1;\n      if v1\n      {\n      }\n"
     "      else\n      {\n        goto \"012e\";\n      }\n    }\n    else\n    {\n      {\n      }\n    }\n"
     "    movc v8 0;\n  }\n}\n"},
    {"labels: four characters as they stand, line labels found again, other names made up",
     R"(func Main { label "012w"; goto "1012w"; goto "99999e"; label "a b!"; label "ab"; label "odd label"; })",
     "WCP_ASM\n{\n  func Main\n  {\n    label \"012w\";\n    goto \"1012w\";\n    goto \"99999e\";\n"
     "    label \"a b!\";\n    label \"L_DF5A5A92_oiimkjljihhj\";\n    label \"L_67AB2A01_kionimoonkhh\";\n  "
     "}\n}\n"},
    {"value operands: registers, numbers below ten million in decimal, the rest in hexadecimal",
     R"(func Main { push 31; push 32; push 9999999; push 10000000; push $FFFFFFFF; Mystery 7 -1; movc v8 -9999999; movc v8 -10000000; })",
     "WCP_ASM\n{\n  func Main\n  {\n    push v31;\n    push 32;\n    push 9999999;\n    push $00989680;\n"
     "    push $FFFFFFFF;\n    wcp_29123E_olkolihnhkjh v7 $45DF5C75 v1;\n    movc v8 -9999999;\n"
     "    movc v8 $FF676980;\n  }\n}\n"},
    {"more parameters than the machine has registers: the count is all the record keeps",
     "func Helper 300 { return v16; }", "WCP_ASM\n{\n  func Helper 300\n  {\n    return v16;\n  }\n}\n"},
    {"a function without a body and one with sixteen game-function operands",
     R"(func Main { } func Helper { Mystery v1 v2 v3 v4 v5 v6 v7 v8 v9 v10 v11 v12 v13 v14 v15 v16; })",
     "WCP_ASM\n{\n  func Main\n  {\n  }\n  func Helper\n  {\n"
     "    wcp_29123E_olkolihnhkjh v1 v2 v3 v4 v5 v6 v7 v8 v9 v10 v11 v12 v13 v14 v15 v16;\n  }\n}\n"},
};

TEST(WcpDisassembler, ListingsShowEachInstructionAndAssembleToTheSameBytes) {
    for (const ListingCase& c : kListingCases) {
        SCOPED_TRACE(c.what);
        const Bytes file = AssembleListing(c.source);
        ASSERT_FALSE(file.empty());
        EXPECT_EQ(FuncChunkContent(RoundTrip(file)), c.expected);
    }
}

// Records the listing cannot hold, built word by word.
struct FallbackCase {
    const char* what;
    Bytes data;           // the FUNC chunk's data
    const char* expected; // the FUNC chunk as decoded
};

const Bytes kEmptyMain = Record("Main", 0, {});

std::vector<FallbackCase> FallbackCases() {
    return {
        {"an instruction word whose low byte is no operand count: that record alone as bytes",
         Cat({kEmptyMain, Record("Helper", 0, Words({0x12345603})), kEmptyMain}),
         "WCP_ASM\n{\n  func Main\n  {\n  }\n}\n"
         "BYTE [16] $25 $DF $59 $31 $00 $00 $00 $00 $00 $00 $00 $00 $04 $00 $00 $00//function record\n"
         "BYTE [4] $03 $56 $34 $12\n"
         "WCP_ASM\n{\n  func Main\n  {\n  }\n}\n"},
        {"bytes after the last record", Cat({kEmptyMain, Bytes{1, 2, 3}}),
         "WCP_ASM\n{\n  func Main\n  {\n  }\n}\nBYTE [3] $01 $02 $03\n"},
        {"a block end without its start", Record("Main", 0, Words({kWcpBlockEnd})),
         "BYTE [16] $46 $BD $5E $3E $00 $00 $00 $00 $00 $00 $00 $00 $04 $00 $00 $00//function record\n"
         "BYTE [4] $00 $77 $82 $00\n"},
        {"a block start without its end", Record("Main", 0, Words({kWcpBlockBegin})),
         "BYTE [16] $46 $BD $5E $3E $00 $00 $00 $00 $00 $00 $00 $00 $04 $00 $00 $00//function record\n"
         "BYTE [4] $00 $BB $FB $15\n"},
        {"an instruction cut off by the end of the body", Record("Main", 0, Words({0x5414BB08, 8})),
         "BYTE [16] $46 $BD $5E $3E $00 $00 $00 $00 $00 $00 $00 $00 $08 $00 $00 $00//function record\n"
         "BYTE [8] $08 $BB $14 $54 $08 $00 $00 $00\n"},
        {"a second record cut short: it and everything after it as bytes",
         Cat({kEmptyMain, Bytes(kEmptyMain.begin(), kEmptyMain.end() - 2)}),
         "WCP_ASM\n{\n  func Main\n  {\n  }\n}\n"
         "BYTE [14] $46 $BD $5E $3E $00 $00 $00 $00 $00 $00 $00 $00 $00 $00\n"},
        {"the number the assembler reads as no number needs a name with that hash",
         Record("Main", 0, Words({0x5414BB08, 8, 0x0F00AAFF, 0x75F3CE04, 0x0F00AAFF})),
         "WCP_ASM\n{\n  func Main\n  {\n    movc v8 n_hihkknikimhh;\n    push n_hihkknikimhh;\n  }\n}\n"},
        {"a negative parameter count, which has no descriptors", Words({NameHash("Main"), 0, 0xFFFFFFFB, 0}),
         "WCP_ASM\n{\n  func Main $FFFFFFFB\n  {\n  }\n}\n"},
    };
}

TEST(WcpDisassembler, WhatAListingCannotHoldStaysBytes) {
    for (const FallbackCase& c : FallbackCases()) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(FuncChunkContent(RoundTrip(MissionWithFunctions(c.data))), c.expected);
    }
}

TEST(WcpDisassembler, OnlyFunctionChunksOfMissionsSeriesAndSectorsThatStartWithARecord) {
    const Bytes records = Cat({kEmptyMain, kEmptyMain});
    for (const char* form : {"MISN", "SERS", "MED_"})
        EXPECT_NE(RoundTrip(MissionWithFunctions(records, form)).find("WCP_ASM"), std::string::npos) << form;
    EXPECT_EQ(RoundTrip(MissionWithFunctions(records, "TEST")).find("WCP_ASM"), std::string::npos);
    Bytes reserved = kEmptyMain;
    reserved[4] = 1;
    EXPECT_EQ(RoundTrip(MissionWithFunctions(reserved)).find("WCP_ASM"), std::string::npos);
    DecodeOptions off = Listing();
    off.disassemble = false;
    const std::string rows = RoundTrip(MissionWithFunctions(records), off);
    EXPECT_EQ(rows.find("WCP_ASM"), std::string::npos);
    EXPECT_NE(rows.find("BYTE [16]"), std::string::npos);
}

TEST(WcpDisassembler, FunctionRecordsIgnoreTheDecodeLimit) {
    std::string many;
    for (int i = 0; i < 200; ++i) many += "func Main { movc v8 " + std::to_string(i) + "; }\r\n";
    const Bytes file = AssembleListing(many);
    const DecodedIff decoded = DecodeIff(file, "t.mis", 16, Listing());
    EXPECT_TRUE(decoded.sideFiles.empty());
    EXPECT_NE(decoded.text.find("movc v8 199;"), std::string::npos);
    RoundTrip(file, Listing(), 16);
    DecodeOptions off = Listing();
    off.disassemble = false;
    EXPECT_EQ(DecodeIff(file, "t.mis", 16, off).sideFiles.size(), 1u);
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
