// Find, Replace and Search Again of an editor page, through the one find dialog all pages share.
#include "ide/edit_page.h"

#include "editor/search_options.h"
#include "ide/find_dialog.h"
#include "ide/ide_dialogs.h"

#include <QPointer>

namespace velkor {
namespace {

// The shared dialog lives as long as the window it was first opened over; its history with it.
TSyntaxFindDialog& SharedFindDialog(QWidget* owner) {
    static QPointer<TSyntaxFindDialog> dialog;
    if (!dialog) dialog = new TSyntaxFindDialog(owner);
    return *dialog;
}

} // namespace

void TfrmEdit::Find() {
    ShowFindDialog(false);
}

void TfrmEdit::Replace() {
    ShowFindDialog(true);
}

void TfrmEdit::ShowFindDialog(bool replace) {
    TSyntaxFindDialog& dialog = SharedFindDialog(window());
    // A selection within one line is what to look for; a longer one leaves the box as it was.
    QString fill = memo_->selectedText();
    if (fill.contains(u'\n') || fill.contains(u'\r')) fill.clear();
    if (fill.isEmpty()) fill = WordAtCursor();
    if (!fill.isEmpty()) dialog.SetFindText(fill);
    dialog.SetReplaceMode(replace);
    const int result = DialogHooks().ExecModal(dialog);
    if (result != QDialog::Accepted && result != TSyntaxFindDialog::kReplaceAllResult) return;
    unsigned options = dialog.Options();
    if (result == TSyntaxFindDialog::kReplaceAllResult) options |= ssoReplaceAll | ssoReplace;
    lastSearchOptions_ = options;
    RunSearch(dialog.FindText(), dialog.NewText(), options);
}

void TfrmEdit::SearchAgain() {
    TSyntaxFindDialog& dialog = SharedFindDialog(window());
    if (dialog.FindText().isEmpty()) {
        Find();
        return;
    }
    RunSearch(dialog.FindText(), dialog.NewText(), lastSearchOptions_ & ~(ssoEntireScope | ssoSelectedOnly));
}

void TfrmEdit::RunSearch(const QString& findText, const QString& newText, unsigned options) {
    if (memo_->Search(findText, newText, options)) return;
    const QString error = memo_->LastSearchError();
    DialogHooks().ShowMessage(this, error.isEmpty() ? QStringLiteral("No further occurence of '") + findText +
                                                          QStringLiteral("' found.")
                                                    : error);
}

} // namespace velkor
