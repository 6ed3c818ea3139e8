// TSyntaxFindDialog: the one find and replace dialog of the IDE. It only collects the request (texts,
// option bits, which button closed it); the page lets its editor search.
#pragma once

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QStatusBar;

namespace velkor {

class TSyntaxFindDialog : public QDialog {
    Q_OBJECT

public:
    // Result code of exec() when "Replace &all" closed the dialog.
    static constexpr int kReplaceAllResult = 2;

    explicit TSyntaxFindDialog(QWidget* parent = nullptr);

    QString FindText() const;
    void SetFindText(const QString& text);
    QString NewText() const;
    // Selects "Search and replace" or "Search only".
    void SetReplaceMode(bool replace);
    // The option bits of the checked controls (ssoReplaceAll is added by the caller from the result).
    unsigned Options() const;
    // The texts of the find history, most recent first.
    QStringList FindHistory() const;

    // The rules that enable the controls; run on every change and on activation.
    void UpdateControls();

    // The controls by their names, for the page and for tests.
    QComboBox* FindTextComboBox() const { return findText_; }
    QComboBox* NewTextComboBox() const { return newText_; }
    QPushButton* OkButton() const { return ok_; }
    QPushButton* ReplaceAllButton() const { return replaceAll_; }
    QPushButton* CancelButton() const { return cancel_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Confirm(int result);
    void RememberFindText();

    QComboBox* findText_;      // FindTextComboBox, with the find history
    QComboBox* newText_;       // NewTextComboBox, with its own history
    QLabel* newTextLabel_;     // "Text to insert:"
    QCheckBox* case_;          // CaseCheckBox
    QCheckBox* wholeWord_;     // WholeWordCheckBox
    QCheckBox* nonSpacing_;    // NonSpacingCheckBox
    QCheckBox* compress_;      // CompressCheckBox
    QCheckBox* prompt_;        // PromptCheckBox
    QCheckBox* regExpr_;       // RECheckBox
    QRadioButton* forward_;    // ForwardRadioButton
    QRadioButton* backward_;   // BackwardRadioButton
    QRadioButton* global_;     // GlobalRadioButton
    QRadioButton* selected_;   // SelectedRadioButton
    QRadioButton* fromCursor_; // RadioButton5
    QRadioButton* home_;       // HomeRadioButton
    QRadioButton* searchOnly_; // SearchRadioButton
    QRadioButton* replace_;    // ReplaceRadioButton
    QPushButton* ok_;          // "OK", the default button
    QPushButton* replaceAll_;  // "Replace &all"
    QPushButton* cancel_;      // "Cancel"
    QStatusBar* statusBar_;    // one panel
};

} // namespace velkor
