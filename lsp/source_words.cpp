#include "lsp/source_words.h"

#include "platform/strings.h"

namespace velkor::lsp {

bool IsWordChar(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

namespace {

bool IsWordStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

} // namespace

void ForEachWord(std::string_view text, const std::function<void(const TSourceWord&)>& each) {
    const std::size_t n = text.size();
    int line = 0;
    std::size_t lineStart = 0;
    std::size_t i = 0;
    auto newline = [&](std::size_t at) { // at: the break character
        if (text[at] == '\r' && at + 1 < n && text[at + 1] == '\n') ++at;
        ++line;
        lineStart = at + 1;
        return at + 1;
    };
    while (i < n) {
        const char c = text[i];
        if (c == '\r' || c == '\n') {
            i = newline(i);
        } else if (c == '/' && i + 1 < n && text[i + 1] == '/') {
            while (i < n && text[i] != '\r' && text[i] != '\n') ++i;
        } else if (c == '/' && i + 1 < n && text[i + 1] == '*') {
            i += 2;
            while (i < n && !(text[i] == '*' && i + 1 < n && text[i + 1] == '/')) {
                if (text[i] == '\r' || text[i] == '\n')
                    i = newline(i);
                else
                    ++i;
            }
            i = i < n ? i + 2 : n;
        } else if (c == '"') {
            ++i;
            while (i < n && text[i] != '"') {
                if (text[i] == '\r' || text[i] == '\n')
                    i = newline(i);
                else
                    ++i;
            }
            if (i < n) ++i;
        } else if (c == '#') {
            // A command's own words ("#STRINGS", "#SECTOR") are not names.
            ++i;
            while (i < n && (text[i] == ' ' || text[i] == '\t')) ++i;
            while (i < n && IsWordChar(text[i])) ++i;
        } else if ((c >= '0' && c <= '9') || c == '$' || c == '%') {
            ++i;
            while (i < n && IsWordChar(text[i])) ++i;
        } else if (IsWordStart(c)) {
            const std::size_t from = i;
            while (i < n && IsWordChar(text[i])) ++i;
            each({line, from - lineStart, text.substr(from, i - from)});
        } else {
            ++i;
        }
    }
}

TWordAt WordAt(std::string_view line, std::size_t column) {
    if (column > line.size()) column = line.size();
    std::size_t from = column, to = column;
    while (from > 0 && IsWordChar(line[from - 1])) --from;
    while (to < line.size() && IsWordChar(line[to])) ++to;
    if (from == to || !IsWordStart(line[from])) return {};
    return {from, line.substr(from, to - from)};
}

std::size_t FindWord(std::string_view line, std::string_view name) {
    if (name.empty()) return std::string_view::npos;
    for (std::size_t at = 0; at + name.size() <= line.size(); ++at) {
        if (at > 0 && IsWordChar(line[at - 1])) continue;
        if (at + name.size() < line.size() && IsWordChar(line[at + name.size()])) continue;
        if (SameText(line.substr(at, name.size()), name)) return at;
    }
    return std::string_view::npos;
}

} // namespace velkor::lsp
