// TSyntaxEdit: the source editor control of a page. Every key goes through its key strokes; a bound key
// runs its editor command, unbound printable keys type as usual. It adds a gutter with line numbers and
// bookmarks 0-9, an error-line mark, search and replace with the find dialog's options, and the
// language's highlighter.
#pragma once

#include "editor/editor_commands.h"
#include "editor/editor_theme.h"
#include "editor/search_options.h"

#include <Qsci/qsciscintilla.h>

#include <array>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

class QRegularExpression;

namespace velkor {

class TSourceHighlighter;

class TSyntaxEdit : public QsciScintilla {
    Q_OBJECT

public:
    // Asked before each replacement when the options hold ssoPrompt; the match is selected and visible.
    using TReplacePrompt = std::function<TReplaceAnswer(const QString& found, int line, int column)>;

    // How the file behind the text was (or will be) encoded on disk.
    enum class TFileEncoding {
        Utf8,   // UTF-8, the default for new pages
        Latin1, // bytes that were not valid UTF-8, kept one character per byte
    };

    // Margin numbers of the gutter and marker numbers.
    static constexpr int kLineNumberMargin = 0; // line numbers
    static constexpr int kBookmarkMargin = 1;   // bookmark symbols 0-9
    static constexpr int kErrorMarker = 10;     // full-line background of the error line
    // The fold gutter, and the indicator on a begin, object or objective and its end (the page keeps 20
    // and 21 for its problem underlines).
    static constexpr int kFoldMargin = 2;
    static constexpr int kBlockMatchIndicator = 24;

    explicit TSyntaxEdit(QWidget* parent = nullptr);
    ~TSyntaxEdit() override;

    TKeyStrokes& KeyStrokes() { return keyStrokes_; }
    const TKeyStrokes& KeyStrokes() const { return keyStrokes_; }
    TSourceHighlighter* Highlighter() const { return highlighter_; }

    // Runs one editor command as if its key had been pressed; `text` is what ecChar inserts.
    void ExecuteCommand(TEditorCommand command, const QString& text = {});
    // Moves the caret (ecGoto) or extends the selection (ecSelectGoto) to a line and column.
    void GotoPosition(int line, int column, bool select = false);

    // Text access. Lines are numbered from 0; line texts have no line break.
    QString Text() const { return text(); }
    // Every character of the document, NUL characters included (QScintilla's text() ends at the first).
    QString FullText() const;
    void SetText(const QString& text);
    QStringList Lines() const;
    QString LineText(int line) const;
    int LineCount() const { return lines(); }
    // The text as bytes in the file's encoding, line breaks as they are in the editor.
    std::string EncodedText() const;
    TFileEncoding FileEncoding() const { return encoding_; }

    // Loads a file (UTF-8, or Latin-1 when not valid UTF-8), adopts its line-break style, clears undo and
    // the modified flag. Throws EInOutError when it cannot be read.
    void LoadFromFile(const std::filesystem::path& path);
    // Writes the text in the file's encoding (UTF-8 when a character does not fit Latin-1) and clears the
    // modified flag. Throws EInOutError.
    void SaveToFile(const std::filesystem::path& path);

    bool Modified() const { return isModified(); }
    void SetModified(bool modified) { setModified(modified); }

    // Caret position: line from 0, column as shown (tabs expanded), both from 0.
    int CaretLine() const;
    int CaretColumn() const;
    void SetCaret(int line, int column);
    // As QsciScintilla's, and Up and Down then keep this column.
    void setCursorPosition(int line, int index) override;
    // The identifier (letters, digits, "_") under or just before the caret, or empty.
    QString WordAtCursor() const;

    // Bookmarks 0-9: the line a bookmark is on (it moves with edits), or -1.
    int BookmarkLine(int number) const;
    void SetBookmark(int number, int line, int column);
    void ClearBookmark(int number);
    void ToggleBookmark(int number);
    bool GotoBookmark(int number);

    // The error line: one line at a time with a full-line background; -1 when none.
    void SetErrorLine(int line);
    void ClearErrorLine();
    int ErrorLine() const;

    // Finds (and with ssoReplace replaces) `findText` as the options say; true when something was found.
    // Regular expressions are QRegularExpression (Perl syntax); "\0" to "\9" in the replacement insert
    // the groups. ssoIgnoreNonSpacing and ssoSpaceCompress are accepted and ignored.
    bool Search(const QString& findText, const QString& replaceText, unsigned options);
    // The prompt used for ssoPrompt; by default a message box with Yes, No, Cancel and Yes to All.
    void SetReplacePrompt(TReplacePrompt prompt) { replacePrompt_ = std::move(prompt); }
    // Why the last Search found nothing when its regular expression was invalid; empty otherwise.
    QString LastSearchError() const { return lastSearchError_; }

    // Colours: the desktop's light or dark palette (System) or a forced theme. System follows the desktop
    // when its palette changes.
    void SetThemeChoice(TThemeChoice choice);
    TThemeChoice ThemeChoice() const { return themeChoice_; }
    const TEditorTheme& Theme() const { return *theme_; }
    // Takes the theme the desktop's palette now gives, when the choice is System.
    void FollowDesktopPalette();

    // The first key of a two-key sequence that waits for its second key, or an empty shortcut.
    TShortCut PendingShortCut() const { return pending_; }

signals:
    // ecGoto / ecSelectGoto without a target: the page asks for a line.
    void GotoRequested(bool select);
    // A command from ecUserFirst on was run.
    void UserCommand(int command);

protected:
    bool event(QEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;
    // Input methods ask for the text around the caret after every keystroke and caret move. The base
    // class answers with the caret's paragraph, which in a unit without blank lines is the whole text;
    // here it is the caret's line, so a keystroke costs the same in a long unit as in a short one.
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

private:
    struct Bookmark {
        int handle = -1; // Scintilla marker handle, -1 when the bookmark is not set
        int column = 0;  // column the caret had when the bookmark was set
    };
    struct SearchScope;
    struct TByteMatch {
        long start;      // byte offset of a match
        long end;        // byte offset behind it
        QByteArray utf8; // the replacement's bytes
    };

    void SetUpAppearance();
    void SetUpMargins();
    // Current line, bracket and block matching, folding and indentation guides (syntax_edit_reading.cpp).
    void SetUpReadingAids();
    void ApplyTheme(const TEditorTheme& theme);
    void UpdateBlockMatch();
    void UpdateCaretLine();
    void UpdateLineNumberWidth();
    bool RunKeyStroke(int index);
    void Move(int message, int selectMessage, bool select);
    void MoveCaretTo(long position, bool select);
    void PageHorizontally(bool right, bool select);
    void PageVertically(bool bottom, bool select);
    void BlockIndent(bool indentLines);
    void InsertLineBelowCaret();
    QString EolText() const;
    SearchScope MakeScope(unsigned options) const;
    void SelectUnits(const QString& text, qsizetype start, qsizetype end);
    TReplaceAnswer AskReplace();
    bool SearchOnce(const QString& findText, const QString& replaceText, unsigned options);
    bool ReplaceAll(const QString& findText, const QString& replaceText, unsigned options);
    bool ReplaceMatches(const QRegularExpression& re, const SearchScope& scope, const QString& replaceText,
                        unsigned options);
    long ReplaceRange(std::span<const TByteMatch> matches, long delta);

    TKeyStrokes keyStrokes_;                       // the bindings every key press is looked up in
    TShortCut pending_;                            // first key of a sequence waiting for its second key
    std::array<Bookmark, 10> bookmarks_{};         // bookmarks 0-9
    TSourceHighlighter* highlighter_;              // the language lexer, owned as a child
    TReplacePrompt replacePrompt_;                 // asked before replacements; empty: a message box
    QString lastSearchError_;                      // error text of an invalid regular expression
    TFileEncoding encoding_ = TFileEncoding::Utf8; // encoding used to save and for EncodedText
    bool byteOrderMark_ = false; // the UTF-8 file began with a byte-order mark, kept on save
    int lineNumberDigits_ = 0;   // digits the line-number margin is sized for
    TThemeChoice themeChoice_ = TThemeChoice::System;
    const TEditorTheme* theme_ = &LightEditorTheme(); // the colours in use
    bool blockMatchShown_ = false;                    // the block-match indicator is on some words
};

} // namespace velkor
