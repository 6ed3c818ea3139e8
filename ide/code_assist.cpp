#include "ide/code_assist.h"

#include "compiler/compiler.h"
#include "compiler/symbol_queries.h"
#include "compiler/symbol_table.h"
#include "editor/key_event.h"
#include "ide/edit_page.h"
#include "ide/ide_dialogs.h"
#include "ide/ide_ini.h"
#include "ide/list_keys.h"
#include "ide/page_host.h"
#include "iff/iff_strings.h"
#include "platform/exception.h"
#include "platform/executable_path.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QTimer>
#include <QToolTip>

#include <filesystem>

namespace velkor {
namespace {

// How many lines the string list shows before it scrolls.
constexpr int kCodeHelpRows = 12;

std::string WithTrailingSeparator(std::string folder) {
    if (!folder.empty() && folder.back() != '\\' && folder.back() != '/') folder += '/';
    return folder;
}

// The absolute, normal form of an existing file, or nothing.
std::optional<std::string> ExistingFile(const std::string& name) {
    if (name.empty()) return std::nullopt;
    const auto found = FindExistingFile(name);
    if (!found) return std::nullopt;
    return std::filesystem::absolute(*found).lexically_normal().string();
}

// The keys were chosen on the authors' keyboard layout, where Shift+9 types ")", Shift+comma ";", Shift+8
// "(" and AltGr+8 "[". The typed character decides here, so the keys work on every layout; the digit-row
// keys are still recognised by position where the platform reports it.
bool IsKey(const TShortCut& key, int code, unsigned shift) {
    return key.Key == code && (key.Shift & (ssShift | ssCtrl | ssAlt)) == shift;
}

// The keys that close a parameter hint: movement away from the call, and ")" or ";".
bool ClosesHint(const QKeyEvent& event, const TShortCut& key) {
    switch (event.key()) {
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_End:
    case Qt::Key_Home:
    case Qt::Key_Up:
    case Qt::Key_Down: return true;
    default: break;
    }
    const QString text = event.text();
    return text == QStringLiteral(")") || text == QStringLiteral(";") || IsKey(key, Qt::Key_9, ssShift);
}

// AltGr+8 (Ctrl+Alt+8 on Windows), Alt+8, or whatever types "[".
bool OpensStringList(const QKeyEvent& event, const TShortCut& key) {
    return event.text() == QStringLiteral("[") || IsKey(key, Qt::Key_8, ssAlt) ||
           IsKey(key, Qt::Key_8, ssAlt | ssCtrl);
}

} // namespace

CodeAssist::CodeAssist(TfrmEdit& page, TPageHost& host, TPageEditor& memo)
    : page_(page), host_(host), memo_(memo), hintTimer_(new QTimer(this)), codeHelp_(new QListWidget(&page)) {
    const TIniFile ini = IdeIni();
    paramHints_ = !ini.ReadBool("editor", "disable_paramhint", false);
    noIntelligence_ = ini.ReadBool("editor", "disable_intelligence", false);
    searchPathText_ = ExecutableFolder() + "lib\\\r\n";
    memo_.installEventFilter(this);
    memo_.viewport()->installEventFilter(this);
    if (!noIntelligence_) connect(&memo_, &QsciScintilla::textChanged, this, [this] { typed_ = true; });

    codeHelp_->setObjectName(QStringLiteral("lbCodeHelp"));
    codeHelp_->hide();
    // A window of its own, so that near the page's edge it is not cut off; the keys come from the editor.
    codeHelp_->setWindowFlags(Qt::ToolTip);
    codeHelp_->setFocusPolicy(Qt::NoFocus);
    // Whole rows in a window exactly that many rows high: the selected row is never cut at the bottom.
    codeHelp_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    codeHelp_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    codeHelp_->installEventFilter(this);
    QPalette tip = codeHelp_->palette();
    tip.setColor(QPalette::Base, tip.color(QPalette::ToolTipBase));
    tip.setColor(QPalette::Text, tip.color(QPalette::ToolTipText));
    codeHelp_->setPalette(tip);
    connect(codeHelp_, &QListWidget::itemDoubleClicked, this, [this] { InsertCodeHelpEntry(); });

    hintTimer_->setInterval(100);
    connect(hintTimer_, &QTimer::timeout, this, &CodeAssist::HintTimerTick);
    hintTimer_->start();
}

CodeAssist::~CodeAssist() = default;

std::optional<TSymbol> CodeAssist::SymbolNamed(const QString& word) const {
    if (!symbols_ || word.isEmpty()) return std::nullopt;
    const int index = symbols_->Find(FromQ(word));
    if (index < 0) return std::nullopt;
    return symbols_->Get(index);
}

std::optional<TSymbol> CodeAssist::SymbolAtCursor() const {
    return SymbolNamed(memo_.WordAtCursor());
}

void CodeAssist::FindDeclaration() {
    if (const auto symbol = SymbolAtCursor()) GotoDeclaration(*symbol);
}

void CodeAssist::GotoDeclaration(const TSymbol& symbol) {
    TfrmEdit* target = &page_;
    const std::string file = FileNameOf(symbol.FileNumber);
    if (!file.empty() && LowerCase(file) != page_.FileNameKey()) {
        const auto found = ExistingFile(file);
        if (!found || LowerCase(*found) != page_.FileNameKey()) {
            target = host_.OpenFile(found ? *found : file, true);
            if (!target) return;
        }
    }
    try {
        target->ShowDeclarationLine(symbol.Line);
    } catch (const ERangeError& e) {
        DialogHooks().ShowMessage(target, ToQ(e.what()));
    }
}

void CodeAssist::ShowDeclarationLine(int line) {
    // Unsigned line arithmetic, kept: line - 1 for the caret, line - 5 for the top line.
    if (line < 1) throw ERangeError();
    memo_.SetCaret(line - 1, 0);
    if (line < 5) throw ERangeError();
    memo_.setFirstVisibleLine(std::max(0, line - 1 - 5));
    memo_.setFocus();
}

void CodeAssist::InsertSymbol(const TSymbol& symbol) {
    QString text = ToQ(SymbolDisplayName(symbol));
    const bool call = IsFunctionKind(symbol.Kind) && symbol.Register >= 1;
    if (call) text += u'(';
    memo_.SendScintilla(QsciScintillaBase::SCI_REPLACESEL, 0UL, text.toUtf8().constData());
    if (call && paramHints_) ShowParameterHintFor(symbol, 0);
}

void CodeAssist::CompleteWordAtCursor() {
    if (noIntelligence_) return;
    const QString word = memo_.WordAtCursor();
    std::vector<int> matches;
    if (symbols_ && !word.isEmpty()) matches = SymbolsWithPrefix(*symbols_, FromQ(word));
    if (matches.size() != 1) {
        page_.OpenSymbolList(smAll, word);
        return;
    }
    const TSymbol symbol = symbols_->Get(matches.front());
    // Select the word around the caret so that inserting replaces it.
    const long caret = memo_.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const long start = memo_.SendScintilla(QsciScintillaBase::SCI_WORDSTARTPOSITION, caret, 1L);
    const long end = memo_.SendScintilla(QsciScintillaBase::SCI_WORDENDPOSITION, caret, 1L);
    memo_.SendScintilla(QsciScintillaBase::SCI_SETSEL, start, end);
    InsertSymbol(symbol);
}

void CodeAssist::ShowParameterHint() {
    int line = 0, index = 0;
    memo_.getCursorPosition(&line, &index);
    const std::string lineText = FromQ(memo_.LineText(line));
    // The column counts UTF-8 bytes of the line, as the scanner of the call does.
    const int column = static_cast<int>(FromQ(memo_.LineText(line).left(index)).size());
    if (const auto call = CallAtCaret(lineText, column)) {
        if (const auto symbol = SymbolNamed(ToQ(call->Name)); symbol && IsFunctionKind(symbol->Kind)) {
            ShowParameterHintFor(*symbol, call->Argument);
            return;
        }
    }
    if (const auto symbol = SymbolAtCursor(); symbol && IsFunctionKind(symbol->Kind))
        ShowParameterHintFor(*symbol, 0);
}

void CodeAssist::ShowParameterHintFor(const TSymbol& function, int argument) {
    // The page's own text first (it may be ahead of the file), then the declaring file on disk.
    std::optional<std::vector<std::string>> names;
    const std::string file = FileNameOf(function.FileNumber);
    if (LowerCase(file) == page_.FileNameKey())
        names = DeclaredParameters(FromQ(memo_.Text()), function.Line, function.Name);
    if (!names) {
        if (const auto found = ExistingFile(file)) {
            try {
                names = DeclaredParameters(LoadTextFile(*found), function.Line, function.Name);
            } catch (const EInOutError&) {
                // The hint then names the parameters by number.
            }
        }
    }
    QString text = ToQ(ParameterHintText(function, names)).toHtmlEscaped();
    // The argument being typed in bold: find the n-th parameter between the brackets.
    const qsizetype open = text.indexOf(u'(');
    qsizetype from = open + 1;
    for (int i = 0; i < argument && from > 0; ++i) from = text.indexOf(u',', from) + 1;
    if (from > 0 && function.Register > argument) {
        while (from < text.size() && text.at(from) == u' ') ++from;
        qsizetype to = text.indexOf(u',', from);
        if (to < 0) to = text.lastIndexOf(u')');
        text = text.left(from) + QStringLiteral("<b>") + text.mid(from, to - from) + QStringLiteral("</b>") +
               text.mid(to);
    }
    // The hint stays where it opened while the same call is typed.
    const bool moved = !hint_ || hintFunction_ != function.Name;
    if (!hint_) {
        hint_ = new QLabel(&page_, Qt::ToolTip);
        hint_->setObjectName(QStringLiteral("ParameterHint"));
        hint_->setTextFormat(Qt::RichText);
        hint_->setMargin(3);
        hint_->setFrameShape(QFrame::Box);
        hint_->setFont(memo_.font());
        QPalette tip = hint_->palette();
        tip.setColor(QPalette::Window, tip.color(QPalette::ToolTipBase));
        tip.setColor(QPalette::WindowText, tip.color(QPalette::ToolTipText));
        hint_->setPalette(tip);
        hint_->setAutoFillBackground(true);
    }
    hintFunction_ = function.Name;
    hint_->setText(text);
    hint_->adjustSize();
    if (moved) {
        const int lineHeight = static_cast<int>(memo_.SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL));
        // Above the line, so that the string list below the caret leaves it visible.
        const QPoint caret = CaretPoint();
        const int above = caret.y() - hint_->height() - 2;
        hint_->move(caret.x(), above >= 0 ? above : caret.y() + lineHeight + 2);
    }
    hint_->show();
}

QLabel* CodeAssist::ParameterHint() const {
    return hint_;
}

void CodeAssist::CloseParameterHint() {
    if (hint_) hint_->deleteLater();
    hint_ = nullptr;
    hintFunction_.clear();
}

void CodeAssist::ShowStringList() {
    const auto symbol = SymbolAtCursor();
    if (!symbol || symbol->Kind != skStringTable) return;
    TIffStringList strings;
    bool loaded = false;
    for (const std::string& folder : SplitLines(searchPathText_)) {
        if (Trim(folder).empty()) continue;
        for (const std::string& name : {symbol->Text + ".eng", symbol->Text}) {
            const auto found = ExistingFile(WithTrailingSeparator(folder) + FileNamePart(name));
            if (!found) continue;
            try {
                strings.LoadFromFile(*found);
                loaded = true;
            } catch (const Exception&) {
                // An unreadable table lists nothing.
            }
            break;
        }
        if (loaded) break;
    }
    codeHelp_->clear();
    for (const std::string& line : strings.Lines) codeHelp_->addItem(ToQ(line));
    if (codeHelp_->count() > 0) codeHelp_->setCurrentRow(0);
    codeHelpPrefix_.clear();
    codeHelpAnchor_ = memo_.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const int rowHeight = std::max(codeHelp_->sizeHintForRow(0), codeHelp_->fontMetrics().height());
    codeHelp_->resize(360, rowHeight * std::min(kCodeHelpRows, std::max(codeHelp_->count(), 1)) +
                               2 * codeHelp_->frameWidth());
    codeHelp_->move(CaretPoint() + QPoint(5, 18));
    codeHelp_->raise();
    codeHelp_->show();
}

void CodeAssist::InsertCodeHelpEntry() {
    const QListWidgetItem* item = codeHelp_->currentItem();
    codeHelp_->hide();
    if (!item) return;
    // What was typed since the list opened (the "[" and a prefix) gives way to the chosen string.
    const long caret = memo_.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    long from = std::min(codeHelpAnchor_, caret);
    const bool bracket = memo_.SendScintilla(QsciScintillaBase::SCI_GETCHARAT, from) == '[';
    if (bracket) ++from;
    memo_.SendScintilla(QsciScintillaBase::SCI_SETSEL, from, caret);
    const QString text = (bracket ? QString() : QStringLiteral("[")) + u'"' + item->text() + u'"';
    memo_.SendScintilla(QsciScintillaBase::SCI_REPLACESEL, 0UL, text.toUtf8().constData());
    memo_.setFocus();
}

void CodeAssist::FollowCodeHelpPrefix() {
    const QList<QListWidgetItem*> items = codeHelp_->findItems(codeHelpPrefix_, Qt::MatchStartsWith);
    if (!items.isEmpty()) codeHelp_->setCurrentItem(items.front());
}

void CodeAssist::OpenFileAtCursor() {
    const QString word = memo_.WordAtCursor();
    if (word.isEmpty()) return;
    const std::string name = FromQ(word) + ".pas";
    for (const std::string& folder : SplitLines(searchPathText_)) {
        if (Trim(folder).empty()) continue;
        if (const auto found = ExistingFile(WithTrailingSeparator(folder) + name)) {
            host_.OpenFile(*found, true);
            return;
        }
    }
    DialogHooks().ShowMessage(&page_, ToQ("File not found: " + name));
}

QString CodeAssist::SymbolHintAt(const QPoint& viewportPoint) const {
    if (!symbols_) return {};
    const long position = memo_.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMPOINTCLOSE,
                                              static_cast<unsigned long>(viewportPoint.x()),
                                              static_cast<long>(viewportPoint.y()));
    if (position < 0) return {};
    const long start = memo_.SendScintilla(QsciScintillaBase::SCI_WORDSTARTPOSITION, position, 1L);
    const long end = memo_.SendScintilla(QsciScintillaBase::SCI_WORDENDPOSITION, position, 1L);
    if (end <= start) return {};
    const QString text = memo_.text(static_cast<int>(start), static_cast<int>(end));
    const auto symbol = SymbolNamed(text);
    return symbol ? ToQ(SymbolHintText(*symbol)) : QString();
}

QPoint CodeAssist::CaretPoint() const {
    const long caret = memo_.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const int x =
        static_cast<int>(memo_.SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, caret));
    const int y =
        static_cast<int>(memo_.SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, caret));
    return memo_.viewport()->mapToGlobal(QPoint(x, y));
}

bool CodeAssist::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &memo_ && event->type() == QEvent::KeyPress) {
        return MemoKeyDown(*static_cast<QKeyEvent*>(event));
    }
    if (watched == &memo_ && event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
        // Another page, view or window took over: the popups of this one go.
        codeHelp_->hide();
        CloseParameterHint();
    }
    if (event->type() == QEvent::ToolTip && watched == memo_.viewport()) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QString text = SymbolHintAt(help->pos());
        if (text.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), text, memo_.viewport());
        return true;
    }
    if (watched == codeHelp_ && event->type() == QEvent::KeyPress) {
        CodeHelpKeyDown(*static_cast<QKeyEvent*>(event));
        return true;
    }
    return QObject::eventFilter(watched, event);
}

bool CodeAssist::MemoKeyDown(QKeyEvent& event) {
    if (IsModifierKey(event.key())) return false;
    typed_ = true;
    const TShortCut key = ShortCutFromKeyEvent(event);

    if (hint_ && ClosesHint(event, key)) CloseParameterHint();

    if (codeHelp_->isVisible() && event.key() != Qt::Key_F4) {
        if (event.key() != Qt::Key_Left && event.key() != Qt::Key_Right) {
            if (CodeHelpKeyDown(event)) return true;
        }
    }

    if (paramHints_ && OpensStringList(event, key)) {
        if (const auto symbol = SymbolAtCursor(); symbol && symbol->Kind == skStringTable) ShowStringList();
    }

    if (event.text() == QStringLiteral("(") && paramHints_ && !noIntelligence_) {
        // The bracket is not typed yet: the function is the word just before the caret.
        if (const auto symbol = SymbolAtCursor();
            symbol && IsFunctionKind(symbol->Kind) && symbol->Register > 0)
            ShowParameterHintFor(*symbol, 0);
    }
    return false;
}

bool CodeAssist::CodeHelpKeyDown(QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Escape: codeHelp_->hide(); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: InsertCodeHelpEntry(); return true;
    case Qt::Key_Backspace:
        codeHelpPrefix_.chop(1);
        FollowCodeHelpPrefix();
        return false;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        StepListRow(*codeHelp_, event.key());
        return event.key() == Qt::Key_Up || event.key() == Qt::Key_Down;
    }
    default: break;
    }
    const QString text = event.text();
    if (text == QStringLiteral(")")) {
        codeHelp_->hide();
        return false;
    }
    if (!text.isEmpty() && text.at(0).isPrint() && text != QStringLiteral("[")) {
        codeHelpPrefix_ += text;
        FollowCodeHelpPrefix();
    }
    return false;
}

void CodeAssist::HintTimerTick() {
    if (!typed_) return;
    typed_ = false;
    if (!hint_) return;
    int line = 0, index = 0;
    memo_.getCursorPosition(&line, &index);
    const QString lineText = memo_.LineText(line);
    const auto call = CallAtCaret(FromQ(lineText), static_cast<int>(FromQ(lineText.left(index)).size()));
    if (!call || UpperCase(call->Name) != hintFunction_) {
        CloseParameterHint();
        return;
    }
    if (const auto symbol = SymbolNamed(ToQ(call->Name))) ShowParameterHintFor(*symbol, call->Argument);
}

} // namespace velkor
