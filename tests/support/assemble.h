// Runs the textual-IFF assembler over a text held in memory and keeps everything it hands back.
#pragma once

#include "iff/iff_compiler.h"
#include "scanner/scanner.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velkor::test {

using Bytes = std::vector<std::uint8_t>;

struct Assembled {
    std::vector<std::pair<std::string, Bytes>> files; // handed-over outputs: file name and bytes
    std::vector<std::string> messages;                // every message line, in order
    std::vector<int> levels;                          // the level of each message
    std::string error;                                // the EIffCompiler text, empty when none was raised
};

// fastValueRows off reads every BYTE, WORD and LONG item through the general token path.
// Runs an assembler that `setUp` has given its input.
template <class SetUp>
Assembled AssembleWith(ScannerClass scanner, bool fastValueRows, const SetUp& setUp) {
    Assembled result;
    SetScannerClass(scanner);
    TIffCompiler assembler;
    assembler.FastValueRows = fastValueRows;
    assembler.OnMessage = [&](int level, const std::string& line) {
        result.levels.push_back(level);
        result.messages.push_back(line);
    };
    assembler.OnBinaryOutput = [&](const Bytes& bytes, const std::string& name) {
        result.files.emplace_back(name, bytes);
    };
    setUp(assembler);
    try {
        assembler.Compile();
    } catch (const EIffCompiler& e) {
        result.error = e.what();
    }
    SetScannerClass(ScannerClass::Standard);
    return result;
}

inline Assembled Assemble(std::string_view text, ScannerClass scanner = ScannerClass::Standard,
                          const std::filesystem::path& base = {}, bool fastValueRows = true) {
    return AssembleWith(scanner, fastValueRows, [&](TIffCompiler& a) { a.SetInputText(text, base); });
}

// Lines handed over in place of a part of the text, as a build hands over a unit's listing: lines of the
// same text share an id, unless they are its only line.
class LinesInPlace : public SplicedLines {
public:
    explicit LinesInPlace(const std::vector<std::string>& lines) : texts_(lines) {
        std::map<std::string_view, std::uint32_t> ids;
        std::map<std::string_view, int> uses;
        for (const auto& line : texts_) ++uses[line];
        for (const auto& line : texts_)
            lines_.push_back(
                {line, uses[line] > 1
                           ? ids.emplace(line, static_cast<std::uint32_t>(ids.size())).first->second
                           : SplicedLine::kOnce});
    }
    // Two lines at a time, so that runs end inside blocks and between open lines and what follows them.
    std::span<const SplicedLine> NextLines() override {
        const std::size_t n = std::min<std::size_t>(2, lines_.size() - next_);
        next_ += n;
        return std::span(lines_).subspan(next_ - n, n);
    }
    void Release() override {}
    std::size_t CharsLeft() const override { return 0; }

private:
    std::vector<std::string> texts_;
    std::vector<SplicedLine> lines_;
    std::size_t next_ = 0;
};

// As Assemble, with `lines` left out of the text at `at` and read in their place.
inline Assembled AssembleSpliced(std::string text, std::size_t at, const std::vector<std::string>& lines,
                                 ScannerClass scanner) {
    LinesInPlace feed(lines);
    return AssembleWith(scanner, true, [&](TIffCompiler& a) {
        a.TakeInputText(std::move(text), {}, feed, at, static_cast<std::int32_t>(lines.size()));
    });
}

inline Bytes B(std::string_view s) {
    return Bytes(s.begin(), s.end());
}

inline void AppendBigEndian(Bytes& out, std::uint32_t v) {
    for (int i = 3; i >= 0; --i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
}

inline void AppendLittleEndian(Bytes& out, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
}

// A whole file of one form holding one chunk with the given data (padded when odd).
inline Bytes OneChunkFile(std::string_view formType, std::string_view chunkId, const Bytes& data) {
    const std::uint32_t padded = static_cast<std::uint32_t>(data.size() + data.size() % 2);
    Bytes out = B("FORM");
    AppendBigEndian(out, 4 + 8 + padded);
    for (char c : formType) out.push_back(static_cast<std::uint8_t>(c));
    for (char c : chunkId) out.push_back(static_cast<std::uint8_t>(c));
    AppendBigEndian(out, static_cast<std::uint32_t>(data.size()));
    out.insert(out.end(), data.begin(), data.end());
    if (data.size() % 2) out.push_back(0);
    return out;
}

} // namespace velkor::test
