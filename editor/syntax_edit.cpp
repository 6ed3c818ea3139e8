#include "editor/syntax_edit.h"

#include "editor/highlighter.h"
#include "editor/key_event.h"
#include "platform/exception.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QFocusEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace velkor {
namespace {

constexpr int kBookmarkMask = (1 << 10) - 1; // marker bits 0-9

// "Courier New" when the system has it as a fixed-pitch face, else the first fixed-pitch face found among
// the system's and a few common ones (font substitution may map "Courier New" to a face Qt does not
// report as fixed pitch).
QFont EditorFont() {
    QFont font(QStringLiteral("Courier New"), 10);
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    if (QFontInfo(font).fixedPitch()) return font;
    QFont system = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    system.setPointSize(10);
    if (QFontInfo(system).fixedPitch()) return system;
    for (const char* family :
         {"DejaVu Sans Mono", "Liberation Mono", "Noto Sans Mono", "Noto Mono", "monospace"}) {
        QFont candidate(QString::fromLatin1(family), 10);
        candidate.setStyleHint(QFont::TypeWriter);
        if (QFontInfo(candidate).fixedPitch()) return candidate;
    }
    return system;
}

// The keys that type text rather than command the editor.
bool TypesText(const QKeyEvent& e) {
    const QString text = e.text();
    if (text.isEmpty() || !text.at(0).isPrint()) return false;
    // Ctrl alone never types; Ctrl+Alt is AltGr on Windows and does.
    const Qt::KeyboardModifiers mods = e.modifiers();
    if ((mods & Qt::ControlModifier) && !(mods & Qt::AltModifier)) return false;
    return true;
}

// The editor component's own accessible text reports every caret move and every edit to assistive
// tools as a character offset that it counts from the start of the text, so each keystroke costs time
// in proportion to the file. Without an assistive tool running nobody reads those reports: the editor is
// then described as a plain editable widget.
QAccessibleInterface* PlainEditorAccessible(const QString& className, QObject* object) {
    static const QString ownClass = QString::fromLatin1(TSyntaxEdit::staticMetaObject.className());
    if (className != ownClass || QAccessible::isActive() || !object || !object->isWidgetType())
        return nullptr;
    return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::EditableText);
}

} // namespace

TSyntaxEdit::TSyntaxEdit(QWidget* parent)
    : QsciScintilla(parent), highlighter_(new TSourceHighlighter(this)) {
    static const bool accessibleInstalled = [] {
        QAccessible::installFactory(PlainEditorAccessible);
        return true;
    }();
    (void)accessibleInstalled;
    keyStrokes_.ResetDefaults();
    setUtf8(true);
    // Every key is looked up in the key strokes first; Scintilla's own key map would act behind their back.
    SendScintilla(SCI_CLEARALLCMDKEYS);
    SendScintilla(SCI_SETWORDCHARS, 0UL, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_");
    setEolMode(EolWindows);
    setAutoIndent(true);
    setIndentationsUseTabs(false);
    setIndentationWidth(2);
    setTabWidth(8);
    SetUpAppearance();
    SetUpMargins();
    SetUpReadingAids();
    connect(this, &QsciScintilla::linesChanged, this, &TSyntaxEdit::UpdateLineNumberWidth);
}

TSyntaxEdit::~TSyntaxEdit() = default;

void TSyntaxEdit::SetUpAppearance() {
    const QFont font = EditorFont();
    setFont(font);
    highlighter_->SetEditorFont(font);
    setLexer(highlighter_);
    setMarginsFont(font);
}

void TSyntaxEdit::SetUpMargins() {
    setMarginType(kLineNumberMargin, NumberMargin);
    setMarginLineNumbers(kLineNumberMargin, true);
    UpdateLineNumberWidth();
    setMarginType(kBookmarkMargin, SymbolMargin);
    setMarginWidth(kBookmarkMargin, 18);
    setMarginMarkerMask(kBookmarkMargin, kBookmarkMask);
    setMarginMarkerMask(kLineNumberMargin, 0);
    setMarginSensitivity(kBookmarkMargin, false);
    markerDefine(Background, kErrorMarker);
}

void TSyntaxEdit::UpdateLineNumberWidth() {
    int digits = 1;
    for (int n = std::max(1, lines()); n >= 10; n /= 10) ++digits;
    digits = std::max(digits, 3);
    if (digits == lineNumberDigits_) return;
    lineNumberDigits_ = digits;
    setMarginWidth(kLineNumberMargin, QString(digits + 1, QLatin1Char('9')));
}

// ---- keys -------------------------------------------------------------------------------------------------

bool TSyntaxEdit::event(QEvent* e) {
    // Window shortcuts (the main menu) win over editor bindings, so Ctrl+N and Ctrl+T run the menu's
    // commands; only typing, and the second key of a started sequence, is claimed here.
    if (e->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(e);
        if (!pending_.IsEmpty() || (TypesText(*key) && !(key->modifiers() & Qt::AltModifier))) {
            key->accept();
            return true;
        }
        key->ignore();
        return QWidget::event(e);
    }
    return QsciScintilla::event(e);
}

void TSyntaxEdit::keyPressEvent(QKeyEvent* e) {
    if (IsModifierKey(e->key())) {
        e->ignore();
        return;
    }
    const TShortCut key = ShortCutFromKeyEvent(*e);
    if (!pending_.IsEmpty()) {
        const TShortCut first = pending_;
        pending_ = {};
        int index = keyStrokes_.FindShortcut(first, key);
        if (index >= 0) {
            RunKeyStroke(index);
            e->accept();
            return;
        }
        // Not a sequence after all: the first key does what it does alone, this key starts afresh.
        int single = keyStrokes_.FindShortcut(first);
        if (single >= 0) RunKeyStroke(single);
    }
    if (keyStrokes_.StartsSequence(key)) {
        pending_ = key;
        e->accept();
        return;
    }
    int index = keyStrokes_.FindShortcut(key);
    if (index >= 0) {
        RunKeyStroke(index);
        e->accept();
        return;
    }
    if (key.Key == Qt::Key_Tab && (key.Shift & (ssCtrl | ssAlt)) == 0) {
        SendScintilla((key.Shift & ssShift) ? SCI_BACKTAB : SCI_TAB);
        e->accept();
        return;
    }
    if (TypesText(*e)) {
        QsciScintilla::keyPressEvent(e);
        return;
    }
    e->ignore();
}

void TSyntaxEdit::focusOutEvent(QFocusEvent* e) {
    pending_ = {};
    QsciScintilla::focusOutEvent(e);
}

QVariant TSyntaxEdit::inputMethodQuery(Qt::InputMethodQuery query) const {
    switch (query) {
    case Qt::ImSurroundingText:
    case Qt::ImCursorPosition:
    case Qt::ImAnchorPosition:
    case Qt::ImTextBeforeCursor:
    case Qt::ImTextAfterCursor: break;
    default: return QsciScintilla::inputMethodQuery(query);
    }
    const long caret = SendScintilla(SCI_GETCURRENTPOS);
    const long line = SendScintilla(SCI_LINEFROMPOSITION, caret);
    const QString lineText = LineText(static_cast<int>(line));
    // Positions count UTF-16 units of the line, as the text is handed out; Scintilla's count bytes.
    const auto column = [&](long position) {
        const long start = SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(line));
        const long end = SendScintilla(SCI_GETLINEENDPOSITION, static_cast<unsigned long>(line));
        return static_cast<int>(SendScintilla(SCI_COUNTCODEUNITS, static_cast<unsigned long>(start),
                                              std::clamp(position, start, end)));
    };
    const int at = column(caret);
    switch (query) {
    case Qt::ImSurroundingText: return lineText;
    case Qt::ImCursorPosition: return at;
    case Qt::ImAnchorPosition: {
        const long anchor = SendScintilla(SCI_GETANCHOR);
        return SendScintilla(SCI_LINEFROMPOSITION, anchor) == line ? column(anchor) : at;
    }
    case Qt::ImTextBeforeCursor: return lineText.left(at);
    default: return lineText.mid(at);
    }
}

bool TSyntaxEdit::RunKeyStroke(int index) {
    ExecuteCommand(keyStrokes_[index].Command);
    return true;
}

// ---- commands ---------------------------------------------------------------------------------------------

void TSyntaxEdit::Move(int message, int selectMessage, bool select) {
    SendScintilla(static_cast<unsigned>(select ? selectMessage : message));
}

void TSyntaxEdit::MoveCaretTo(long position, bool select) {
    if (select) {
        SendScintilla(SCI_SETCURRENTPOS, position);
    } else {
        SendScintilla(SCI_GOTOPOS, position);
    }
    SendScintilla(SCI_SCROLLCARET);
    SendScintilla(SCI_CHOOSECARETX);
}

void TSyntaxEdit::ExecuteCommand(TEditorCommand command, const QString& text) {
    const bool select = (command > ecSelection && command <= ecGoto + ecSelection);
    const TEditorCommand movement = select ? command - ecSelection : command;
    switch (movement) {
    case ecLeft: return Move(SCI_CHARLEFT, SCI_CHARLEFTEXTEND, select);
    case ecRight: return Move(SCI_CHARRIGHT, SCI_CHARRIGHTEXTEND, select);
    case ecUp: return Move(SCI_LINEUP, SCI_LINEUPEXTEND, select);
    case ecDown: return Move(SCI_LINEDOWN, SCI_LINEDOWNEXTEND, select);
    case ecWordLeft: return Move(SCI_WORDLEFT, SCI_WORDLEFTEXTEND, select);
    case ecWordRight: return Move(SCI_WORDRIGHT, SCI_WORDRIGHTEXTEND, select);
    case ecLineStart: return Move(SCI_HOME, SCI_HOMEEXTEND, select);
    case ecLineEnd: return Move(SCI_LINEEND, SCI_LINEENDEXTEND, select);
    case ecPageUp: return Move(SCI_PAGEUP, SCI_PAGEUPEXTEND, select);
    case ecPageDown: return Move(SCI_PAGEDOWN, SCI_PAGEDOWNEXTEND, select);
    case ecPageLeft: return PageHorizontally(false, select);
    case ecPageRight: return PageHorizontally(true, select);
    case ecPageTop: return PageVertically(false, select);
    case ecPageBottom: return PageVertically(true, select);
    case ecEditorTop: return Move(SCI_DOCUMENTSTART, SCI_DOCUMENTSTARTEXTEND, select);
    case ecEditorBottom: return Move(SCI_DOCUMENTEND, SCI_DOCUMENTENDEXTEND, select);
    case ecGoto: emit GotoRequested(select); return;
    default: break;
    }
    if (command >= ecGotoMarker0 && command <= ecGotoMarker9) {
        GotoBookmark(command - ecGotoMarker0);
        return;
    }
    if (command >= ecToggleMarker0 && command <= ecToggleMarker9) {
        ToggleBookmark(command - ecToggleMarker0);
        return;
    }
    if (command >= ecUserFirst) {
        emit UserCommand(command);
        return;
    }
    switch (command) {
    case ecSelectAll: selectAll(true); break;
    case ecDeleteLastChar: SendScintilla(SCI_DELETEBACK); break;
    case ecDeleteChar: SendScintilla(SCI_CLEAR); break;
    case ecDeleteWord: SendScintilla(SCI_DELWORDRIGHT); break;
    case ecDeleteLastWord: SendScintilla(SCI_DELWORDLEFT); break;
    case ecDeleteBOL: SendScintilla(SCI_DELLINELEFT); break;
    case ecDeleteEOL: SendScintilla(SCI_DELLINERIGHT); break;
    case ecDeleteLine: SendScintilla(SCI_LINEDELETE); break;
    case ecClearAll: SendScintilla(SCI_CLEARALL); break;
    case ecLineBreak: SendScintilla(SCI_NEWLINE); break;
    case ecInsertLine: InsertLineBelowCaret(); break;
    case ecChar:
        if (!text.isEmpty()) replaceSelectedText(text);
        break;
    case ecUndo: undo(); break;
    case ecRedo: redo(); break;
    case ecCut: cut(); break;
    case ecCopy: copy(); break;
    case ecPaste: paste(); break;
    case ecScrollUp: SendScintilla(SCI_LINESCROLLUP); break;
    case ecScrollDown: SendScintilla(SCI_LINESCROLLDOWN); break;
    case ecScrollLeft: SendScintilla(SCI_LINESCROLL, -1L, 0L); break;
    case ecScrollRight: SendScintilla(SCI_LINESCROLL, 1UL, 0L); break;
    case ecInsertMode: setOverwriteMode(false); break;
    case ecOverwriteMode: setOverwriteMode(true); break;
    case ecToggleMode: setOverwriteMode(!overwriteMode()); break;
    case ecBlockIndent: BlockIndent(true); break;
    case ecBlockUnindent: BlockIndent(false); break;
    case ecDelete:
        if (hasSelectedText()) removeSelectedText();
        break;
    default: break;
    }
}

void TSyntaxEdit::GotoPosition(int line, int column, bool select) {
    line = std::clamp(line, 0, std::max(0, lines() - 1));
    long pos = SendScintilla(SCI_FINDCOLUMN, static_cast<unsigned long>(line),
                             static_cast<long>(std::max(0, column)));
    MoveCaretTo(pos, select);
}

// Moves the caret one screen width sideways and scrolls along with it.
void TSyntaxEdit::PageHorizontally(bool right, bool select) {
    const long charWidth =
        std::max(1L, SendScintilla(SCI_TEXTWIDTH, static_cast<uintptr_t>(STYLE_DEFAULT), "M"));
    int marginWidth = 0;
    for (int m = 0; m < 5; ++m) marginWidth += this->marginWidth(m);
    const long columns = std::max(1L, (viewport()->width() - marginWidth) / charWidth);
    const long pos = SendScintilla(SCI_GETCURRENTPOS);
    const long line = SendScintilla(SCI_LINEFROMPOSITION, pos);
    const long column = SendScintilla(SCI_GETCOLUMN, pos);
    const long target = right ? column + columns : std::max(0L, column - columns);
    const long xOffset = SendScintilla(SCI_GETXOFFSET);
    const long newOffset =
        right ? xOffset + columns * charWidth : std::max(0L, xOffset - columns * charWidth);
    SendScintilla(SCI_SETXOFFSET, newOffset);
    MoveCaretTo(SendScintilla(SCI_FINDCOLUMN, static_cast<unsigned long>(line), target), select);
}

// Puts the caret on the first or last line shown, keeping its column.
void TSyntaxEdit::PageVertically(bool bottom, bool select) {
    const long pos = SendScintilla(SCI_GETCURRENTPOS);
    const long column = SendScintilla(SCI_GETCOLUMN, pos);
    long visible = SendScintilla(SCI_GETFIRSTVISIBLELINE);
    if (bottom) visible += std::max(1L, SendScintilla(SCI_LINESONSCREEN)) - 1;
    long line = SendScintilla(SCI_DOCLINEFROMVISIBLE, visible);
    line = std::clamp(line, 0L, static_cast<long>(std::max(0, lines() - 1)));
    MoveCaretTo(SendScintilla(SCI_FINDCOLUMN, static_cast<unsigned long>(line), column), select);
}

// Indents or unindents every line the selection touches (the caret's line without one), as one undo step.
void TSyntaxEdit::BlockIndent(bool indentLines) {
    int lineFrom = 0, indexFrom = 0, lineTo = 0, indexTo = 0;
    if (hasSelectedText()) {
        getSelection(&lineFrom, &indexFrom, &lineTo, &indexTo);
        if (lineTo > lineFrom && indexTo == 0) --lineTo;
    } else {
        getCursorPosition(&lineFrom, &indexFrom);
        lineTo = lineFrom;
    }
    beginUndoAction();
    for (int line = lineFrom; line <= lineTo; ++line) {
        if (indentLines) {
            indent(line);
        } else {
            unindent(line);
        }
    }
    endUndoAction();
}

// Breaks the line at the caret but leaves the caret where it was.
void TSyntaxEdit::InsertLineBelowCaret() {
    if (hasSelectedText()) removeSelectedText();
    const long pos = SendScintilla(SCI_GETCURRENTPOS);
    const QByteArray eol = EolText().toLatin1();
    SendScintilla(SCI_INSERTTEXT, static_cast<uintptr_t>(pos), eol.constData());
    SendScintilla(SCI_GOTOPOS, pos);
}

QString TSyntaxEdit::EolText() const {
    switch (eolMode()) {
    case EolUnix: return QStringLiteral("\n");
    case EolMac: return QStringLiteral("\r");
    default: return QStringLiteral("\r\n");
    }
}

// ---- text -------------------------------------------------------------------------------------------------

void TSyntaxEdit::SetText(const QString& newText) {
    setText(newText);
}

QStringList TSyntaxEdit::Lines() const {
    const QString all = text();
    QStringList out;
    out.reserve(lines());
    qsizetype start = 0;
    for (qsizetype i = 0; i < all.size(); ++i) {
        const QChar c = all.at(i);
        if (c != QLatin1Char('\r') && c != QLatin1Char('\n')) continue;
        out.append(all.mid(start, i - start));
        if (c == QLatin1Char('\r') && i + 1 < all.size() && all.at(i + 1) == QLatin1Char('\n')) ++i;
        start = i + 1;
    }
    out.append(all.mid(start));
    return out;
}

QString TSyntaxEdit::LineText(int line) const {
    QString t = text(line);
    while (t.endsWith(QLatin1Char('\n')) || t.endsWith(QLatin1Char('\r'))) t.chop(1);
    return t;
}

QString TSyntaxEdit::FullText() const {
    const auto length = static_cast<qsizetype>(SendScintilla(SCI_GETLENGTH));
    const auto* bytes = static_cast<const char*>(SendScintillaPtrResult(SCI_GETCHARACTERPOINTER));
    if (!bytes || length == 0) return {};
    return QString::fromUtf8(bytes, length);
}

std::string TSyntaxEdit::EncodedText() const {
    const QString all = FullText();
    if (encoding_ == TFileEncoding::Latin1) {
        bool fits = std::all_of(all.begin(), all.end(), [](QChar c) { return c.unicode() < 256; });
        if (fits) return all.toLatin1().toStdString();
    }
    const QByteArray utf8 = all.toUtf8();
    std::string out = byteOrderMark_ ? std::string("\xEF\xBB\xBF") : std::string();
    out.append(utf8.constData(), static_cast<std::size_t>(utf8.size()));
    return out;
}

void TSyntaxEdit::LoadFromFile(const std::filesystem::path& path) {
    const std::vector<std::uint8_t> bytes = ReadFileBytes(path);
    const auto* raw = reinterpret_cast<const char*>(bytes.data());
    const auto size = static_cast<qsizetype>(bytes.size());
    QString content;
    byteOrderMark_ = false;
    if (IsValidUtf8(std::string_view(raw, bytes.size()))) {
        encoding_ = TFileEncoding::Utf8;
        // Read from the bytes: the conversion may or may not drop the mark itself.
        byteOrderMark_ = std::string_view(raw, bytes.size()).starts_with("\xEF\xBB\xBF");
        content = QString::fromUtf8(raw + (byteOrderMark_ ? 3 : 0), size - (byteOrderMark_ ? 3 : 0));
    } else {
        encoding_ = TFileEncoding::Latin1;
        content = QString::fromLatin1(raw, size);
    }
    // The first line break decides the style the file is saved with.
    EolMode mode = EolWindows;
    for (qsizetype i = 0; i < content.size(); ++i) {
        if (content.at(i) == QLatin1Char('\n')) {
            mode = EolUnix;
            break;
        }
        if (content.at(i) == QLatin1Char('\r')) {
            mode = (i + 1 < content.size() && content.at(i + 1) == QLatin1Char('\n')) ? EolWindows : EolMac;
            break;
        }
    }
    setEolMode(mode);
    // Through Scintilla itself: QScintilla's setText ends the text at its first NUL character. Scintilla
    // shows every NUL as a visible mark, and FullText gives them back for saving.
    const QByteArray utf8 = content.toUtf8();
    SendScintilla(SCI_CLEARALL);
    SendScintilla(SCI_APPENDTEXT, static_cast<unsigned long>(utf8.size()), utf8.constData());
    SendScintilla(SCI_EMPTYUNDOBUFFER);
    setModified(false);
    SendScintilla(SCI_GOTOPOS, 0L);
}

void TSyntaxEdit::SaveToFile(const std::filesystem::path& path) {
    WriteFileAtomic(path, EncodedText());
    setModified(false);
}

// ---- caret, words, bookmarks, error line ------------------------------------------------------------------

int TSyntaxEdit::CaretLine() const {
    return static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, SendScintilla(SCI_GETCURRENTPOS)));
}

int TSyntaxEdit::CaretColumn() const {
    return static_cast<int>(SendScintilla(SCI_GETCOLUMN, SendScintilla(SCI_GETCURRENTPOS)));
}

void TSyntaxEdit::SetCaret(int line, int column) {
    GotoPosition(line, column, false);
}

void TSyntaxEdit::setCursorPosition(int line, int index) {
    QsciScintilla::setCursorPosition(line, index);
    // Up and Down keep the column the caret was put in, not one left over from before.
    SendScintilla(SCI_CHOOSECARETX);
}

QString TSyntaxEdit::WordAtCursor() const {
    int line = 0, index = 0;
    getCursorPosition(&line, &index);
    const QString lineText = LineText(line);
    auto isWordChar = [](QChar c) {
        return c.unicode() < 128 && (c.isLetterOrNumber() || c == QLatin1Char('_'));
    };
    int start = std::min<int>(index, static_cast<int>(lineText.size()));
    int end = start;
    while (start > 0 && isWordChar(lineText.at(start - 1))) --start;
    while (end < lineText.size() && isWordChar(lineText.at(end))) ++end;
    return lineText.mid(start, end - start);
}

int TSyntaxEdit::BookmarkLine(int number) const {
    if (number < 0 || number > 9) return -1;
    const int handle = bookmarks_[static_cast<size_t>(number)].handle;
    return handle < 0 ? -1 : markerLine(handle);
}

void TSyntaxEdit::SetBookmark(int number, int line, int column) {
    if (number < 0 || number > 9 || line < 0 || line >= lines()) return;
    ClearBookmark(number);
    auto& mark = bookmarks_[static_cast<size_t>(number)];
    mark.handle = markerAdd(line, number);
    mark.column = column;
}

void TSyntaxEdit::ClearBookmark(int number) {
    if (number < 0 || number > 9) return;
    auto& mark = bookmarks_[static_cast<size_t>(number)];
    if (mark.handle >= 0) markerDeleteHandle(mark.handle);
    mark = {};
}

void TSyntaxEdit::ToggleBookmark(int number) {
    const int line = CaretLine();
    if (BookmarkLine(number) == line) {
        ClearBookmark(number);
    } else {
        SetBookmark(number, line, CaretColumn());
    }
}

bool TSyntaxEdit::GotoBookmark(int number) {
    const int line = BookmarkLine(number);
    if (line < 0) return false;
    GotoPosition(line, bookmarks_[static_cast<size_t>(number)].column, false);
    return true;
}

void TSyntaxEdit::SetErrorLine(int line) {
    ClearErrorLine();
    if (line >= 0 && line < lines()) markerAdd(line, kErrorMarker);
    UpdateCaretLine();
}

void TSyntaxEdit::ClearErrorLine() {
    markerDeleteAll(kErrorMarker);
    UpdateCaretLine();
}

int TSyntaxEdit::ErrorLine() const {
    const long line = SendScintilla(SCI_MARKERNEXT, 0UL, static_cast<long>(1 << kErrorMarker));
    return static_cast<int>(line);
}

} // namespace velkor
