#include "ide/find_dialog.h"

#include "editor/search_options.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QVBoxLayout>

namespace velkor {
namespace {

QCheckBox* AddCheck(QVBoxLayout* layout, const char* name, const char* caption) {
    auto* box = new QCheckBox(QString::fromLatin1(caption));
    box->setObjectName(QString::fromLatin1(name));
    layout->addWidget(box);
    return box;
}

// A group of two radio buttons, the first one checked.
QGroupBox* RadioGroup(const char* title, QRadioButton*& first, const char* firstName,
                      const char* firstCaption, QRadioButton*& second, const char* secondName,
                      const char* secondCaption) {
    auto* group = new QGroupBox(QString::fromLatin1(title));
    auto* layout = new QVBoxLayout(group);
    first = new QRadioButton(QString::fromLatin1(firstCaption));
    first->setObjectName(QString::fromLatin1(firstName));
    second = new QRadioButton(QString::fromLatin1(secondCaption));
    second->setObjectName(QString::fromLatin1(secondName));
    first->setChecked(true);
    layout->addWidget(first);
    layout->addWidget(second);
    return group;
}

QComboBox* HistoryBox(const char* name) {
    auto* box = new QComboBox;
    box->setObjectName(QString::fromLatin1(name));
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setMinimumWidth(280);
    // An earlier entry is offered in the drop-down, never typed into the box: "Foe" stays "Foe".
    box->completer()->setCompletionMode(QCompleter::PopupCompletion);
    box->completer()->setCaseSensitivity(Qt::CaseSensitive);
    return box;
}

// Puts `text` at the top of the box's list, removing an earlier copy, and selects it.
void MoveToTop(QComboBox* box, const QString& text) {
    const int old = box->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (old >= 0) box->removeItem(old);
    box->insertItem(0, text);
    box->setCurrentIndex(0);
}

} // namespace

TSyntaxFindDialog::TSyntaxFindDialog(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("SyntaxFindDialog"));
    setWindowTitle(QStringLiteral("Find or replace text"));

    findText_ = HistoryBox("FindTextComboBox");
    newText_ = HistoryBox("NewTextComboBox");
    auto* findLabel = new QLabel(QStringLiteral("Text to find:"));
    findLabel->setBuddy(findText_);
    newTextLabel_ = new QLabel(QStringLiteral("Text to insert:"));
    newTextLabel_->setBuddy(newText_);
    auto* texts = new QGridLayout;
    texts->addWidget(findLabel, 0, 0);
    texts->addWidget(findText_, 0, 1);
    texts->addWidget(newTextLabel_, 1, 0);
    texts->addWidget(newText_, 1, 1);

    auto* options = new QGroupBox(QStringLiteral(" Options: "));
    auto* optionsLayout = new QVBoxLayout(options);
    case_ = AddCheck(optionsLayout, "CaseCheckBox", "&Case sensitive");
    wholeWord_ = AddCheck(optionsLayout, "WholeWordCheckBox", "&Whole words only");
    nonSpacing_ = AddCheck(optionsLayout, "NonSpacingCheckBox", "&Ignore non-spacing characters");
    compress_ = AddCheck(optionsLayout, "CompressCheckBox", "Space c&ompression");
    prompt_ = AddCheck(optionsLayout, "PromptCheckBox", "&Prompt on replace");
    regExpr_ = AddCheck(optionsLayout, "RECheckBox", "&Regular expression");
    prompt_->setChecked(true);

    QGroupBox* direction = RadioGroup(" Direction: ", forward_, "ForwardRadioButton", "Forwar&d", backward_,
                                      "BackwardRadioButton", "&Backward");
    QGroupBox* scope = RadioGroup(" Scope: ", global_, "GlobalRadioButton", "&Global", selected_,
                                  "SelectedRadioButton", "&Selected text");
    QGroupBox* origin = RadioGroup("Origin: ", fromCursor_, "RadioButton5", "&From cursor", home_,
                                   "HomeRadioButton", "From &home position");
    QGroupBox* operation = RadioGroup(" Operation: ", searchOnly_, "SearchRadioButton", "Search only",
                                      replace_, "ReplaceRadioButton", "Search and replace");

    ok_ = new QPushButton(QStringLiteral("OK"));
    ok_->setObjectName(QStringLiteral("OKButton"));
    ok_->setDefault(true);
    replaceAll_ = new QPushButton(QStringLiteral("Replace &all"));
    replaceAll_->setObjectName(QStringLiteral("ReplaceAllButton"));
    cancel_ = new QPushButton(QStringLiteral("Cancel"));
    cancel_->setObjectName(QStringLiteral("CancelButton"));
    statusBar_ = new QStatusBar;
    statusBar_->setObjectName(QStringLiteral("StatusBar1"));
    statusBar_->setSizeGripEnabled(false);

    auto* left = new QVBoxLayout;
    left->addWidget(options);
    left->addWidget(operation);
    auto* right = new QVBoxLayout;
    right->addWidget(direction);
    right->addWidget(scope);
    right->addWidget(origin);
    auto* groups = new QHBoxLayout;
    groups->addLayout(left);
    groups->addLayout(right);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok_);
    buttons->addWidget(replaceAll_);
    buttons->addWidget(cancel_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(texts);
    layout->addLayout(groups);
    layout->addLayout(buttons);
    layout->addWidget(statusBar_);

    connect(ok_, &QPushButton::clicked, this, [this] { Confirm(QDialog::Accepted); });
    connect(replaceAll_, &QPushButton::clicked, this, [this] { Confirm(kReplaceAllResult); });
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);
    connect(findText_, &QComboBox::editTextChanged, this, &TSyntaxFindDialog::UpdateControls);
    for (QAbstractButton* button :
         {static_cast<QAbstractButton*>(regExpr_), static_cast<QAbstractButton*>(replace_),
          static_cast<QAbstractButton*>(searchOnly_)})
        connect(button, &QAbstractButton::toggled, this, &TSyntaxFindDialog::UpdateControls);
    UpdateControls();
}

QString TSyntaxFindDialog::FindText() const {
    return findText_->currentText();
}

void TSyntaxFindDialog::SetFindText(const QString& text) {
    findText_->setEditText(text);
}

QString TSyntaxFindDialog::NewText() const {
    return newText_->currentText();
}

void TSyntaxFindDialog::SetReplaceMode(bool replace) {
    (replace ? replace_ : searchOnly_)->setChecked(true);
    UpdateControls();
}

unsigned TSyntaxFindDialog::Options() const {
    unsigned options = 0;
    if (case_->isChecked()) options |= ssoMatchCase;
    if (wholeWord_->isChecked()) options |= ssoWholeWord;
    if (nonSpacing_->isChecked()) options |= ssoIgnoreNonSpacing;
    if (compress_->isChecked()) options |= ssoSpaceCompress;
    if (prompt_->isChecked()) options |= ssoPrompt;
    if (regExpr_->isChecked()) options |= ssoRegExpr;
    if (backward_->isChecked()) options |= ssoBackwards;
    if (selected_->isChecked()) options |= ssoSelectedOnly;
    if (home_->isChecked()) options |= ssoEntireScope;
    if (replace_->isChecked()) options |= ssoReplace;
    return options;
}

QStringList TSyntaxFindDialog::FindHistory() const {
    QStringList texts;
    for (int i = 0; i < findText_->count(); ++i) texts << findText_->itemText(i);
    return texts;
}

void TSyntaxFindDialog::UpdateControls() {
    const bool plain = !regExpr_->isChecked();
    compress_->setEnabled(plain);
    wholeWord_->setEnabled(plain);
    forward_->setEnabled(plain);
    backward_->setEnabled(plain);
    const bool replacing = replace_->isChecked();
    newText_->setEnabled(replacing);
    newTextLabel_->setEnabled(replacing);
    prompt_->setEnabled(replacing);
    ok_->setEnabled(!findText_->currentText().isEmpty());
    replaceAll_->setEnabled(ok_->isEnabled() && replacing);
}

void TSyntaxFindDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    UpdateControls();
    findText_->setFocus();
    if (findText_->lineEdit()) findText_->lineEdit()->selectAll();
}

void TSyntaxFindDialog::RememberFindText() {
    MoveToTop(findText_, findText_->currentText());
    if (replace_->isChecked() && !newText_->currentText().isEmpty())
        MoveToTop(newText_, newText_->currentText());
}

void TSyntaxFindDialog::Confirm(int result) {
    if (findText_->currentText().isEmpty()) return;
    RememberFindText();
    done(result);
}

} // namespace velkor
