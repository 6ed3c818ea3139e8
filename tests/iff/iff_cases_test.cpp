// The assembler and the decoder over the case files in tests/cases/iff: texts in, files out, and binary
// files in, texts out and back.
#include "iff/hash_names.h"
#include "iff/iff_decoder.h"
#include "iff/iff_items.h"
#include "iff/iff_reader.h"
#include "platform/strings.h"
#include "tests/compiler/case_file.h"
#include "tests/support/decode_roundtrip.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

const std::filesystem::path kCases = std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/iff";

std::vector<std::string> Render(const Assembled& a) {
    std::vector<std::string> out;
    for (const auto& [name, bytes] : a.files) out.push_back("file " + name + " " + Hex(bytes));
    for (std::size_t i = 0; i < a.messages.size(); ++i)
        if (a.messages[i] != a.error && !a.messages[i].starts_with("  raised in "))
            out.push_back("message " + std::to_string(a.levels[i]) + " " + a.messages[i]);
    if (!a.error.empty()) out.push_back("error " + a.error);
    return out;
}

// The text of a WCP_ASM block laid out as the compiler lays out a listing, one instruction a line, and the
// listing's lines read in their place as a build reads them: both give the same files and messages, under
// either scanner. Texts without such a block, or with a line that would not read alone, give nothing.
std::vector<std::string> ListingInPlace(const std::string& text) {
    const std::size_t block = text.find("WCP_ASM {");
    if (block == std::string::npos || text.find_first_of("\r\n") != std::string::npos) return {};
    const std::size_t at = block + 9;
    std::string rest = text.substr(at);
    for (const char* cut : {"; ", "{ ", " }"})
        for (std::size_t i = 0; (i = rest.find(cut, i)) != std::string::npos; i += 3)
            rest.replace(i, 2, cut[0] == ' ' ? std::string("\r\n}") : std::string(1, cut[0]) + "\r\n");
    std::vector<std::string> lines = SplitLines(rest);
    std::vector<LineToken> tokens;
    for (const auto& line : lines)
        if (!ReadLineTokens(line, tokens)) return {};
    const std::string last = lines.empty() ? std::string() : lines.back();
    if (!lines.empty()) lines.pop_back();
    const std::string before = text.substr(0, at) + "\r\n";
    std::string whole = before;
    for (const auto& line : lines) whole += line + "\r\n";
    whole += last;
    std::vector<std::string> out;
    for (ScannerClass scanner : {ScannerClass::Standard, ScannerClass::Fast}) {
        const std::vector<std::string> expected = Render(Assemble(whole, scanner));
        const std::vector<std::string> got =
            Render(AssembleSpliced(before + last, before.size(), lines, scanner));
        if (got == expected) continue;
        out.push_back(
            std::string(scanner == ScannerClass::Fast ? "the fast scanner" : "the standard scanner") +
            " reading the listing in its place gives:");
        out.insert(out.end(), got.begin(), got.end());
    }
    return out;
}

// Both scanners must read every text alike; the cases' input lines are joined as they stand.
TEST(IffCases, Assemble) {
    RunCaseFolder(kCases / "assemble", [](const Case& c) {
        std::string text;
        for (const auto& l : c.input) text += l;
        const std::vector<std::string> standard = Render(Assemble(text, ScannerClass::Standard));
        std::vector<std::string> out = standard;
        const auto also = [&](const std::string& what, const Assembled& a) {
            const std::vector<std::string> other = Render(a);
            if (other == standard) return;
            out.push_back(what + " gives:");
            out.insert(out.end(), other.begin(), other.end());
        };
        also("the fast scanner", Assemble(text, ScannerClass::Fast));
        also("the general value path", Assemble(text, ScannerClass::Standard, {}, false));
        also("the fast scanner's general value path", Assemble(text, ScannerClass::Fast, {}, false));
        const std::vector<std::string> inPlace = ListingInPlace(text);
        out.insert(out.end(), inPlace.begin(), inPlace.end());
        return out;
    });
}

// The first input line holds the file's bytes or `asm <text>` for the file the text assembles into, a
// second one `<limit> <file name> [exact] [raw] [names]`, names for a few names the system knows. The
// text is assembled again under both scanners: an exact decode must give the input back, an inexact one
// shows what it gives.
TEST(IffCases, Decode) {
    TempDir dir;
    RunCaseFolder(kCases / "decode", [&](const Case& c) {
        Bytes file;
        if (c.input.at(0).starts_with("asm ")) {
            const Assembled a = Assemble(c.input[0].substr(4));
            if (a.files.empty()) return std::vector<std::string>{"assembler error " + a.error};
            file = a.files[0].second;
        } else
            file = ParseBytes(c.raw[0]);
        std::istringstream args(c.input.size() > 1 ? c.input[1] : "");
        std::int64_t limit = 1024;
        std::string name = "t.iff";
        DecodeOptions options;
        args >> limit >> name;
        for (std::string word; args >> word;) {
            options.exactFloats |= word == "exact";
            options.disassemble &= word != "raw";
            if (word == "names") {
                auto names = std::make_shared<KnownNames>();
                names->AddWordsOf("Main Helper WaitSeconds CameraOff OrderAttack gFlag");
                options.names = names;
            }
        }
        std::vector<std::string> out;
        DecodedIff decoded;
        try {
            decoded = DecodeIff(file, name, limit, options);
        } catch (const std::exception& e) {
            return std::vector<std::string>{std::string("error ") + e.what()};
        }
        for (std::size_t at = 0, end; (end = decoded.text.find("\r\n", at)) != std::string::npos;
             at = end + 2)
            out.push_back(decoded.text.substr(at, end - at));
        if (!decoded.text.ends_with("\r\n")) out.push_back("text ends without CR LF");
        for (const SideFile& side : decoded.sideFiles)
            out.push_back("side " + side.name + " " + Hex(side.data));
        for (const std::string& note : decoded.notes) out.push_back("note " + note);
        if (!decoded.lossless) out.push_back("lossy");
        std::string lines[2];
        for (int k = 0; k < 2; ++k) {
            const Assembled back =
                AssembleDecoded(decoded, dir.path(), k ? ScannerClass::Fast : ScannerClass::Standard);
            if (!back.error.empty())
                lines[k] = "back error " + back.error;
            else if (back.files.size() != 1 || back.files[0].second != file || !decoded.lossless)
                lines[k] =
                    "back " + (back.files.empty() ? std::string("nothing") : Hex(back.files[0].second));
        }
        if (!lines[0].empty()) out.push_back(lines[0]);
        if (lines[1] != lines[0]) out.push_back("fast scanner " + lines[1]);
        return out;
    });
}

void Outline(const TIffItem& item, int depth, std::vector<std::string>& out) {
    out.push_back(std::string(static_cast<std::size_t>(2 * depth), ' ') +
                  (item.IsForm() ? "FORM " : "CHUNK ") + Escape(item.ID) + " at " +
                  std::to_string(item.Offset) + " size " + std::to_string(item.Size));
    if (item.IsForm())
        for (const TIffItem* child : static_cast<const TForm&>(item).Children())
            Outline(*child, depth + 1, out);
}

// The first input line holds the file's bytes, a second one may name it: the reader's tree out, each item
// with its offset and its size made even, or the reader's error.
TEST(IffCases, Read) {
    RunCaseFolder(kCases / "read", [](const Case& c) {
        std::vector<std::string> out;
        try {
            const TIffReader reader =
                TIffReader::FromCopy(ParseBytes(c.raw.at(0)), c.input.size() > 1 ? c.input[1] : "");
            Outline(reader.Root(), 0, out);
        } catch (const std::exception& e) {
            out.push_back(std::string("error ") + e.what());
        }
        return out;
    });
}

} // namespace
} // namespace velkor::test
