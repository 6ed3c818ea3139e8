// TSourceHighlighter: syntax colouring of the scripting language, reading the text the way the scanner
// does (its keyword table, number and string forms, operator and delimiter characters) plus the statement
// words of the code generator. Comments and strings may span lines; the state at each line's end is kept
// as the line's state, so only the lines QScintilla asks for are styled. The same pass sets the fold levels
// of those lines.
#pragma once

#include <Qsci/qscilexercustom.h>

#include <QFont>

#include <cstddef>
#include <functional>
#include <string_view>

namespace velkor {

struct TEditorTheme;

// Style numbers of the highlighter.
enum TSourceStyle : char {
    hsDefault = 0,    // blanks, identifiers and anything else
    hsComment = 1,    // "//" and "/* */" comments
    hsKeyword = 2,    // scanner keywords and statement words
    hsNumber = 3,     // 12, 1.5, 2.5E+3, $1F, %1010
    hsString = 4,     // "text", quotes included
    hsDirective = 5,  // "#" and the word after it
    hsOperator = 6,   // operator and delimiter characters
    hsStyleCount = 7, // number of styles
};

// The state a line ends in: what the next line starts inside of.
enum TLineState : int {
    lsCode = 0,         // plain code
    lsBlockComment = 1, // an unclosed "/*"
    lsString = 2,       // an unclosed string
};

// True for a scanner keyword or statement word, compared without regard to case.
bool IsSourceKeyword(std::string_view word);

// Styles `text` (starting at a line start in `state`) into `styles` (one byte per text byte). Calls
// `lineEnd(index, state)` for every line that ends inside the text, in order. Returns the state at the end.
int StyleSourceText(std::string_view text, int state, char* styles,
                    const std::function<void(long line, int state)>& lineEnd);

class TSourceHighlighter : public QsciLexerCustom {
    Q_OBJECT

public:
    explicit TSourceHighlighter(QObject* parent = nullptr);

    const char* language() const override { return "Velkor"; }
    QString description(int style) const override;
    void styleText(int start, int end) override;
    QColor defaultColor(int style) const override;
    QColor defaultPaper(int style) const override;
    QFont defaultFont(int style) const override;
    const char* wordCharacters() const override;
    // Brackets match only where they are code, not inside comments and strings.
    int braceStyle() const override { return hsOperator; }

    // The font every style is drawn in (keywords and directives in its bold face, comments italic).
    void SetEditorFont(const QFont& font);
    // The colours of every style, from the theme's table.
    void SetTheme(const TEditorTheme& theme);

private:
    QFont editorFont_;          // base font of all styles
    const TEditorTheme* theme_; // colours of the styles
};

} // namespace velkor
