#include "platform/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace velkor {

namespace {
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

std::optional<std::int32_t> StrToInt(std::string_view text) {
    size_t i = 0;
    while (i < text.size() && text[i] == ' ') ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    bool hex = false;
    if (i < text.size() && text[i] == '$') {
        hex = true;
        ++i;
    } else if (i + 1 < text.size() && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X')) {
        hex = true;
        i += 2;
    }
    if (i >= text.size()) return std::nullopt;
    const unsigned base = hex ? 16 : 10;
    std::uint64_t value = 0;
    for (; i < text.size(); ++i) {
        const unsigned d = kHexDigitValues[static_cast<unsigned char>(text[i])];
        if (d >= base) return std::nullopt;
        value = value * base + d;
        if (value > 0xFFFFFFFFull) return std::nullopt;
    }
    if (hex) {
        auto bits = static_cast<std::uint32_t>(value);
        if (negative) bits = 0u - bits;
        return static_cast<std::int32_t>(bits);
    }
    if (negative) {
        if (value > 0x80000000ull) return std::nullopt;
        return static_cast<std::int32_t>(-static_cast<std::int64_t>(value));
    }
    if (value > 0x7FFFFFFFull) return std::nullopt;
    return static_cast<std::int32_t>(value);
}

std::int32_t StrToIntDef(std::string_view text, std::int32_t fallback) {
    auto v = StrToInt(text);
    return v ? *v : fallback;
}

std::optional<double> StrToFloat(std::string_view text) {
    size_t b = 0, e = text.size();
    while (b < e && text[b] == ' ') ++b;
    while (e > b && text[e - 1] == ' ') --e;
    std::string_view t = text.substr(b, e - b);
    // Check the grammar ourselves: from_chars would also take "inf", "nan" and hexadecimal floats.
    size_t i = 0;
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
    size_t digits = 0;
    while (i < t.size() && IsDigit(t[i])) ++i, ++digits;
    if (i < t.size() && t[i] == '.') {
        ++i;
        while (i < t.size() && IsDigit(t[i])) ++i, ++digits;
    }
    if (digits == 0) return std::nullopt;
    if (i < t.size() && (t[i] == 'e' || t[i] == 'E')) {
        ++i;
        if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
        size_t expDigits = 0;
        while (i < t.size() && IsDigit(t[i])) ++i, ++expDigits;
        if (expDigits == 0) return std::nullopt;
    }
    if (i != t.size()) return std::nullopt;
    std::string_view body = t;
    if (!body.empty() && body[0] == '+') body.remove_prefix(1);
    double value = 0;
    auto [ptr, ec] = std::from_chars(body.data(), body.data() + body.size(), value);
    if (ec == std::errc::result_out_of_range) {
        // Underflow reads as zero, overflow is refused, as a conversion to a finite number would be.
        bool expNegative =
            body.find("e-") != std::string_view::npos || body.find("E-") != std::string_view::npos;
        if (!expNegative) return std::nullopt;
        return body[0] == '-' ? -0.0 : 0.0;
    }
    if (ec != std::errc() || ptr != body.data() + body.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

namespace {
struct PatternSection {
    int minInt = 0; // '0' digits before the point
    bool grouping = false;
    int minFrac = 0; // '0' digits after the point
    int maxFrac = 0; // '0' and '#' digits after the point
};

PatternSection ParsePattern(std::string_view pattern) {
    PatternSection p;
    bool afterPoint = false;
    for (char c : pattern) {
        if (c == '.')
            afterPoint = true;
        else if (c == ',' && !afterPoint)
            p.grouping = true;
        else if (c == '0') {
            if (afterPoint) {
                ++p.minFrac;
                ++p.maxFrac;
            } else {
                ++p.minInt;
            }
        } else if (c == '#' && afterPoint) {
            ++p.maxFrac;
        }
    }
    return p;
}

// Decimal digits of |value| rounded half away from zero to `frac` fractional digits, via its 17-digit
// scientific form. Returns the integer digits and the fractional digits.
void RoundDecimal(double value, int frac, std::string& intDigits, std::string& fracDigits) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.16e", std::fabs(value));
    std::string mantissa;
    const char* p = buf;
    for (; *p && *p != 'e'; ++p)
        if (IsDigit(*p)) mantissa += *p;
    int exponent = std::atoi(p + 1);
    // mantissa d0 d1 ... d16 stands for d0.d1d2... x 10^exponent
    int pointPos = exponent + 1; // digits before the decimal point
    std::string digits = mantissa;
    if (pointPos <= 0) {
        digits.insert(0, static_cast<size_t>(-pointPos) + 1, '0');
        pointPos = 1;
    }
    int keep = pointPos + frac;
    if (static_cast<int>(digits.size()) < keep) digits.append(static_cast<size_t>(keep) - digits.size(), '0');
    bool roundUp = keep < static_cast<int>(digits.size()) && digits[static_cast<size_t>(keep)] >= '5';
    digits.resize(static_cast<size_t>(keep));
    if (roundUp) {
        int i = keep - 1;
        while (i >= 0) {
            if (digits[static_cast<size_t>(i)] == '9') {
                digits[static_cast<size_t>(i)] = '0';
                --i;
            } else {
                ++digits[static_cast<size_t>(i)];
                break;
            }
        }
        if (i < 0) {
            digits.insert(digits.begin(), '1');
            ++pointPos;
        }
    }
    intDigits = digits.substr(0, static_cast<size_t>(pointPos));
    fracDigits = digits.substr(static_cast<size_t>(pointPos));
    size_t nz = intDigits.find_first_not_of('0');
    intDigits = nz == std::string::npos ? "" : intDigits.substr(nz);
}
} // namespace

std::string FormatFloat(std::string_view pattern, double value) {
    if (std::isnan(value)) return "NAN";
    if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
    PatternSection p = ParsePattern(pattern);
    std::string intDigits, fracDigits;
    RoundDecimal(value, p.maxFrac, intDigits, fracDigits);
    while (static_cast<int>(fracDigits.size()) > p.minFrac && !fracDigits.empty() && fracDigits.back() == '0')
        fracDigits.pop_back();
    if (static_cast<int>(intDigits.size()) < p.minInt)
        intDigits.insert(0, static_cast<size_t>(p.minInt) - intDigits.size(), '0');
    if (p.grouping && intDigits.size() > 3) {
        std::string grouped;
        size_t lead = intDigits.size() % 3;
        for (size_t i = 0; i < intDigits.size(); ++i) {
            if (i != 0 && (i - lead) % 3 == 0 && i >= lead) grouped += ',';
            grouped += intDigits[i];
        }
        intDigits = grouped;
    }
    bool isZero = intDigits.find_first_not_of("0,") == std::string::npos &&
                  fracDigits.find_first_not_of('0') == std::string::npos;
    std::string out;
    if (value < 0 && !isZero) out += '-';
    out += intDigits;
    if (!fracDigits.empty()) {
        out += '.';
        out += fracDigits;
    }
    if (out.empty() || out == "-") out += '0';
    return out;
}

std::string FormatThousands(std::int64_t value) {
    return FormatFloat("#,##0", static_cast<double>(value));
}

std::string IntToHex(std::uint32_t value, int digits) {
    static const char kHex[] = "0123456789ABCDEF";
    std::string out;
    do {
        out.insert(out.begin(), kHex[value & 0xF]);
        value >>= 4;
    } while (value != 0);
    if (static_cast<int>(out.size()) < digits) out.insert(0, static_cast<size_t>(digits) - out.size(), '0');
    return out;
}

std::string FloatToShortest(float value) {
    char buf[64];
    auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, value);
    std::string s(buf, ec == std::errc() ? ptr : buf);
    // Keep a decimal point or exponent so the text reads as a number of the float kind.
    if (s.find_first_of(".eE") == std::string::npos && s.find_first_of("0123456789") != std::string::npos)
        s += ".0";
    return s;
}

} // namespace velkor
