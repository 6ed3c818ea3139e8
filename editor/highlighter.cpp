#include "editor/highlighter.h"

#include "editor/editor_theme.h"
#include "editor/folding.h"

#include "scanner/scanner.h"

#include <Qsci/qsciscintilla.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace velkor {
namespace {

constexpr size_t kLongestKeyword = 16; // no keyword is longer; longer words need no lookup

bool IsLetter(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsDigit(unsigned char c) {
    return c >= '0' && c <= '9';
}
bool IsIdentChar(unsigned char c) {
    return IsLetter(c) || IsDigit(c) || c == '_';
}
bool IsHexOrNumberChar(unsigned char c) {
    return IsDigit(c) || c == '.' || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}
bool IsOperatorChar(unsigned char c) {
    switch (c) {
    case '!':
    case '&':
    case '*':
    case '+':
    case '-':
    case '/':
    case ':':
    case '<':
    case '=':
    case '>':
    case '@':
    case '|': return true;
    default: return false;
    }
}
bool IsDelimiterChar(unsigned char c) {
    switch (c) {
    case '(':
    case ')':
    case ',':
    case '.':
    case ';':
    case '[':
    case ']':
    case '{':
    case '}': return true;
    default: return false;
    }
}

} // namespace

bool IsSourceKeyword(std::string_view word) {
    if (word.empty() || word.size() > kLongestKeyword) return false;
    std::array<char, kLongestKeyword> lower{};
    for (size_t i = 0; i < word.size(); ++i) {
        char c = word[i];
        lower[i] = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    }
    const std::string_view w(lower.data(), word.size());
    for (const auto& k : ScannerKeywords())
        if (k.word == w) return true;
    const auto statementWords = StatementWords();
    return std::find(statementWords.begin(), statementWords.end(), w) != statementWords.end();
}

int StyleSourceText(std::string_view text, int state, char* styles,
                    const std::function<void(long line, int state)>& lineEnd) {
    const size_t n = text.size();
    auto at = [&](size_t i) -> unsigned char { return i < n ? static_cast<unsigned char>(text[i]) : 0; };
    long line = 0;
    size_t i = 0;
    // Styles bytes up to `to` and reports every line end met on the way.
    auto fill = [&](size_t to, char style) {
        for (; i < to; ++i) {
            styles[i] = style;
            const unsigned char c = at(i);
            if (c == '\n' || (c == '\r' && at(i + 1) != '\n')) {
                // The state after this break: still inside a comment or string when it runs on.
                lineEnd(line++, state);
            }
        }
    };
    while (i < n) {
        if (state == lsBlockComment) {
            size_t close = text.find("*/", i);
            size_t to = close == std::string_view::npos ? n : close + 2;
            fill(close == std::string_view::npos ? n : close, hsComment);
            state = lsCode;
            if (close == std::string_view::npos) {
                state = lsBlockComment;
                break;
            }
            fill(to, hsComment);
            continue;
        }
        if (state == lsString) {
            size_t close = text.find('"', i);
            if (close == std::string_view::npos) {
                fill(n, hsString);
                break;
            }
            fill(close, hsString);
            state = lsCode;
            fill(close + 1, hsString);
            continue;
        }
        const unsigned char c = at(i);
        size_t j = i + 1;
        if (c == '"') {
            state = lsString;
            fill(j, hsString);
        } else if (c == '/' && at(j) == '/') {
            while (j < n && at(j) != '\r' && at(j) != '\n') ++j;
            fill(j, hsComment);
        } else if (c == '/' && at(j) == '*') {
            state = lsBlockComment;
            fill(j + 1, hsComment);
        } else if (IsDigit(c) || c == '$' || c == '%') {
            while (IsHexOrNumberChar(at(j))) ++j;
            if ((at(j) == '+' || at(j) == '-') && (at(j - 1) == 'E' || at(j - 1) == 'e')) {
                ++j;
                while (IsDigit(at(j))) ++j;
            }
            fill(j, hsNumber);
        } else if (IsLetter(c) || c == '_') {
            while (IsIdentChar(at(j))) ++j;
            fill(j, IsSourceKeyword(text.substr(i, j - i)) ? hsKeyword : hsDefault);
        } else if (c == '#') {
            // The scanner skips blanks between the mark and its word.
            size_t k = j;
            while (at(k) == ' ' || at(k) == '\t') ++k;
            if (IsIdentChar(at(k))) {
                j = k;
                while (IsIdentChar(at(j))) ++j;
            }
            fill(j, hsDirective);
        } else if (IsOperatorChar(c)) {
            // An operator run ends where a comment starts.
            while (IsOperatorChar(at(j)) && !(at(j) == '/' && (at(j + 1) == '/' || at(j + 1) == '*'))) ++j;
            fill(j, hsOperator);
        } else if (IsDelimiterChar(c)) {
            fill(j, hsOperator);
        } else {
            fill(j, hsDefault);
        }
    }
    return state;
}

TSourceHighlighter::TSourceHighlighter(QObject* parent)
    : QsciLexerCustom(parent), theme_(&LightEditorTheme()) {
    editorFont_ = QFont(QStringLiteral("Courier New"), 10);
}

QString TSourceHighlighter::description(int style) const {
    switch (style) {
    case hsDefault: return tr("Default");
    case hsComment: return tr("Comment");
    case hsKeyword: return tr("Keyword");
    case hsNumber: return tr("Number");
    case hsString: return tr("String");
    case hsDirective: return tr("Directive");
    case hsOperator: return tr("Operator");
    default: return {};
    }
}

QColor TSourceHighlighter::defaultColor(int style) const {
    return theme_->Styles[static_cast<size_t>(style >= 0 && style < hsStyleCount ? style : hsDefault)];
}

QColor TSourceHighlighter::defaultPaper(int) const {
    return theme_->Paper;
}

QFont TSourceHighlighter::defaultFont(int style) const {
    QFont font = editorFont_;
    if (style == hsKeyword || style == hsDirective) font.setBold(true);
    if (style == hsComment) font.setItalic(true);
    return font;
}

const char* TSourceHighlighter::wordCharacters() const {
    return "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
}

void TSourceHighlighter::SetEditorFont(const QFont& font) {
    editorFont_ = font;
    setDefaultFont(font);
    for (int style = 0; style < hsStyleCount; ++style) setFont(defaultFont(style), style);
}

void TSourceHighlighter::SetTheme(const TEditorTheme& theme) {
    theme_ = &theme;
    setDefaultColor(defaultColor(hsDefault));
    setDefaultPaper(theme.Paper);
    for (int style = 0; style < hsStyleCount; ++style) {
        setColor(defaultColor(style), style);
        setPaper(theme.Paper, style);
    }
}

void TSourceHighlighter::styleText(int start, int end) {
    QsciScintilla* ed = editor();
    if (!ed || end <= start) return;
    const long firstLine =
        ed->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, static_cast<long>(start));
    const int previous = firstLine > 0
                             ? static_cast<int>(ed->SendScintilla(QsciScintillaBase::SCI_GETLINESTATE,
                                                                  static_cast<long>(firstLine - 1)))
                             : 0;
    const long length = end - start;
    // The range pointer moves Scintilla's gap only when it lies inside the range: no copy of the text.
    const auto* bytes = reinterpret_cast<const char*>(
        ed->SendScintilla(QsciScintillaBase::SCI_GETRANGEPOINTER, static_cast<unsigned long>(start), length));
    if (!bytes) return;
    const std::string_view text(bytes, static_cast<size_t>(length));
    std::string styles(static_cast<size_t>(length), hsDefault);
    std::vector<int> lexStates;
    StyleSourceText(text, previous & kLexStateMask, styles.data(),
                    [&](long, int lineState) { lexStates.push_back(lineState); });
    FoldSourceText(
        text, styles, UnpackFoldState(previous),
        [&](long line, int startDepth, bool opens) {
            const long level = (QsciScintillaBase::SC_FOLDLEVELBASE + startDepth) |
                               (opens ? QsciScintillaBase::SC_FOLDLEVELHEADERFLAG : 0);
            const auto at = static_cast<unsigned long>(firstLine + line);
            if (ed->SendScintilla(QsciScintillaBase::SCI_GETFOLDLEVEL, at) != level)
                ed->SendScintilla(QsciScintillaBase::SCI_SETFOLDLEVEL, at, level);
        },
        [&](long line, TFoldState foldState) {
            const int lexState = static_cast<size_t>(line) < lexStates.size() ? lexStates[line] : lsCode;
            ed->SendScintilla(QsciScintillaBase::SCI_SETLINESTATE,
                              static_cast<unsigned long>(firstLine + line),
                              static_cast<long>(lexState | PackFoldState(foldState)));
        });
    ed->SendScintilla(QsciScintillaBase::SCI_STARTSTYLING, static_cast<long>(start));
    ed->SendScintilla(QsciScintillaBase::SCI_SETSTYLINGEX, static_cast<unsigned long>(length), styles.data());
}

} // namespace velkor
