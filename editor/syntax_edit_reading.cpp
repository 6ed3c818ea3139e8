// What helps reading the code in TSyntaxEdit: the theme's colours, the caret's line, brackets and block
// words matched, folding and indentation guides.
#include "editor/folding.h"
#include "editor/highlighter.h"
#include "editor/syntax_edit.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QPixmap>
#include <QPointer>

#include <algorithm>

namespace velkor {
namespace {

// How far block matching looks for a partner: far enough for any function, and a keystroke never reads a
// whole long unit.
constexpr long kBlockMatchWindow = 128 * 1024;

// A small square with the bookmark's digit, for the gutter.
QPixmap BookmarkPixmap(int number, const QFont& font, const TEditorTheme& theme) {
    QPixmap pixmap(14, 14);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.BookmarkFrame);
    painter.setBrush(theme.BookmarkFill);
    painter.drawRoundedRect(QRectF(0.5, 0.5, 13, 13), 2, 2);
    QFont digitFont = font;
    digitFont.setPixelSize(11);
    digitFont.setBold(true);
    painter.setFont(digitFont);
    painter.drawText(QRect(0, 0, 14, 14), Qt::AlignCenter, QString::number(number));
    return pixmap;
}

// Tells every editor when the application's palette changes (the desktop switched between light and
// dark); the application hears of it first, whether or not an editor is shown.
class TPaletteWatcher : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == QCoreApplication::instance() && event->type() == QEvent::ApplicationPaletteChange) {
            for (QWidget* widget : QApplication::allWidgets()) {
                if (auto* editor = qobject_cast<TSyntaxEdit*>(widget)) editor->FollowDesktopPalette();
            }
        }
        return false;
    }
};

} // namespace

void TSyntaxEdit::SetUpReadingAids() {
    static QPointer<TPaletteWatcher> watcher;
    if (!watcher && QCoreApplication::instance()) {
        watcher = new TPaletteWatcher(QCoreApplication::instance());
        QCoreApplication::instance()->installEventFilter(watcher);
    }
    setCaretLineVisible(true);
    // The caret's line stays marked while another window or view has the focus.
    SendScintilla(SCI_SETCARETLINEVISIBLEALWAYS, 1UL);
    setBraceMatching(SloppyBraceMatch);
    setIndentationGuides(true);
    setFolding(BoxedTreeFoldStyle, kFoldMargin);
    SendScintilla(SCI_SETFOLDFLAGS, static_cast<unsigned long>(SC_FOLDFLAG_LINEAFTER_CONTRACTED));
    SendScintilla(SCI_INDICSETSTYLE, static_cast<unsigned long>(kBlockMatchIndicator),
                  static_cast<long>(INDIC_STRAIGHTBOX));
    SendScintilla(SCI_INDICSETUNDER, static_cast<unsigned long>(kBlockMatchIndicator), 1L);
    SendScintilla(SCI_INDICSETALPHA, static_cast<unsigned long>(kBlockMatchIndicator), 255L);
    SendScintilla(SCI_INDICSETOUTLINEALPHA, static_cast<unsigned long>(kBlockMatchIndicator), 255L);
    connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
        if (!(updated & (SC_UPDATE_CONTENT | SC_UPDATE_SELECTION))) return;
        UpdateCaretLine();
        UpdateBlockMatch();
    });
    ApplyTheme(EditorThemeFor(themeChoice_, QApplication::palette()));
}

void TSyntaxEdit::SetThemeChoice(TThemeChoice choice) {
    themeChoice_ = choice;
    ApplyTheme(EditorThemeFor(choice, QApplication::palette()));
}

void TSyntaxEdit::FollowDesktopPalette() {
    if (themeChoice_ != TThemeChoice::System) return;
    const TEditorTheme& theme = EditorThemeFor(themeChoice_, QApplication::palette());
    if (&theme != theme_) ApplyTheme(theme);
}

void TSyntaxEdit::ApplyTheme(const TEditorTheme& theme) {
    theme_ = &theme;
    highlighter_->SetTheme(theme);
    SendScintilla(SCI_STYLESETBACK, static_cast<unsigned long>(STYLE_DEFAULT), theme.Paper);
    SendScintilla(SCI_STYLESETFORE, static_cast<unsigned long>(STYLE_DEFAULT), theme.Styles[hsDefault]);
    setSelectionBackgroundColor(theme.SelectionBack);
    setSelectionForegroundColor(theme.SelectionFore);
    setCaretForegroundColor(theme.Caret);
    setCaretLineBackgroundColor(theme.CaretLine);
    setMarginsBackgroundColor(theme.MarginBack);
    setMarginsForegroundColor(theme.MarginFore);
    setFoldMarginColors(theme.FoldMarginFore, theme.FoldMarginBack);
    for (int marker = SC_MARKNUM_FOLDEREND; marker <= static_cast<int>(SC_MARKNUM_FOLDEROPEN); ++marker) {
        SendScintilla(SCI_MARKERSETFORE, static_cast<unsigned long>(marker), theme.FoldMarkerFore);
        SendScintilla(SCI_MARKERSETBACK, static_cast<unsigned long>(marker), theme.FoldMarkerBack);
    }
    setIndentationGuidesForegroundColor(theme.IndentGuide);
    setIndentationGuidesBackgroundColor(theme.Paper);
    setMatchedBraceBackgroundColor(theme.BraceMatchBack);
    setMatchedBraceForegroundColor(theme.BraceMatchFore);
    setUnmatchedBraceBackgroundColor(theme.Paper);
    setUnmatchedBraceForegroundColor(theme.BraceBadFore);
    SendScintilla(SCI_INDICSETFORE, static_cast<unsigned long>(kBlockMatchIndicator), theme.BraceMatchBack);
    setMarkerBackgroundColor(theme.ErrorLine, kErrorMarker);
    const QFont digits = font();
    for (int n = 0; n <= 9; ++n) markerDefine(BookmarkPixmap(n, digits, theme), n);
}

// The caret line's background would cover the error line's: there the error line shows.
void TSyntaxEdit::UpdateCaretLine() {
    const long line =
        SendScintilla(SCI_LINEFROMPOSITION, static_cast<unsigned long>(SendScintilla(SCI_GETCURRENTPOS)));
    const bool onError =
        (SendScintilla(SCI_MARKERGET, static_cast<unsigned long>(line)) & (1 << kErrorMarker)) != 0;
    if ((SendScintilla(SCI_GETCARETLINEVISIBLE) != 0) == onError) setCaretLineVisible(!onError);
}

void TSyntaxEdit::UpdateBlockMatch() {
    const auto clear = [this] {
        if (!blockMatchShown_) return;
        SendScintilla(SCI_SETINDICATORCURRENT, static_cast<unsigned long>(kBlockMatchIndicator));
        SendScintilla(SCI_INDICATORCLEARRANGE, 0UL, SendScintilla(SCI_GETLENGTH));
        blockMatchShown_ = false;
    };
    const long caret = SendScintilla(SCI_GETCURRENTPOS);
    const long wordStart = SendScintilla(SCI_WORDSTARTPOSITION, static_cast<unsigned long>(caret), 1L);
    const long wordEnd = SendScintilla(SCI_WORDENDPOSITION, static_cast<unsigned long>(caret), 1L);
    // Only begin, end, object and objective start a search.
    const long wordLength = wordEnd - wordStart;
    if (wordLength < 3 || wordLength > 9 || SendScintilla(SCI_GETSELECTIONEMPTY) == 0) {
        clear();
        return;
    }
    const auto* word = reinterpret_cast<const char*>(
        SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(wordStart), wordLength));
    const QByteArray lower = QByteArray(word, static_cast<qsizetype>(wordLength)).toLower();
    const bool isEnd = lower == "end";
    if (!isEnd && lower != "begin" && lower != "object" && lower != "objective") {
        clear();
        return;
    }
    const long length = SendScintilla(SCI_GETLENGTH);
    const long wordLine = SendScintilla(SCI_LINEFROMPOSITION, static_cast<unsigned long>(wordStart));
    const long firstLine =
        isEnd ? SendScintilla(SCI_LINEFROMPOSITION,
                              static_cast<unsigned long>(std::max(0L, wordEnd - kBlockMatchWindow)))
              : wordLine;
    const long from = SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(firstLine));
    const long to = isEnd ? wordEnd : std::min(length, from + kBlockMatchWindow);
    const int lexState =
        firstLine > 0
            ? static_cast<int>(SendScintilla(SCI_GETLINESTATE, static_cast<unsigned long>(firstLine - 1)))
            : 0;
    const auto* text = reinterpret_cast<const char*>(
        SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(from), to - from));
    const std::optional<TBlockMatch> match =
        text ? MatchBlockWord(std::string_view(text, static_cast<size_t>(to - from)), lexState,
                              static_cast<size_t>(wordStart - from))
             : std::nullopt;
    clear();
    if (!match) return;
    SendScintilla(SCI_SETINDICATORCURRENT, static_cast<unsigned long>(kBlockMatchIndicator));
    for (const TTextSpan& span : {match->Word, match->Partner})
        SendScintilla(SCI_INDICATORFILLRANGE,
                      static_cast<unsigned long>(from + static_cast<long>(span.Start)),
                      static_cast<long>(span.Length));
    blockMatchShown_ = true;
}

} // namespace velkor
