#include "compiler/scanner.h"

#include "platform/strings.h"
#include "platform/text_file.h"

#include <array>
#include <atomic>
#include <cstring>

namespace velkor {

namespace {

constexpr std::array<ScannerKeyword, 21> kKeywords{{
    {"and", tkAnd},         {"or", tkOr},           {"unit", tkUnit},           {"include", tkInclude},
    {"var", tkVar},         {"const", tkConst},     {"function", tkFunction},   {"wcp", tkWcp},
    {"object", tkObject},   {"forward", tkForward}, {"objective", tkObjective}, {"mission", tkMission},
    {"sector", tkSector},   {"series", tkSeries},   {"external", tkExternal},   {"static", tkStatic},
    {"iff", tkIff},         {"project", tkProject}, {"property", tkProperty},   {"begin", tkBegin},
    {"end", tkEnd},
}};

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsIdentChar(char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }
bool IsHexLetter(char c) { return (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }
bool IsBlank(char c) { return c == '\t' || c == '\n' || c == '\r' || c == ' '; }
bool IsOperatorChar(char c) {
    switch (c) {
    case '!': case '&': case '*': case '+': case '-': case '/':
    case ':': case '<': case '=': case '>': case '@': case '|': return true;
    default: return false;
    }
}
bool IsDelimiterChar(char c) {
    switch (c) {
    case '(': case ')': case ',': case '.': case ';': case '[': case ']': case '{': case '}': return true;
    default: return false;
    }
}

std::int32_t KeywordKind(std::string_view word) {
    if (word.size() > 9) return tkIdentifier; // the longest keyword is "objective"
    for (const auto& k : kKeywords)
        if (k.word.size() == word.size() && SameText(k.word, word)) return k.kind;
    return tkIdentifier;
}

// Markers carry exactly five digits; beyond line 99999 they wrap rather than spill a sixth digit into
// the token stream.
void AppendMarker(std::string& out, std::int32_t line) {
    char buf[7] = {'#', '#'};
    for (int i = 6, v = line % 100000; i >= 2; --i, v /= 10) buf[i] = static_cast<char>('0' + v % 10);
    out.append(buf, 7);
}

std::atomic<ScannerClass> gScannerClass{ScannerClass::Standard};

} // namespace

std::span<const ScannerKeyword> ScannerKeywords() { return kKeywords; }

void TScanner::SetText(std::string text) {
    text_ = std::move(text);
    pos_ = 1;
    line_ = 1;
    Rewrite();
}

void TScanner::LoadFromStream(std::string_view content) {
    std::string text(content);
    text.push_back('\0');
    SetText(std::move(text));
}

void TScanner::LoadFromFile(const std::filesystem::path& path) { LoadFromStream(LoadTextFile(path)); }

// One pass to insert the markers and one to blank the comments: linear in the text.
void TScanner::Rewrite() {
    if (LineMarkers) {
        std::string out;
        out.reserve(text_.size() + text_.size() / 8 + 16);
        std::int32_t nextLine = 2;
        AppendMarker(out, 1);
        // A marker goes two characters behind every CR, i.e. behind the CR LF pair.
        const size_t n = text_.size();
        size_t copied = 0;
        for (size_t cr = text_.find('\r'); cr != std::string::npos; cr = text_.find('\r', cr + 1)) {
            const size_t at = std::min(cr + 2, n); // a CR among the last two characters: at the very end
            out.append(text_, copied, at - copied);
            copied = at;
            AppendMarker(out, nextLine++);
        }
        out.append(text_, copied, n - copied);
        text_ = std::move(out);
    }

    for (size_t i = text_.find('/'); i != std::string::npos && i + 1 < text_.size(); i = text_.find('/', i + 1)) {
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

    std::string_view trimmed = Trim(text_);
    if (trimmed.size() != text_.size()) {
        size_t start = static_cast<size_t>(trimmed.data() - text_.data());
        text_ = text_.substr(start, trimmed.size());
    }
    pos_ = 1;
}

void TScanner::SkipBlanks() {
    for (;;) {
        while (pos_ <= text_.size() && IsBlank(At(pos_))) ++pos_;
        if (!LineMarkers || pos_ + 1 > text_.size() || At(pos_) != '#' || At(pos_ + 1) != '#') return;
        // Only "##" and five digits is a marker; a "##" the user wrote stays text for the parser to see.
        std::int32_t value = 0;
        if (pos_ + 6 > text_.size()) return;
        for (size_t k = 2; k < 7; ++k) {
            char c = At(pos_ + k);
            if (!IsDigit(c)) return;
            value = value * 10 + (c - '0');
        }
        line_ = value;
        pos_ += 7;
        markerEnd_ = pos_;
    }
}

std::string TScanner::NextToken() {
    SkipBlanks();
    const size_t len = text_.size();
    if (pos_ > len || At(pos_) == '\0') {
        tokenKind_ = tkEndOfText;
        return {};
    }
    // Every loop stops before the text's last character (pos_ < len): that character never extends a
    // token of more than one character.
    const char first = At(pos_);
    const size_t start = pos_; // 1-based position of the token's first character
    auto take = [&](size_t from) { return text_.substr(from - 1, pos_ - from); };
    if (first == '"') {
        ++pos_;
        const size_t from = pos_;
        if (pos_ < len) {
            const void* quote = std::memchr(text_.data() + pos_ - 1, '"', len - pos_);
            pos_ = quote ? static_cast<size_t>(static_cast<const char*>(quote) - text_.data()) + 1 : len;
        }
        std::string token = pos_ > from ? take(from) : std::string();
        ++pos_;
        tokenKind_ = tkString;
        return token;
    }
    if (IsDigit(first) || first == '$' || first == '%') {
        ++pos_;
        while (pos_ < len && (IsDigit(At(pos_)) || At(pos_) == '.' || IsHexLetter(At(pos_)))) ++pos_;
        const char last = At(pos_ - 1);
        if (pos_ < len && (At(pos_) == '+' || At(pos_) == '-') && (last == 'E' || last == 'e')) {
            ++pos_;
            while (pos_ < len && IsDigit(At(pos_))) ++pos_;
        }
        tokenKind_ = tkNumber;
        return take(start);
    }
    if (IsLetter(first) || first == '_') {
        ++pos_;
        while (pos_ < len && IsIdentChar(At(pos_))) ++pos_;
        std::string token = take(start);
        tokenKind_ = KeywordKind(token);
        return token;
    }
    if (IsOperatorChar(first)) {
        ++pos_;
        while (pos_ < len && IsOperatorChar(At(pos_))) ++pos_;
        tokenKind_ = tkOperator;
        return take(start);
    }
    if (IsDelimiterChar(first)) {
        ++pos_;
        switch (first) {
        case ';': tokenKind_ = tkSemicolon; break;
        case ',': tokenKind_ = tkComma; break;
        case '(': tokenKind_ = tkOpenParen; break;
        case ')': tokenKind_ = tkCloseParen; break;
        default: tokenKind_ = tkDelimiter; break;
        }
        return std::string(1, first);
    }
    while (pos_ < len) {
        const char c = At(pos_);
        if (IsBlank(c) || IsIdentChar(c) || IsOperatorChar(c) || IsDelimiterChar(c)) break;
        ++pos_;
    }
    tokenKind_ = tkOther;
    return take(start);
}

std::string TScanner::PeekAhead(int n) {
    const size_t savedPos = pos_;
    const std::int32_t savedLine = line_;
    for (int i = 0; i < n; ++i) NextToken();
    std::string token = NextToken();
    pos_ = savedPos;
    line_ = savedLine;
    return token;
}

void TFastScanner::SetText(std::string text) {
    text_ = std::move(text);
    pos_ = 1;
    line_ = 1;
}

void TFastScanner::LoadFromStream(std::string_view content) {
    text_.assign(content);
    text_.push_back('\0');
    pos_ = 1;
    line_ = 1;
}

void TFastScanner::SkipBlanks() {
    const size_t len = text_.size();
    while (pos_ < len) {
        const char c = At(pos_);
        if (c == ' ' || c == '\t') {
            ++pos_;
        } else if (c == '\r') {
            ++pos_;
            if (pos_ <= len && At(pos_) == '\n') ++pos_;
            ++line_;
        } else if (c == '/' && At(pos_ + 1) == '/') {
            while (pos_ <= len && At(pos_) != '\r') ++pos_;
        } else if (c == '/' && At(pos_ + 1) == '*') {
            pos_ += 2;
            while (pos_ <= len && !(At(pos_) == '*' && pos_ < len && At(pos_ + 1) == '/')) {
                if (At(pos_) == '\r') {
                    ++line_;
                    if (pos_ < len && At(pos_ + 1) == '\n') ++pos_;
                }
                ++pos_;
            }
            pos_ = std::min(pos_ + 2, len + 1);
        } else {
            return;
        }
    }
}

void SetScannerClass(ScannerClass cls) { gScannerClass.store(cls); }
ScannerClass GetScannerClass() { return gScannerClass.load(); }

std::unique_ptr<TScanner> CreateScanner() {
    if (GetScannerClass() == ScannerClass::Fast) return std::make_unique<TFastScanner>();
    return std::make_unique<TScanner>();
}

} // namespace velkor
