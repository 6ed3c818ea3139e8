#include "ide/ide_dialogs.h"

#include <QDesktopServices>
#include <QDialog>
#include <QFileDialog>
#include <QFontMetrics>
#include <QInputDialog>
#include <QMessageBox>
#include <QUrl>

namespace velkor {

namespace {

TMsgAnswer RealAskYesNoCancel(QWidget* parent, const QString& text) {
    const auto button =
        QMessageBox::question(parent, QStringLiteral("Confirm"), text,
                              QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
    if (button == QMessageBox::Yes) return TMsgAnswer::Yes;
    if (button == QMessageBox::No) return TMsgAnswer::No;
    return TMsgAnswer::Cancel;
}

TReplaceAnswer RealAskReplace(QWidget* parent, const QString& found) {
    const auto button = QMessageBox::question(
        parent, QStringLiteral("Confirm"), QStringLiteral("Replace this occurrence of '%1'?").arg(found),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel | QMessageBox::YesToAll, QMessageBox::Yes);
    switch (button) {
    case QMessageBox::Yes: return TReplaceAnswer::Yes;
    case QMessageBox::No: return TReplaceAnswer::No;
    case QMessageBox::YesToAll: return TReplaceAnswer::All;
    default: return TReplaceAnswer::Cancel;
    }
}

void PrepareFileDialog(QFileDialog& dialog, const TFileDialogRequest& request) {
    if (!request.Caption.isEmpty()) dialog.setWindowTitle(request.Caption);
    dialog.setNameFilters(ToQtFilter(request.Filter).split(QStringLiteral(";;")));
    QString ext = request.DefaultExt;
    if (ext.startsWith(u'.')) ext.remove(0, 1);
    dialog.setDefaultSuffix(ext);
    if (!request.InitialDir.isEmpty()) dialog.setDirectory(request.InitialDir);
    if (!request.ProposedName.isEmpty()) dialog.selectFile(request.ProposedName);
}

QStringList RunOpenDialog(QWidget* parent, const TFileDialogRequest& request, bool several) {
    QFileDialog dialog(parent);
    PrepareFileDialog(dialog, request);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(several ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::ReadOnly, false);
    if (dialog.exec() != QDialog::Accepted) return {};
    return dialog.selectedFiles();
}

QString RealSaveFile(QWidget* parent, const TFileDialogRequest& request) {
    QFileDialog dialog(parent);
    PrepareFileDialog(dialog, request);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    // Overwriting an existing file is what Save As is for here; it does not ask.
    dialog.setOption(QFileDialog::DontConfirmOverwrite, true);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().front();
}

TDialogHooks RealHooks() {
    TDialogHooks hooks;
    hooks.AskYesNoCancel = RealAskYesNoCancel;
    hooks.AskReplace = RealAskReplace;
    hooks.ShowMessage = [](QWidget* parent, const QString& text) {
        QMessageBox::information(parent, QStringLiteral("Velkor"), text);
    };
    hooks.OpenFile = [](QWidget* parent, const TFileDialogRequest& request) {
        const QStringList files = RunOpenDialog(parent, request, false);
        return files.isEmpty() ? QString() : files.front();
    };
    hooks.OpenFiles = [](QWidget* parent, const TFileDialogRequest& request) {
        return RunOpenDialog(parent, request, true);
    };
    hooks.SaveFile = RealSaveFile;
    hooks.PickFolder = [](QWidget* parent, const QString& start) {
        return QFileDialog::getExistingDirectory(parent, QString(), start);
    };
    hooks.AskInteger = [](QWidget* parent, const QString& caption, const QString& label,
                          int value) -> std::optional<int> {
        const std::unique_ptr<QInputDialog> dialog = MakeIntegerDialog(parent, caption, label, value);
        if (dialog->exec() != QDialog::Accepted) return std::nullopt;
        return dialog->intValue();
    };
    hooks.ExecModal = [](QDialog& dialog) { return dialog.exec(); };
    hooks.OpenUrl = [](const QString& url) { QDesktopServices::openUrl(QUrl(url)); };
    return hooks;
}

} // namespace

namespace {

// A number prompt at least `captionWidth` wide. The dialog's layout sets its minimum size when it is
// shown, so the width is applied then.
class TIntegerPrompt : public QInputDialog {
public:
    using QInputDialog::QInputDialog;
    int CaptionWidth = 0;

protected:
    void showEvent(QShowEvent* event) override {
        QInputDialog::showEvent(event);
        if (width() < CaptionWidth) {
            setMinimumWidth(CaptionWidth);
            resize(CaptionWidth, height());
        }
    }
};

} // namespace

std::unique_ptr<QInputDialog> MakeIntegerDialog(QWidget* parent, const QString& caption, const QString& label,
                                                int value) {
    auto dialog = std::make_unique<TIntegerPrompt>(parent);
    dialog->setWindowTitle(caption);
    dialog->setLabelText(label);
    dialog->setInputMode(QInputDialog::IntInput);
    dialog->setIntRange(1, 2147483647);
    dialog->setIntValue(value);
    // The desktop draws the caption in its own (often bold) face beside its buttons; the dialog is made
    // wide enough for it, whatever the font size.
    QFont title = dialog->font();
    title.setBold(true);
    const int captionWidth =
        QFontMetrics(title).horizontalAdvance(caption) * 5 / 4 + 8 * QFontMetrics(title).height();
    dialog->CaptionWidth = captionWidth;
    return dialog;
}

TDialogHooks& DialogHooks() {
    static TDialogHooks hooks = RealHooks();
    return hooks;
}

void ResetDialogHooks() {
    DialogHooks() = RealHooks();
}

QString ToQtFilter(const QString& filter) {
    const QStringList parts = filter.split(u'|');
    QStringList result;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i];
        // The toolkit reads the patterns from the last parentheses; drop the description's own list.
        const qsizetype open = description.lastIndexOf(u'(');
        if (open > 0 && description.endsWith(u')')) description = description.left(open).trimmed();
        QString patterns = parts[i + 1];
        patterns.replace(u';', u' ');
        result << description + QStringLiteral(" (") + patterns.simplified() + u')';
    }
    return result.join(QStringLiteral(";;"));
}

} // namespace velkor
