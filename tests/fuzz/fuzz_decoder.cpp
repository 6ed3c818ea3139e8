// The decoder on hostile bytes: every input decodes or ends in the reader's errors, without a crash, a hang
// or a runaway allocation. What decodes must assemble again: to the very same bytes when the decoder says the
// text is lossless, and otherwise to bytes that decode to the very same text. The first byte picks the
// decode limit, the float mode, the scanner and whether the special decoders run.
#include "iff/iff_decoder.h"
#include "tests/fuzz/fuzz_check.h"
#include "tests/support/decode_roundtrip.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <unistd.h>

namespace {

using velkor::fuzz::Check;
using velkor::fuzz::Fail;

using namespace velkor;

const std::filesystem::path& SideFolder() {
    return test::FuzzSideFolder("velkor-fuzz-decoder");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    static constexpr std::int64_t kLimits[] = {0, 16, 1024, 1 << 30};
    const std::uint8_t flags = data[0];
    const std::span<const std::uint8_t> input(data + 1, size - 1);
    const std::int64_t limit = kLimits[flags & 3];
    DecodeOptions options;
    options.exactFloats = (flags & 4) != 0;
    const ScannerClass scanner = (flags & 8) ? ScannerClass::Fast : ScannerClass::Standard;
    for (const std::string& name : SpecialDecoderNames()) SetSpecialDecoderEnabled(name, (flags & 16) == 0);

    DecodedIff decoded;
    try {
        decoded = DecodeIff(input, "fuzz.iff", limit, options);
    } catch (const EIffReader&) {
        return 0;
    } catch (const EIffDecoder&) {
        return 0;
    }
    const test::Assembled back = test::AssembleDecoded(decoded, SideFolder(), scanner);
    if (!back.error.empty() || back.files.size() != 1) Fail(back.error.c_str(), decoded.text);
    const std::vector<std::uint8_t>& bytes = back.files[0].second;
    if (decoded.lossless) {
        if (!std::equal(bytes.begin(), bytes.end(), input.begin(), input.end()))
            Fail("lossless decode, other bytes", decoded.text);
        return 0;
    }
    try {
        if (DecodeIff(bytes, "fuzz.iff", limit, options).text != decoded.text)
            Fail("the assembled bytes decode to another text", decoded.text);
    } catch (const Exception& e) {
        Fail(e.what(), decoded.text);
    }
    return 0;
}
