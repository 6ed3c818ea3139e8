// Code assistance of an editor page: symbols at the cursor, Find Declaration, completion, parameter hints,
// the string list, Open File at Cursor, the mouse hint and the symbol lists.
#include "ide/edit_page.h"

#include "compiler/compiler.h"
#include "compiler/symbol_queries.h"
#include "compiler/symbol_table.h"
#include "ide/ide_dialogs.h"
#include "ide/ide_ini.h"
#include "ide/page_host.h"
#include "ide/proc_list.h"
#include "iff/iff_strings.h"
#include "platform/exception.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <QLabel>
#include <QListWidget>

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
    const auto found = FindExisting(name);
    if (!found) return std::nullopt;
    std::error_code ec;
    if (!std::filesystem::is_regular_file(*found, ec)) return std::nullopt;
    return std::filesystem::absolute(*found).lexically_normal().string();
}

} // namespace

std::optional<TSymbol> TfrmEdit::SymbolNamed(const QString& word) const {
    if (!symbols_ || word.isEmpty()) return std::nullopt;
    const int index = symbols_->Find(FromQ(word));
    if (index < 0) return std::nullopt;
    return symbols_->Get(index);
}

std::optional<TSymbol> TfrmEdit::SymbolAtCursor() const {
    return SymbolNamed(WordAtCursor());
}

void TfrmEdit::FindDeclaration() {
    if (const auto symbol = SymbolAtCursor()) GotoDeclaration(*symbol);
}

void TfrmEdit::GotoDeclaration(const TSymbol& symbol) {
    TfrmEdit* target = this;
    const std::string file = FileNameOf(symbol.FileNumber);
    if (!file.empty() && LowerCase(file) != FileNameKey()) {
        const auto found = ExistingFile(file);
        if (!found || LowerCase(*found) != FileNameKey()) {
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

void TfrmEdit::ShowDeclarationLine(int line) {
    // Unsigned line arithmetic, kept: line - 1 for the caret, line - 5 for the top line.
    if (line < 1) throw ERangeError();
    memo_->SetCaret(line - 1, 0);
    if (line < 5) throw ERangeError();
    memo_->setFirstVisibleLine(std::max(0, line - 1 - 5));
    memo_->setFocus();
}

void TfrmEdit::InsertSymbol(const TSymbol& symbol) {
    QString text = ToQ(SymbolDisplayName(symbol));
    const bool call = IsFunctionKind(symbol.Kind) && symbol.Register >= 1;
    if (call) text += u'(';
    memo_->SendScintilla(QsciScintillaBase::SCI_REPLACESEL, 0UL, text.toUtf8().constData());
    if (call && paramHints_) ShowParameterHintFor(symbol, 0);
}

void TfrmEdit::CompleteWordAtCursor() {
    if (noIntelligence_) return;
    const QString word = WordAtCursor();
    std::vector<int> matches;
    if (symbols_ && !word.isEmpty()) matches = SymbolsWithPrefix(*symbols_, FromQ(word));
    if (matches.size() != 1) {
        OpenSymbolList(smAll, word);
        return;
    }
    const TSymbol symbol = symbols_->Get(matches.front());
    // Select the word around the caret so that inserting replaces it.
    const long caret = memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const long start = memo_->SendScintilla(QsciScintillaBase::SCI_WORDSTARTPOSITION, caret, 1L);
    const long end = memo_->SendScintilla(QsciScintillaBase::SCI_WORDENDPOSITION, caret, 1L);
    memo_->SendScintilla(QsciScintillaBase::SCI_SETSEL, start, end);
    InsertSymbol(symbol);
}

void TfrmEdit::ShowParameterHint() {
    int line = 0, index = 0;
    memo_->getCursorPosition(&line, &index);
    const std::string lineText = FromQ(memo_->LineText(line));
    // The column counts UTF-8 bytes of the line, as the scanner of the call does.
    const int column = static_cast<int>(FromQ(memo_->LineText(line).left(index)).size());
    if (const auto call = CallAtCaret(lineText, column)) {
        if (const auto symbol = SymbolNamed(ToQ(call->Name)); symbol && IsFunctionKind(symbol->Kind)) {
            ShowParameterHintFor(*symbol, call->Argument);
            return;
        }
    }
    if (const auto symbol = SymbolAtCursor(); symbol && IsFunctionKind(symbol->Kind))
        ShowParameterHintFor(*symbol, 0);
}

void TfrmEdit::ShowParameterHintFor(const TSymbol& function, int argument) {
    // The page's own text first (it may be ahead of the file), then the declaring file on disk.
    std::optional<std::vector<std::string>> names;
    const std::string file = FileNameOf(function.FileNumber);
    if (LowerCase(file) == FileNameKey())
        names = DeclaredParameters(FromQ(memo_->Text()), function.Line, function.Name);
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
        hint_ = new QLabel(this, Qt::ToolTip);
        hint_->setObjectName(QStringLiteral("ParameterHint"));
        hint_->setTextFormat(Qt::RichText);
        hint_->setMargin(3);
        hint_->setFrameShape(QFrame::Box);
        hint_->setFont(memo_->font());
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
        const int lineHeight = static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL));
        // Above the line, so that the string list below the caret leaves it visible.
        const QPoint caret = mapToGlobal(CaretPoint());
        const int above = caret.y() - hint_->height() - 2;
        hint_->move(caret.x(), above >= 0 ? above : caret.y() + lineHeight + 2);
    }
    hint_->show();
}

QLabel* TfrmEdit::ParameterHint() const {
    return hint_;
}

void TfrmEdit::CloseParameterHint() {
    if (hint_) hint_->deleteLater();
    hint_ = nullptr;
    hintFunction_.clear();
}

void TfrmEdit::ShowStringList() {
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
    codeHelpAnchor_ = memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const int rowHeight = std::max(codeHelp_->sizeHintForRow(0), codeHelp_->fontMetrics().height());
    codeHelp_->resize(360, rowHeight * std::min(kCodeHelpRows, std::max(codeHelp_->count(), 1)) + 6);
    codeHelp_->move(mapToGlobal(CaretPoint() + QPoint(5, 18)));
    codeHelp_->raise();
    codeHelp_->show();
}

void TfrmEdit::InsertCodeHelpEntry() {
    const QListWidgetItem* item = codeHelp_->currentItem();
    codeHelp_->hide();
    if (!item) return;
    // What was typed since the list opened (the "[" and a prefix) gives way to the chosen string.
    const long caret = memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    long from = std::min(codeHelpAnchor_, caret);
    const bool bracket = memo_->SendScintilla(QsciScintillaBase::SCI_GETCHARAT, from) == '[';
    if (bracket) ++from;
    memo_->SendScintilla(QsciScintillaBase::SCI_SETSEL, from, caret);
    const QString text = (bracket ? QString() : QStringLiteral("[")) + u'"' + item->text() + u'"';
    memo_->SendScintilla(QsciScintillaBase::SCI_REPLACESEL, 0UL, text.toUtf8().constData());
    memo_->setFocus();
}

void TfrmEdit::FollowCodeHelpPrefix() {
    const QList<QListWidgetItem*> items = codeHelp_->findItems(codeHelpPrefix_, Qt::MatchStartsWith);
    if (!items.isEmpty()) codeHelp_->setCurrentItem(items.front());
}

void TfrmEdit::OpenFileAtCursor() {
    const QString word = WordAtCursor();
    if (word.isEmpty()) return;
    const std::string name = FromQ(word) + ".pas";
    for (const std::string& folder : SplitLines(searchPathText_)) {
        if (Trim(folder).empty()) continue;
        if (const auto found = ExistingFile(WithTrailingSeparator(folder) + name)) {
            host_.OpenFile(*found, true);
            return;
        }
    }
    DialogHooks().ShowMessage(this, ToQ("File not found: " + name));
}

QString TfrmEdit::SymbolHintAt(const QPoint& viewportPoint) const {
    if (!symbols_) return {};
    const long position = memo_->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMPOINTCLOSE,
                                               static_cast<unsigned long>(viewportPoint.x()),
                                               static_cast<long>(viewportPoint.y()));
    if (position < 0) return {};
    const long start = memo_->SendScintilla(QsciScintillaBase::SCI_WORDSTARTPOSITION, position, 1L);
    const long end = memo_->SendScintilla(QsciScintillaBase::SCI_WORDENDPOSITION, position, 1L);
    if (end <= start) return {};
    const QString text = memo_->text(static_cast<int>(start), static_cast<int>(end));
    const auto symbol = SymbolNamed(text);
    return symbol ? ToQ(SymbolHintText(*symbol)) : QString();
}

QPoint TfrmEdit::CaretPoint() const {
    const long caret = memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const int x =
        static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, caret));
    const int y =
        static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, caret));
    return memo_->viewport()->mapTo(this, QPoint(x, y));
}

void TfrmEdit::SymbolBrowser() {
    OpenSymbolList(smAll, {});
}
void TfrmEdit::FunctionList() {
    OpenSymbolList(smFunctions, {});
}
void TfrmEdit::ObjectList() {
    OpenSymbolList(smObjects, {});
}
void TfrmEdit::ConstantList() {
    OpenSymbolList(smConstants, {});
}

void TfrmEdit::OpenSymbolList(int kindMask, const QString& filter) {
    TfrmProcList dialog(*this, window());
    dialog.SetKindMask(kindMask);
    dialog.SetFilter(filter);
    DialogHooks().ExecModal(dialog);
}

} // namespace velkor
