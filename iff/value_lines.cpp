#include "iff/value_lines.h"

#include "platform/numbers.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace velkor {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

// " $XY" for every byte value, so a row is built by copying.
constexpr std::array<std::array<char, 4>, 256> MakeByteTexts() {
    std::array<std::array<char, 4>, 256> t{};
    for (std::size_t b = 0; b < 256; ++b) t[b] = {' ', '$', kHexDigits[b >> 4], kHexDigits[b & 0xF]};
    return t;
}
constexpr auto kByteTexts = MakeByteTexts();

// One row without its line break: indent, "BYTE [n]" and the bytes.
void AppendRow(std::string& out, std::string_view indent, std::span<const std::uint8_t> row) {
    out += indent;
    out += "BYTE [";
    out += std::to_string(row.size());
    out += ']';
    for (std::uint8_t b : row) out.append(kByteTexts[b].data(), 4);
}

// Full rows of 16 bytes, each built in one buffer whose prefix is written once.
void AppendFullRows(std::string& out, std::string_view indent, std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kHead = "BYTE [16]";
    std::string row(indent);
    row += kHead;
    const std::size_t prefix = row.size();
    row.resize(prefix + 16 * 4 + 2);
    row[row.size() - 2] = '\r';
    row[row.size() - 1] = '\n';
    for (std::size_t at = 0; at + 16 <= bytes.size(); at += 16) {
        char* p = row.data() + prefix;
        for (std::size_t i = 0; i < 16; ++i, p += 4) std::memcpy(p, kByteTexts[bytes[at + i]].data(), 4);
        out += row;
    }
}

// What the assembler makes of the text of a float value: the same conversion, the same range check.
std::optional<float> ReadBack(const std::string& text) {
    std::optional<double> v = StrToFloat(text);
    if (!v || !std::isfinite(*v) || std::fabs(*v) > static_cast<double>(std::numeric_limits<float>::max()))
        return std::nullopt;
    return static_cast<float>(*v);
}

bool SameBits(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

} // namespace

void WriteLabelled(std::string& out, std::string_view indent, std::string_view text, std::string_view label) {
    const std::size_t start = out.size();
    out += indent;
    out += text;
    if (!label.empty()) {
        const std::size_t length = out.size() - start;
        if (length < kLabelColumn) out.append(kLabelColumn - length, ' ');
        out += "//";
        out += label;
    }
    out += "\r\n";
}

void WriteLong(std::string& out, std::string_view indent, std::int32_t value, bool hex,
               std::string_view label) {
    const std::string text =
        hex ? "long $" + IntToHex(static_cast<std::uint32_t>(value), 8) : "long " + std::to_string(value);
    WriteLabelled(out, indent, text, label);
}

void WriteCString(std::string& out, std::string_view indent, std::string_view text, std::string_view label) {
    std::string line = "cstring \"";
    line += text;
    line += '"';
    WriteLabelled(out, indent, line, label);
}

std::optional<std::string> FloatValueText(float value, std::string_view pattern, bool exactFloats,
                                          bool& exact) {
    exact = true;
    if (!std::isfinite(value)) return std::nullopt;
    if (!exactFloats) {
        std::string text = FormatFloat(pattern, value);
        if (std::optional<float> back = ReadBack(text)) {
            exact = SameBits(*back, value);
            return text;
        }
    }
    std::string text = FloatToShortest(value);
    if (std::optional<float> back = ReadBack(text); back && SameBits(*back, value)) return text;
    // The shortest text of the float can lie just outside the float range (3.4028235e+38) or, read as a
    // double first, round to a neighbour; the double's own shortest text always reads back exactly.
    char buffer[64];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value));
    text.assign(buffer, ec == std::errc() ? end : buffer);
    if (text.find_first_of(".eE") == std::string::npos) text += ".0";
    if (std::optional<float> back = ReadBack(text); back && SameBits(*back, value)) return text;
    return std::nullopt;
}

bool WriteFloat(std::string& out, std::string_view indent, float value, const FloatStyle& style,
                bool exactFloats, std::string_view label) {
    bool exact = true;
    std::optional<std::string> text = FloatValueText(value, style.pattern, exactFloats, exact);
    if (!text) {
        WriteLong(out, indent, std::bit_cast<std::int32_t>(value), true, label);
        return true;
    }
    std::string line(style.prefix);
    line += ' ';
    line += *text;
    WriteLabelled(out, indent, line, label);
    return exact;
}

void WriteByteRows(std::string& out, std::string_view indent, std::span<const std::uint8_t> bytes,
                   std::string_view label) {
    if (bytes.empty()) return;
    const std::size_t rows = (bytes.size() + 15) / 16;
    out.reserve(out.size() + rows * (indent.size() + 11 + 64 + 2) + label.size() + kLabelColumn);
    std::size_t pos = 0;
    if (!label.empty()) {
        std::string first;
        const std::size_t n = std::min<std::size_t>(16, bytes.size());
        AppendRow(first, {}, bytes.first(n));
        WriteLabelled(out, indent, first, label);
        pos = n;
    }
    const std::size_t full = (bytes.size() - pos) / 16 * 16;
    AppendFullRows(out, indent, bytes.subspan(pos, full));
    pos += full;
    if (pos < bytes.size()) {
        AppendRow(out, indent, bytes.subspan(pos));
        out += "\r\n";
    }
}

bool IsWritableString(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x20 || c == 0x7F || c == '"') return false;
        if (c == '/' && i + 1 < text.size() && (text[i + 1] == '/' || text[i + 1] == '*')) return false;
    }
    return true;
}

bool IsWritableId(std::string_view id) {
    if (id.size() != 4 || !IsWritableString(id)) return false;
    for (char c : id)
        if (static_cast<unsigned char>(c) > 0x7E) return false;
    return true;
}

std::uint32_t IdValue(std::string_view id) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < id.size() && i < 4; ++i)
        value |= std::uint32_t{static_cast<unsigned char>(id[i])} << (8 * i);
    return value;
}

std::string SafeFileName(std::string_view name) {
    std::string out(name);
    for (char& c : out) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u == 0x7F || std::string_view("\"/\\*:<>|?").find(c) != std::string_view::npos)
            c = '_';
    }
    return out;
}

} // namespace velkor
