// The compiler front end from hostile text: every input, with either scanner, halting or recovering, must
// compile, finish and link or end in one of the system's exceptions, without a crash or a hang. Include
// files, string files and #FILE units are looked up from an empty folder of its own, and whatever a #FILE
// unit assembles is written there, so the run touches nothing else. What a mission, series or sector
// assembles to must decode with its functions as listings and assemble back to the same bytes.
#include "compiler/compiler.h"
#include "iff/iff_decoder.h"
#include "platform/named_folders.h"
#include "platform/path_resolver.h"
#include "scanner/scanner.h"
#include "tests/fuzz/fuzz_check.h"
#include "tests/support/decode_roundtrip.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using velkor::fuzz::Check;
using velkor::fuzz::Fail;

// An empty folder of its own, the current folder and the temporary folder from the first use on.
const std::filesystem::path& Sandbox() {
    static const std::filesystem::path& folder = []() -> const std::filesystem::path& {
        const std::filesystem::path& made = velkor::test::FuzzSideFolder("velkor-fuzz-compiler");
        std::filesystem::current_path(made);
        setenv("TMPDIR", made.c_str(), 1);
        return made;
    }();
    return folder;
}

// What the compiler writes decodes with its functions as listings, and the decoded text assembles to the
// very same bytes.
void CheckDecodeRoundTrip(const std::string& linked) {
    using namespace velkor;
    // The test helpers leave the standard scanner selected.
    const ScannerClass scanner = GetScannerClass();
    struct Restore {
        ScannerClass cls;
        ~Restore() { SetScannerClass(cls); }
    } restore{scanner};
    const test::Assembled built = test::Assemble(linked, scanner, Sandbox());
    if (!built.error.empty()) return;
    DecodeOptions options;
    options.names = std::make_shared<KnownNames>();
    for (const auto& [name, bytes] : built.files) {
        DecodedIff decoded;
        try {
            decoded = DecodeIff(bytes, "unit.iff", 1024, options);
        } catch (const Exception&) {
            continue; // the raw IFF of a unit can be anything; only the form of the unit is checked
        }
        if (decoded.text.find("//function record") != std::string::npos)
            Fail("a function record of the compiler's is not a listing", decoded.text);
        const test::Assembled back = test::AssembleDecoded(decoded, Sandbox(), scanner);
        if (!back.error.empty() || back.files.size() != 1) Fail(back.error.c_str(), decoded.text);
        if (decoded.lossless && back.files[0].second != bytes)
            Fail("decode, assemble: other bytes", decoded.text);
    }
}

void CompileOnce(const std::string& text, bool halt) {
    using namespace velkor;
    TCompiler compiler;
    compiler.HaltOnError = halt;
    compiler.Verbosity = 3;
    std::size_t messages = 0;
    compiler.OnOutput = [&](const std::string& line) { messages += line.size(); };
    compiler.PlaceOutputFile = [](const std::string& name) {
        return Sandbox() / ("out_" + FileNamePart(name));
    };
    compiler.SetSource(text);
    try {
        compiler.Compile();
        compiler.Finish();
        const std::string linked = compiler.Link();
        if (compiler.UnitKind == ukMission || compiler.UnitKind == ukSeries || compiler.UnitKind == ukSector)
            CheckDecodeRoundTrip(linked);
    } catch (const Exception&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velkor;
    Sandbox();
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (ScannerClass cls : {ScannerClass::Standard, ScannerClass::Fast}) {
        SetScannerClass(cls);
        CompileOnce(text, true);
        CompileOnce(text, false);
    }
    // #ADDPATHCONSTANT adds to the process-wide table; start every input from the same one.
    ResetNamedFoldersForTesting();
    return 0;
}
