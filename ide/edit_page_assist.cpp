// The page's code-assistance operations, kept under their own names and forwarded to its CodeAssist, and
// the symbol lists, which are dialogs of the page.
#include "compiler/symbol_queries.h"
#include "compiler/symbol_table.h"
#include "ide/code_assist.h"
#include "ide/edit_page.h"
#include "ide/ide_dialogs.h"
#include "ide/page_host.h"
#include "ide/proc_list.h"

namespace velkor {

std::optional<TSymbol> TfrmEdit::SymbolNamed(const QString& word) const {
    return assist_->SymbolNamed(word);
}
std::optional<TSymbol> TfrmEdit::SymbolAtCursor() const {
    return assist_->SymbolAtCursor();
}
void TfrmEdit::FindDeclaration() {
    // Through the page, so that the jump is kept for going back.
    if (const auto symbol = SymbolAtCursor()) GotoDeclaration(*symbol);
}
void TfrmEdit::GotoDeclaration(const TSymbol& symbol) {
    host_.JumpStarting(*this);
    assist_->GotoDeclaration(symbol);
}
void TfrmEdit::ShowDeclarationLine(int line) {
    assist_->ShowDeclarationLine(line);
}
void TfrmEdit::InsertSymbol(const TSymbol& symbol) {
    assist_->InsertSymbol(symbol);
}
void TfrmEdit::CompleteWordAtCursor() {
    assist_->CompleteWordAtCursor();
}
void TfrmEdit::ShowParameterHint() {
    assist_->ShowParameterHint();
}
void TfrmEdit::ShowParameterHintFor(const TSymbol& function, int argument) {
    assist_->ShowParameterHintFor(function, argument);
}
void TfrmEdit::CloseParameterHint() {
    assist_->CloseParameterHint();
}
QLabel* TfrmEdit::ParameterHint() const {
    return assist_->ParameterHint();
}
void TfrmEdit::ShowStringList() {
    assist_->ShowStringList();
}
QListWidget* TfrmEdit::lbCodeHelp() const {
    return assist_->lbCodeHelp();
}
void TfrmEdit::OpenFileAtCursor() {
    assist_->OpenFileAtCursor();
}
QString TfrmEdit::SymbolHintAt(const QPoint& viewportPoint) const {
    return assist_->SymbolHintAt(viewportPoint);
}
bool TfrmEdit::CodeIntelligence() const {
    return assist_->CodeIntelligence();
}
bool TfrmEdit::ParameterHintsEnabled() const {
    return assist_->ParameterHintsEnabled();
}
void TfrmEdit::HintTimerTick() {
    assist_->HintTimerTick();
}
bool TfrmEdit::Typed() const {
    return assist_->Typed();
}
const std::shared_ptr<TSymbolTable>& TfrmEdit::Symbols() const {
    return assist_->Symbols();
}
const std::string& TfrmEdit::SearchPathText() const {
    return assist_->SearchPathText();
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
