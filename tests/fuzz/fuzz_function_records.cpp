// Function records from hostile bytes: a mission's FUNC chunk holding the input as it is, or a record built
// around it as its body, decodes to text that assembles to the very same bytes, whatever the disassembler
// made of it (listings, byte rows or both). The seeds are the function chunks of the demo campaign, so the
// mutations start from real records. The first byte picks the framing, the parameter count and the scanner.
#include "iff/checksum.h"
#include "iff/iff_decoder.h"
#include "iff/wcp_opcodes.h"
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
using test::Bytes;

const std::filesystem::path& SideFolder() {
    return test::FuzzSideFolder("velkor-fuzz-function-records");
}

void BigEndian(Bytes& out, std::size_t v) {
    test::AppendBigEndian(out, static_cast<std::uint32_t>(v));
}

// The FUNC chunk is followed by a small chunk, as in a real mission: the reader attributes an item that
// starts in the last 8 bytes of a form (an empty chunk at its end) to the form above, which the outermost
// form does not have.
Bytes Mission(const Bytes& functions) {
    const Bytes tail = test::B(std::string_view("VERS\0\0\0\x04\x01\x02\x03\x04", 12));
    Bytes out = test::B("FORM");
    BigEndian(out, 4 + 8 + functions.size() + functions.size() % 2 + tail.size());
    const Bytes head = test::B("MISNFUNC");
    out.insert(out.end(), head.begin(), head.end());
    BigEndian(out, functions.size());
    out.insert(out.end(), functions.begin(), functions.end());
    if (functions.size() % 2) out.push_back(0);
    out.insert(out.end(), tail.begin(), tail.end());
    return out;
}

const std::shared_ptr<const KnownNames>& Names() {
    static const std::shared_ptr<const KnownNames> names = [] {
        auto n = std::make_shared<KnownNames>();
        n->AddWordsOf("Main WaitSeconds IsAlive ShowText OrderAttack SetObjective EndMission");
        return n;
    }();
    return names;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::uint8_t flags = data[0];
    const std::span<const std::uint8_t> input(data + 1, size - 1);
    Bytes functions;
    if (flags & 1) {
        functions.assign(input.begin(), input.end());
    } else {
        // One record whose body is the input's whole words, the rest of the input behind it.
        const std::uint32_t parameters = (flags >> 1) & 3;
        test::AppendLittleEndian(functions, NameHash("Main"));
        test::AppendLittleEndian(functions, 0);
        test::AppendLittleEndian(functions, parameters);
        for (std::uint32_t i = 0; i < parameters; ++i) test::AppendLittleEndian(functions, kWcpParameterWord);
        const std::size_t body = input.size() / 4 * 4;
        test::AppendLittleEndian(functions, static_cast<std::uint32_t>(body));
        functions.insert(functions.end(), input.begin(), input.end());
    }
    const Bytes file = Mission(functions);
    DecodeOptions options;
    options.names = Names();
    const DecodedIff decoded = DecodeIff(file, "fuzz.mis", 16, options);
    if (!decoded.lossless) Fail("a decode of a well-formed file is lossless", decoded.text);
    const ScannerClass scanner = (flags & 8) ? ScannerClass::Fast : ScannerClass::Standard;
    const test::Assembled back = test::AssembleDecoded(decoded, SideFolder(), scanner);
    if (!back.error.empty() || back.files.size() != 1) Fail(back.error.c_str(), decoded.text);
    if (back.files[0].second != file) Fail("the listing assembles to other bytes", decoded.text);
    return 0;
}
