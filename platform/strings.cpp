#include "platform/strings.h"

namespace velkor {

namespace {
char Upper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}
char Lower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
bool IsTrimmed(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}
} // namespace

std::string UpperCase(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = Upper(c);
    return r;
}

std::string LowerCase(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = Lower(c);
    return r;
}

std::string_view TrimLeft(std::string_view s) {
    size_t b = 0;
    while (b < s.size() && IsTrimmed(s[b])) ++b;
    return s.substr(b);
}

std::string_view TrimRight(std::string_view s) {
    size_t e = s.size();
    while (e > 0 && IsTrimmed(s[e - 1])) --e;
    return s.substr(0, e);
}

std::string_view Trim(std::string_view s) {
    return TrimRight(TrimLeft(s));
}

size_t FindNoCase(std::string_view hay, std::string_view needle) {
    if (needle.empty()) return 0;
    if (needle.size() > hay.size()) return std::string_view::npos;
    // A short needle is compared at every position. A long one is matched Knuth-Morris-Pratt style, so that
    // a long run of near-misses in hostile text costs the length of the text, not its product with the
    // needle's.
    constexpr size_t kShort = 16;
    if (needle.size() <= kShort) {
        for (size_t i = 0; i + needle.size() <= hay.size(); ++i)
            if (SameText(hay.substr(i, needle.size()), needle)) return i;
        return std::string_view::npos;
    }
    const std::string pattern = UpperCase(needle);
    std::vector<size_t> fallback(pattern.size(), 0); // the longest proper border of pattern[0..i]
    for (size_t i = 1, k = 0; i < pattern.size(); ++i) {
        while (k > 0 && pattern[i] != pattern[k]) k = fallback[k - 1];
        if (pattern[i] == pattern[k]) ++k;
        fallback[i] = k;
    }
    for (size_t i = 0, k = 0; i < hay.size(); ++i) {
        const char c = Upper(hay[i]);
        while (k > 0 && c != pattern[k]) k = fallback[k - 1];
        if (c == pattern[k]) ++k;
        if (k == pattern.size()) return i + 1 - k;
    }
    return std::string_view::npos;
}

std::string ReplaceAllNoCase(std::string_view text, std::string_view from, std::string_view to) {
    if (from.empty()) return std::string(text);
    std::string out;
    out.reserve(text.size());
    size_t pos = 0;
    while (pos < text.size()) {
        size_t hit = FindNoCase(text.substr(pos), from);
        if (hit == std::string_view::npos) break;
        out.append(text.substr(pos, hit));
        out.append(to);
        pos += hit + from.size();
    }
    out.append(text.substr(std::min(pos, text.size())));
    return out;
}

std::vector<std::string> SplitLines(std::string_view text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' || text[i] == '\n') {
            lines.emplace_back(text.substr(start, i - start));
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
            start = i + 1;
        }
    }
    if (start < text.size()) lines.emplace_back(text.substr(start));
    return lines;
}

std::string JoinLinesCrLf(const std::vector<std::string>& lines) {
    size_t total = 0;
    for (const auto& l : lines) total += l.size() + 2;
    std::string out;
    out.reserve(total);
    for (const auto& l : lines) {
        out += l;
        out += "\r\n";
    }
    return out;
}

bool IsValidUtf8(std::string_view s) {
    const size_t n = s.size();
    size_t i = 0;
    while (i < n) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c < 0x80) {
            ++i;
            continue;
        }
        size_t len = 0;
        unsigned char lo = 0x80, hi = 0xBF; // allowed range of the second byte
        if (c >= 0xC2 && c <= 0xDF) {
            len = 2;
        } else if (c >= 0xE0 && c <= 0xEF) {
            len = 3;
            if (c == 0xE0) lo = 0xA0;
            if (c == 0xED) hi = 0x9F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            len = 4;
            if (c == 0xF0) lo = 0x90;
            if (c == 0xF4) hi = 0x8F;
        } else {
            return false;
        }
        if (n - i < len) return false;
        const auto second = static_cast<unsigned char>(s[i + 1]);
        if (second < lo || second > hi) return false;
        for (size_t k = 2; k < len; ++k)
            if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
        i += len;
    }
    return true;
}

std::string VisibleBytes(std::string_view bytes, bool keepLineBreaks) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size());
    for (const char c : bytes) {
        const auto u = static_cast<unsigned char>(c);
        if ((u >= 0x20 && u <= 0x7E) || (keepLineBreaks && (c == '\r' || c == '\n'))) {
            out += c;
        } else {
            out += "\\x";
            out += kHex[u >> 4];
            out += kHex[u & 0xF];
        }
    }
    return out;
}

} // namespace velkor
