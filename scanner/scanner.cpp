#include "scanner/scanner.h"

#include "platform/numbers.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>

namespace velkor {

namespace {

constexpr std::array<ScannerKeyword, 21> kKeywords{{
    {"and", tkAnd},       {"or", tkOr},           {"unit", tkUnit},           {"include", tkInclude},
    {"var", tkVar},       {"const", tkConst},     {"function", tkFunction},   {"wcp", tkWcp},
    {"object", tkObject}, {"forward", tkForward}, {"objective", tkObjective}, {"mission", tkMission},
    {"sector", tkSector}, {"series", tkSeries},   {"external", tkExternal},   {"static", tkStatic},
    {"iff", tkIff},       {"project", tkProject}, {"property", tkProperty},   {"begin", tkBegin},
    {"end", tkEnd},
}};

// Character classes, one table look-up each: the scanner asks them for every character of the text.
enum : std::uint8_t {
    ccLetter = 1,
    ccDigit = 2,
    ccUnderscore = 4,
    ccNumberTail = 8, // digits, "." and the hexadecimal letters: what continues a number
    ccOperator = 16,
    ccDelimiter = 32,
    ccBlank = 64,
};

constexpr std::array<std::uint8_t, 256> MakeCharClasses() {
    std::array<std::uint8_t, 256> t{};
    for (int c = 'A'; c <= 'Z'; ++c) t[c] |= ccLetter;
    for (int c = 'a'; c <= 'z'; ++c) t[c] |= ccLetter;
    for (int c = '0'; c <= '9'; ++c) t[c] |= ccDigit | ccNumberTail;
    for (int c = 'A'; c <= 'F'; ++c) t[c] |= ccNumberTail;
    for (int c = 'a'; c <= 'f'; ++c) t[c] |= ccNumberTail;
    t['.'] |= ccNumberTail;
    t['_'] |= ccUnderscore;
    for (unsigned char c : std::string_view("!&*+-/:<=>@|")) t[c] |= ccOperator;
    for (unsigned char c : std::string_view("(),.;[]{}")) t[c] |= ccDelimiter;
    for (unsigned char c : std::string_view("\t\n\r ")) t[c] |= ccBlank;
    return t;
}
constexpr auto kCharClasses = MakeCharClasses();

bool Is(char c, std::uint8_t classes) {
    return (kCharClasses[static_cast<unsigned char>(c)] & classes) != 0;
}
bool IsDigit(char c) {
    return Is(c, ccDigit);
}
bool IsIdentChar(char c) {
    return Is(c, ccLetter | ccDigit | ccUnderscore);
}

// The keywords by first letter, so that an identifier is compared with at most three of them: every
// identifier of the text is looked up here.
constexpr std::size_t kKeywordsPerLetter = 3;
constexpr auto kKeywordsByLetter = [] {
    std::array<std::array<std::int8_t, kKeywordsPerLetter>, 26> byLetter{};
    for (auto& letter : byLetter) letter.fill(-1);
    for (std::size_t i = 0; i < kKeywords.size(); ++i) {
        auto& letter = byLetter[static_cast<std::size_t>(kKeywords[i].word[0] - 'a')];
        *std::find(letter.begin(), letter.end(), -1) = static_cast<std::int8_t>(i);
    }
    return byLetter;
}();

std::int32_t DelimiterKind(char c) {
    switch (c) {
    case ';': return tkSemicolon;
    case ',': return tkComma;
    case '(': return tkOpenParen;
    case ')': return tkCloseParen;
    default: return tkDelimiter;
    }
}

std::int32_t KeywordKind(std::string_view word) {
    if (word.empty() || word.size() > 9) return tkIdentifier; // the longest keyword is "objective"
    const char first = word[0] >= 'A' && word[0] <= 'Z' ? static_cast<char>(word[0] - 'A' + 'a') : word[0];
    if (first < 'a' || first > 'z') return tkIdentifier;
    for (std::int8_t i : kKeywordsByLetter[static_cast<std::size_t>(first - 'a')]) {
        if (i < 0) break;
        const ScannerKeyword& k = kKeywords[static_cast<std::size_t>(i)];
        if (k.word.size() == word.size() && SameText(k.word, word)) return k.kind;
    }
    return tkIdentifier;
}

// Markers carry exactly five digits; beyond line 99999 they wrap rather than spill a sixth digit into
// the token stream.
constexpr std::size_t kMarkerSize = 7; // "##" and five digits

void WriteMarker(char* at, std::int32_t line) {
    at[0] = at[1] = '#';
    for (int i = 6, v = line % 100000; i >= 2; --i, v /= 10) at[i] = static_cast<char>('0' + v % 10);
}

// memchr looks through the text in long strides; a plain counting loop goes byte by byte.
size_t CountCrs(std::string_view text) {
    size_t count = 0;
    const char* const end = text.data() + text.size();
    for (const char* p = text.data(); (p = static_cast<const char*>(std::memchr(p, '\r', end - p))); ++p)
        ++count;
    return count;
}

// The last CR before `end`; there is one.
size_t LastCr(const char* text, size_t end) {
#if defined(__GLIBC__)
    return static_cast<size_t>(static_cast<const char*>(memrchr(text, '\r', end)) - text); // word-wide
#else
    return std::string_view(text, end).rfind('\r');
#endif
}

// A marker goes at the start and two characters behind every CR, i.e. behind the CR LF pair. The text
// grows in place, from its end backwards, so that a large text is not held twice.
void InsertLineMarkers(std::string& text) {
    const size_t n = text.size();
    const size_t breaks = CountCrs(text);
    const size_t grown = n + kMarkerSize * (breaks + 1);
    text.resize(grown);
    char* const t = text.data();
    size_t src = n;     // the text before src is still where it was loaded
    size_t dst = grown; // and the text from dst on is in its final place
    size_t cr = n;
    for (auto line = static_cast<std::int32_t>(breaks + 1); line > 1; --line) {
        cr = LastCr(t, cr);
        const size_t at = std::min(cr + 2, n); // a CR among the last two characters: at the very end
        dst -= src - at;
        std::memmove(t + dst, t + at, src - at);
        dst -= kMarkerSize;
        WriteMarker(t + dst, line);
        src = at;
    }
    std::memmove(t + kMarkerSize, t, src);
    WriteMarker(t, 1);
}

bool IsLineMarker(std::string_view text, size_t at) {
    if (at + kMarkerSize > text.size() || text[at] != '#' || text[at + 1] != '#') return false;
    for (size_t i = at + 2; i < at + kMarkerSize; ++i)
        if (text[i] < '0' || text[i] > '9') return false;
    return true;
}

std::atomic<ScannerClass> gScannerClass{ScannerClass::Standard};

// What SkipBlanks of either scanner may stop at or move over besides spaces: past anything else both stop.
bool MaySkip(char c) {
    return c == '\t' || c == '\r' || c == '\n' || c == '#' || c == '/';
}

} // namespace

std::span<const ScannerKeyword> ScannerKeywords() {
    return kKeywords;
}

std::span<const std::string_view> StatementWords() {
    static constexpr std::array<std::string_view, 16> words = {
        "if",    "then", "else", "while", "do",  "until", "for",  "to",
        "break", "inc",  "dec",  "not",   "xor", "mod",   "aint", "result",
    };
    return words;
}

void TScanner::SetText(std::string text) {
    text_ = std::move(text);
    ForgetPeek();
    pos_ = 1;
    line_ = 1;
    Rewrite();
}

void TScanner::LoadFromStream(std::string_view content) {
    std::string text;
    // Room for the NUL and the line markers, so that neither moves the text again.
    text.reserve(content.size() + 1 + (LineMarkers ? kMarkerSize * (CountCrs(content) + 1) : 0));
    text.append(content);
    text.push_back('\0');
    SetText(std::move(text));
}

void TScanner::LoadFromString(std::string content) {
    content.push_back('\0');
    SetText(std::move(content));
}

void TScanner::LoadFromFile(const std::filesystem::path& path) {
    LoadFromString(LoadTextFile(path));
}

// One pass to insert the markers and one to blank the comments: linear in the text.
void TScanner::Rewrite() {
    if (LineMarkers) InsertLineMarkers(text_);

    for (size_t i = text_.find('/'); i != std::string::npos && i + 1 < text_.size();
         i = text_.find('/', i + 1)) {
        if (text_[i + 1] == '/') {
            size_t j = i;
            while (j < text_.size() && text_[j] != '\r') text_[j++] = ' ';
            i = j;
        } else if (text_[i + 1] == '*') {
            size_t close = text_.find("*/", i + 2);
            size_t end = close == std::string::npos ? text_.size() : close + 2;
            for (size_t j = i; j < end; ++j) text_[j] = ' ';
            i = end - 1;
        }
    }

    // In place: the text ends in a NUL, so there is nearly always something to trim, and a copy of a large
    // text would cost as much again in memory.
    std::string_view trimmed = Trim(text_);
    if (trimmed.size() != text_.size()) {
        const size_t start = static_cast<size_t>(trimmed.data() - text_.data());
        text_.resize(start + trimmed.size());
        text_.erase(0, start);
    }
    pos_ = 1;
}

void TScanner::SkipBlanks() {
    const size_t len = text_.size();
    const char* const text = text_.data();
    size_t p = pos_; // 1-based: the character at p is text[p - 1]
    for (;;) {
        while (p <= len && Is(text[p - 1], ccBlank)) ++p;
        if (!LineMarkers || p + 6 > len || text[p - 1] != '#' || text[p] != '#') break;
        // Only "##" and five digits is a marker; a "##" the user wrote stays text for the parser to see.
        const char* const digits = text + p + 1;
        std::int32_t value = 0;
        int k = 0;
        for (; k < 5 && IsDigit(digits[k]); ++k) value = value * 10 + (digits[k] - '0');
        if (k < 5) break;
        line_ = value;
        p += 7;
        markerEnd_ = p;
    }
    pos_ = p;
}

std::string_view TScanner::ScanToken() {
    const size_t len = text_.size();
    const char* const text = text_.data();
    // Spaces are passed here, short of the text's last character, which TFastScanner never passes; the rest
    // of what may be blanks (line breaks, markers, comments, that last space) by SkipBlanks.
    size_t p = pos_; // 1-based: the character at p is text[p - 1]
    while (p < len && text[p - 1] == ' ') ++p;
    pos_ = p;
    if (p <= len && (text[p - 1] == ' ' || MaySkip(text[p - 1]))) {
        SkipBlanks();
        p = pos_;
    }
    if (p > len || text[p - 1] == '\0') {
        tokenKind_ = tkEndOfText;
        return {};
    }
    // Indices here count from 0. Every loop stops before the text's last character (index `last`): that
    // character never extends a token of more than one character.
    const size_t last = len - 1;
    const size_t start = p - 1;
    const char first = text[start];
    size_t i = start + 1;
    auto take = [&]() {
        pos_ = i + 1;
        return std::string_view(text + start, i - start);
    };
    if (Is(first, ccLetter | ccUnderscore)) {
        while (i < last && IsIdentChar(text[i])) ++i;
        const std::string_view token = take();
        tokenKind_ = KeywordKind(token);
        return token;
    }
    if (Is(first, ccDelimiter)) {
        tokenKind_ = DelimiterKind(first);
        return take();
    }
    if (Is(first, ccDigit) || first == '$' || first == '%') {
        while (i < last && Is(text[i], ccNumberTail)) ++i;
        const char before = text[i - 1];
        if (i < last && (text[i] == '+' || text[i] == '-') && (before == 'E' || before == 'e')) {
            ++i;
            while (i < last && IsDigit(text[i])) ++i;
        }
        tokenKind_ = tkNumber;
        return take();
    }
    if (Is(first, ccOperator)) {
        while (i < last && Is(text[i], ccOperator)) ++i;
        tokenKind_ = tkOperator;
        return take();
    }
    if (first == '"') {
        const size_t from = i;
        if (i < last) {
            const void* quote = std::memchr(text + i, '"', last - i);
            i = quote ? static_cast<size_t>(static_cast<const char*>(quote) - text) : last;
        }
        const std::string_view token =
            i > from ? std::string_view(text + from, i - from) : std::string_view();
        pos_ = i + 2; // behind the closing quote
        tokenKind_ = tkString;
        return token;
    }
    // Other characters start at the first one again: a blank the skipping left (the text's last character,
    // or a line feed for TFastScanner) makes an empty token that does not move on.
    i = start;
    while (i < last && !Is(text[i], ccBlank | ccLetter | ccDigit | ccUnderscore | ccOperator | ccDelimiter))
        ++i;
    tokenKind_ = tkOther;
    return take();
}

// The number branch of NextTokenView and the "," of a list, for the one kind of token value rows are made
// of; everything else is left to NextTokenView. Spaces are passed here, anything SkipBlanks does more (line
// breaks, markers, comments) by it.
std::size_t TScanner::NextPlainNumbers(std::uint32_t max, std::span<std::uint32_t> values) {
    const char* const text = text_.data();
    const size_t len = text_.size();
    const size_t last = len - 1; // no token of more than one character takes the text's last character
    // 0-based from here on: the character at p is text[p].
    auto skipBlanks = [&](size_t p) {
        while (p < len && text[p] == ' ') ++p;
        if (p >= len || MaySkip(text[p])) {
            pos_ = p + 1;
            SkipBlanks();
            p = pos_ - 1;
        }
        return p;
    };
    // The token at p and its value when it is a plain number no greater than max; its end, or 0.
    auto plainNumber = [&](size_t p, std::uint32_t& value) -> size_t {
        // The commonest of all: "$" and two digits, then a blank.
        if (text[p] == '$' && p + 3 < last && (text[p + 3] == ' ' || text[p + 3] == '\r')) {
            const std::uint32_t high = kHexDigitValues[static_cast<unsigned char>(text[p + 1])];
            const std::uint32_t low = kHexDigitValues[static_cast<unsigned char>(text[p + 2])];
            if ((high | low) > 15 || (high << 4 | low) > max) return 0;
            value = high << 4 | low;
            return p + 3;
        }
        size_t i = p + 1;
        while (i < last && Is(text[i], ccNumberTail)) ++i;
        if (i < last && (text[i] == '+' || text[i] == '-') && (text[i - 1] == 'E' || text[i - 1] == 'e'))
            return 0;
        std::uint32_t v = 0;
        if (text[p] == '$') {
            if (i - p < 2 || i - p > 9) return 0;
            std::uint32_t digits = 0; // every digit's value or'ed: above 15 when one was none
            for (size_t k = p + 1; k < i; ++k) {
                const std::uint32_t d = kHexDigitValues[static_cast<unsigned char>(text[k])];
                digits |= d;
                v = v << 4 | (d & 15);
            }
            if (digits > 15) return 0;
        } else if (IsDigit(text[p]) && i - p <= 9) {
            for (size_t k = p; k < i; ++k) {
                if (!IsDigit(text[k])) return 0;
                v = v * 10 + static_cast<std::uint32_t>(text[k] - '0');
            }
        } else {
            return 0;
        }
        if (v > max || v == static_cast<std::uint32_t>(kNoValue)) return 0;
        value = v;
        return i;
    };
    std::size_t n = 0;
    size_t p = pos_ - 1;
    while (n < values.size()) {
        p = skipBlanks(p);
        if (p >= len) break;
        const size_t end = plainNumber(p, values[n]);
        if (end == 0) break;
        ++n;
        tokenKind_ = tkNumber;
        p = skipBlanks(end);
        if (p < len && text[p] == ',') {
            tokenKind_ = tkComma;
            ++p;
        }
    }
    pos_ = p + 1;
    return n;
}

std::string_view TScanner::PeekAheadView(int n) {
    if (n == 0 && HasPeeked()) {
        TakePeekedState();
        return peeked_.token;
    }
    const size_t savedPos = pos_;
    const std::int32_t savedLine = line_;
    for (int i = 0; i < n; ++i) NextTokenView();
    // markerEnd_ is 0 only before any marker, so that a peek can tell whether its blanks held one.
    const size_t markerBefore = markerEnd_;
    if (n == 0) markerEnd_ = 0;
    const std::string_view token = n == 0 ? ScanToken() : NextTokenView();
    if (n == 0) {
        peeked_ = {savedPos,   savedLine,       LineMarkers, pos_, line_,
                   tokenKind_, markerEnd_ != 0, markerEnd_,  token};
        if (markerEnd_ == 0) markerEnd_ = markerBefore;
    }
    pos_ = savedPos;
    line_ = savedLine;
    return token;
}

void TFastScanner::SetText(std::string text) {
    text_ = std::move(text);
    ForgetPeek();
    pos_ = 1;
    line_ = 1;
}

void TFastScanner::LoadFromStream(std::string_view content) {
    text_.clear();
    text_.reserve(content.size() + 1);
    text_.assign(content);
    text_.push_back('\0');
    ForgetPeek();
    pos_ = 1;
    line_ = 1;
}

void TFastScanner::SkipBlanks() {
    const size_t len = text_.size();
    const char* const text = text_.data();
    auto at = [text](size_t p) { return text[p - 1]; }; // 1-based, as positions are
    size_t p = pos_;
    std::int32_t line = line_;
    while (p < len) {
        const char c = at(p);
        if (c == ' ' || c == '\t') {
            ++p;
        } else if (c == '\r') {
            ++p;
            if (p <= len && at(p) == '\n') ++p;
            ++line;
        } else if (c == '/' && at(p + 1) == '/') {
            while (p <= len && at(p) != '\r') ++p;
        } else if (c == '/' && at(p + 1) == '*') {
            p += 2;
            while (p <= len && !(at(p) == '*' && p < len && at(p + 1) == '/')) {
                if (at(p) == '\r') {
                    ++line;
                    if (p < len && at(p + 1) == '\n') ++p;
                }
                ++p;
            }
            p = std::min(p + 2, len + 1);
        } else {
            break;
        }
    }
    pos_ = p;
    line_ = line;
}

void SetScannerClass(ScannerClass cls) {
    gScannerClass.store(cls);
}
ScannerClass GetScannerClass() {
    return gScannerClass.load();
}

std::unique_ptr<TScanner> CreateScanner() {
    if (GetScannerClass() == ScannerClass::Fast) return std::make_unique<TFastScanner>();
    return std::make_unique<TScanner>();
}

// NextTokenView's branches over a line: every run ends at the line's end, where the line break would stop it.
bool ReadLineTokens(std::string_view line, std::vector<LineToken>& tokens) {
    tokens.clear();
    const char* const text = line.data();
    const std::size_t n = line.size();
    std::size_t i = 0;
    for (;;) {
        while (i < n && (text[i] == ' ' || text[i] == '\t')) ++i;
        if (i == n) return true;
        const char first = text[i];
        const std::size_t start = i++;
        std::int32_t kind;
        if (Is(first, ccLetter | ccUnderscore)) {
            while (i < n && IsIdentChar(text[i])) ++i;
            kind = KeywordKind(std::string_view(text + start, i - start));
        } else if (Is(first, ccDelimiter)) {
            kind = DelimiterKind(first);
        } else if (Is(first, ccDigit) || first == '$' || first == '%') {
            while (i < n && Is(text[i], ccNumberTail)) ++i;
            if (i < n && (text[i] == '+' || text[i] == '-') && (text[i - 1] == 'E' || text[i - 1] == 'e')) {
                ++i;
                while (i < n && IsDigit(text[i])) ++i;
            }
            kind = tkNumber;
        } else if (first == '"') {
            while (i < n && text[i] != '"') {
                if (text[i] == '/' || text[i] == '#' || text[i] == '\r' || text[i] == '\n' || text[i] == '\0')
                    return false;
                ++i;
            }
            if (i == n) return false;
            tokens.push_back({std::string_view(text + start + 1, i - start - 1), tkString});
            ++i;
            continue;
        } else if (first == '/') {
            if (i == n || text[i] != '/') return false;
            for (; i < n; ++i)
                if (text[i] == '\r' || text[i] == '\n' || text[i] == '\0') return false;
            return true;
        } else if (Is(first, ccOperator)) {
            while (i < n && Is(text[i], ccOperator))
                if (text[i++] == '/') return false;
            kind = tkOperator;
        } else {
            if (Is(first, ccBlank) || first == '\0' || first == '#') return false;
            while (i < n &&
                   !Is(text[i], ccBlank | ccLetter | ccDigit | ccUnderscore | ccOperator | ccDelimiter))
                if (text[i] == '#' || text[i++] == '\0') return false;
            kind = tkOther;
        }
        tokens.push_back({std::string_view(text + start, i - start), kind});
    }
}

std::string WithoutLineMarkers(std::string_view token) {
    std::string out;
    out.reserve(token.size());
    for (size_t i = 0; i < token.size(); ++i) {
        out += token[i];
        // A marker stands two characters behind its CR, as InsertLineMarkers puts it.
        if (token[i] != '\r' || i + 1 >= token.size()) continue;
        out += token[++i];
        if (IsLineMarker(token, i + 1)) i += kMarkerSize;
    }
    return out;
}

} // namespace velkor
