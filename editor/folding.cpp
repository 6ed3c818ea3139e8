#include "editor/folding.h"

#include "editor/highlighter.h"

#include <algorithm>
#include <string>
#include <vector>

namespace velkor {
namespace {

constexpr int kMaxDepth = 3000; // Scintilla's fold levels hold 4096 numbers, counted from 1024

enum class TWord { None, Begin, End, Object, Function, Forward };

bool IsWordChar(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

bool SameWord(std::string_view text, std::string_view lower) {
    if (text.size() != lower.size()) return false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = (text[i] >= 'A' && text[i] <= 'Z') ? static_cast<char>(text[i] - 'A' + 'a') : text[i];
        if (c != lower[i]) return false;
    }
    return true;
}

TWord Classify(std::string_view word) {
    if (word.size() < 3 || word.size() > 9) return TWord::None;
    if (SameWord(word, "begin")) return TWord::Begin;
    if (SameWord(word, "end")) return TWord::End;
    if (SameWord(word, "object") || SameWord(word, "objective")) return TWord::Object;
    if (SameWord(word, "function")) return TWord::Function;
    if (SameWord(word, "forward") || SameWord(word, "external")) return TWord::Forward;
    return TWord::None;
}

// Calls `token(start, length, word)` for every keyword of the block words and `brace(at, opens)` for every
// "{" and "}" of the code (not of comments and strings), and `lineBreak(at)` at every line break.
template <typename Token, typename Brace, typename Break>
void ScanBlockTokens(std::string_view text, std::string_view styles, Token token, Brace brace,
                     Break lineBreak) {
    const size_t n = std::min(text.size(), styles.size());
    size_t i = 0;
    while (i < n) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c == '\n' || (c == '\r' && (i + 1 >= n || text[i + 1] != '\n'))) {
            lineBreak(i);
            ++i;
            continue;
        }
        const char style = styles[i];
        if (style == hsKeyword && IsWordChar(c)) {
            size_t j = i + 1;
            while (j < n && styles[j] == hsKeyword && IsWordChar(static_cast<unsigned char>(text[j]))) ++j;
            const TWord word = Classify(text.substr(i, j - i));
            if (word != TWord::None) token(i, j - i, word);
            i = j;
            continue;
        }
        if (style == hsOperator && (c == '{' || c == '}')) brace(i, c == '{');
        ++i;
    }
}

} // namespace

int PackFoldState(TFoldState state) {
    return (std::clamp(state.Depth, 0, kMaxDepth) << 5) | (state.AwaitingBody ? 0x10 : 0);
}

TFoldState UnpackFoldState(int lineState) {
    return TFoldState{.Depth = (lineState >> 5) & 0xFFF, .AwaitingBody = (lineState & 0x10) != 0};
}

TFoldState FoldSourceText(std::string_view text, std::string_view styles, TFoldState state,
                          const std::function<void(long index, int startDepth, bool opens)>& line,
                          const std::function<void(long index, TFoldState state)>& lineEnd) {
    long index = 0;
    int startDepth = state.Depth;
    const auto open = [&] { state.Depth = std::min(state.Depth + 1, kMaxDepth); };
    const auto close = [&] { state.Depth = std::max(state.Depth - 1, 0); };
    ScanBlockTokens(
        text, styles,
        [&](size_t, size_t, TWord word) {
            switch (word) {
            case TWord::Begin:
                if (state.AwaitingBody)
                    state.AwaitingBody = false;
                else
                    open();
                break;
            case TWord::End: close(); break;
            case TWord::Object: open(); break;
            case TWord::Function:
                // A header without body followed by another header: the first one's fold is dropped.
                if (!state.AwaitingBody) open();
                state.AwaitingBody = true;
                break;
            case TWord::Forward:
                if (state.AwaitingBody) {
                    state.AwaitingBody = false;
                    close();
                }
                break;
            case TWord::None: break;
            }
        },
        [&](size_t, bool opens) { opens ? open() : close(); },
        [&](size_t) {
            line(index, startDepth, state.Depth > startDepth);
            lineEnd(index, state);
            ++index;
            startDepth = state.Depth;
        });
    const size_t last = text.empty() ? 0 : text.size() - 1;
    if (text.empty() || (text[last] != '\n' && text[last] != '\r'))
        line(index, startDepth, state.Depth > startDepth);
    return state;
}

std::optional<TBlockMatch> MatchBlockWord(std::string_view text, int lexState, size_t offset) {
    std::string styles(text.size(), hsDefault);
    StyleSourceText(text, lexState & kLexStateMask, styles.data(), [](long, int) {});
    struct TToken {
        TTextSpan Span;
        bool Opens;
    };
    std::vector<TToken> tokens;
    ScanBlockTokens(
        text, styles,
        [&](size_t start, size_t length, TWord word) {
            if (word == TWord::Begin || word == TWord::Object || word == TWord::End)
                tokens.push_back({{start, length}, word != TWord::End});
        },
        [](size_t, bool) {}, [](size_t) {});
    const auto at = std::find_if(tokens.begin(), tokens.end(), [offset](const TToken& t) {
        return offset >= t.Span.Start && offset <= t.Span.Start + t.Span.Length;
    });
    if (at == tokens.end()) return std::nullopt;
    int depth = 0;
    if (at->Opens) {
        for (auto it = at; it != tokens.end(); ++it) {
            depth += it->Opens ? 1 : -1;
            if (depth == 0) return TBlockMatch{at->Span, it->Span};
        }
    } else {
        for (auto it = std::make_reverse_iterator(at + 1); it != tokens.rend(); ++it) {
            depth += it->Opens ? -1 : 1;
            if (depth == 0) return TBlockMatch{at->Span, it->Span};
        }
    }
    return std::nullopt;
}

} // namespace velkor
