// The find and replace dialog: its controls, option bits and rules, the history, and the page's Find,
// Replace and Search Again with the not-found message.
#include "editor/search_options.h"
#include "ide/edit_page.h"
#include "ide/find_dialog.h"
#include "ide/main_window.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>

#include <deque>

namespace velkor::test {
namespace {

class FindDialogTest : public PageTest {
protected:
    template <typename T>
    static T* Child(QWidget& dialog, const char* name) {
        T* child = dialog.findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(child, nullptr) << name;
        return child;
    }

    // Answers the next modal dialogs with `act`, which returns the result code.
    void OnDialog(std::function<int(TSyntaxFindDialog&)> act) {
        DialogHooks().ExecModal = [this, act](QDialog& dialog) {
            ++modalDialogs_;
            return act(static_cast<TSyntaxFindDialog&>(dialog));
        };
    }

    // Sets the text to find and presses a button the way the user would.
    static int Press(TSyntaxFindDialog& dialog, QPushButton* button) {
        dialog.setResult(QDialog::Rejected);
        button->click();
        return dialog.result();
    }
};

TEST_F(FindDialogTest, ControlsCaptionsAndOptionBits) {
    TSyntaxFindDialog dialog;
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Find or replace text"));
    QStringList groups;
    for (const QGroupBox* group : dialog.findChildren<QGroupBox*>()) groups << group->title();
    groups.sort();
    EXPECT_EQ(groups, (QStringList{" Direction: ", " Operation: ", " Options: ", " Scope: ", "Origin: "}));
    QStringList labels;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) labels << label->text();
    EXPECT_TRUE(labels.contains(QStringLiteral("Text to find:")));
    EXPECT_TRUE(labels.contains(QStringLiteral("Text to insert:")));
    EXPECT_EQ(dialog.OkButton()->text(), QStringLiteral("OK"));
    EXPECT_TRUE(dialog.OkButton()->isDefault());
    EXPECT_EQ(dialog.ReplaceAllButton()->text(), QStringLiteral("Replace &all"));
    EXPECT_EQ(dialog.CancelButton()->text(), QStringLiteral("Cancel"));
    EXPECT_NE(dialog.findChild<QStatusBar*>(), nullptr);
    // Initially: forward, global, from cursor, search only, prompt on replace. Each option box alone adds
    // its bit; the radio buttons add theirs (prompt off).
    EXPECT_EQ(dialog.Options(), unsigned{ssoPrompt});
    Child<QCheckBox>(dialog, "PromptCheckBox")->setChecked(false);
    unsigned radios = 0;
    for (const QStringList& row : ReadCases("find_dialog.txt")) {
        SCOPED_TRACE(row[0].toStdString());
        auto* button = Child<QAbstractButton>(dialog, row[0].toLatin1().constData());
        EXPECT_EQ(button->text(), row[1]);
        const unsigned bit = row[2].toUInt(nullptr, 16);
        const bool box = qobject_cast<QCheckBox*>(button) != nullptr;
        button->setChecked(true);
        radios |= box ? 0 : bit;
        EXPECT_EQ(dialog.Options(), radios | (box ? bit : 0));
        if (box) button->setChecked(false);
    }
    EXPECT_EQ(dialog.Options(), 1u | 0x100 | 2 | 64);
}

TEST_F(FindDialogTest, EnablingRules) {
    TSyntaxFindDialog dialog;
    dialog.SetFindText({});
    EXPECT_FALSE(dialog.OkButton()->isEnabled());
    EXPECT_FALSE(dialog.ReplaceAllButton()->isEnabled());
    EXPECT_FALSE(dialog.NewTextComboBox()->isEnabled());
    EXPECT_FALSE(Child<QCheckBox>(dialog, "PromptCheckBox")->isEnabled());
    dialog.SetFindText(QStringLiteral("x"));
    EXPECT_TRUE(dialog.OkButton()->isEnabled());
    EXPECT_FALSE(dialog.ReplaceAllButton()->isEnabled());
    dialog.SetReplaceMode(true);
    EXPECT_TRUE(dialog.ReplaceAllButton()->isEnabled());
    EXPECT_TRUE(dialog.NewTextComboBox()->isEnabled());
    EXPECT_TRUE(Child<QCheckBox>(dialog, "PromptCheckBox")->isEnabled());
    dialog.SetFindText({});
    EXPECT_FALSE(dialog.ReplaceAllButton()->isEnabled());

    // A regular expression cannot go backward, compress spaces or match whole words.
    Child<QCheckBox>(dialog, "RECheckBox")->setChecked(true);
    for (const char* name : {"CompressCheckBox", "WholeWordCheckBox"})
        EXPECT_FALSE(Child<QCheckBox>(dialog, name)->isEnabled()) << name;
    EXPECT_FALSE(Child<QRadioButton>(dialog, "BackwardRadioButton")->isEnabled());
    EXPECT_FALSE(Child<QRadioButton>(dialog, "ForwardRadioButton")->isEnabled());
    Child<QCheckBox>(dialog, "RECheckBox")->setChecked(false);
    EXPECT_TRUE(Child<QRadioButton>(dialog, "BackwardRadioButton")->isEnabled());

    // On showing, the find box has the focus.
    dialog.SetFindText(QStringLiteral("y"));
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    ProcessEvents();
    EXPECT_TRUE(dialog.FindTextComboBox()->hasFocus() || dialog.FindTextComboBox()->lineEdit()->hasFocus());
}

TEST_F(FindDialogTest, HistoryHoldsEachTextOnceMostRecentFirst) {
    TSyntaxFindDialog dialog;
    for (const char* text : {"alpha", "beta", "alpha", "gamma", "alpha"}) {
        dialog.SetFindText(QString::fromLatin1(text));
        EXPECT_EQ(Press(dialog, dialog.OkButton()), QDialog::Accepted);
    }
    EXPECT_EQ(dialog.FindHistory(), (QStringList{"alpha", "gamma", "beta"}));
    EXPECT_EQ(dialog.FindTextComboBox()->currentIndex(), 0);
    dialog.SetReplaceMode(true);
    dialog.SetFindText(QStringLiteral("beta"));
    EXPECT_EQ(Press(dialog, dialog.ReplaceAllButton()), TSyntaxFindDialog::kReplaceAllResult);
    EXPECT_EQ(dialog.FindHistory(), (QStringList{"beta", "alpha", "gamma"}));
    EXPECT_EQ(Press(dialog, dialog.CancelButton()), QDialog::Rejected);
}

TEST_F(FindDialogTest, FindFillsTheBoxSearchesAndSaysWhenNothingIsFound) {
    TfrmMain window({});
    TfrmEdit* page = window.ActivePage();
    page->Memo()->SetText(QStringLiteral("var ship;\r\nship := Ship + 1;\r\n"));
    page->Memo()->SetCaret(0, 5);
    QString filled;
    bool replaceMode = true;
    OnDialog([&](TSyntaxFindDialog& dialog) {
        filled = dialog.FindText();
        replaceMode = dialog.NewTextComboBox()->isEnabled();
        return Press(dialog, dialog.OkButton());
    });
    window.MenuItem(QStringLiteral("MenuEditFind"))->trigger();
    EXPECT_EQ(filled, QStringLiteral("ship"));
    EXPECT_FALSE(replaceMode);
    EXPECT_EQ(page->LastSearchOptions(), unsigned{ssoPrompt});
    EXPECT_EQ(page->Memo()->selectedText(), QStringLiteral("ship"));
    EXPECT_EQ(page->Memo()->CaretLine(), 1);
    // Search Again continues from the cursor without the dialog.
    window.MenuItem(QStringLiteral("MenuEditSearchAgain"))->trigger();
    EXPECT_EQ(modalDialogs_, 1);
    EXPECT_EQ(page->Memo()->selectedText(), QStringLiteral("Ship"));
    window.MenuItem(QStringLiteral("MenuEditSearchAgain"))->trigger();
    EXPECT_EQ(messages_, QStringList{"No further occurence of 'ship' found."});

    // A selection within one line is what the box is filled with; case sensitive finds nothing more.
    page->Memo()->setSelection(1, 8, 1, 12);
    OnDialog([&](TSyntaxFindDialog& dialog) {
        filled = dialog.FindText();
        dialog.findChild<QCheckBox*>(QStringLiteral("CaseCheckBox"))->setChecked(true);
        return Press(dialog, dialog.OkButton());
    });
    page->Find();
    EXPECT_EQ(filled, QStringLiteral("Ship"));
    EXPECT_EQ(messages_.size(), 2);
    EXPECT_EQ(messages_.back(), QStringLiteral("No further occurence of 'Ship' found."));
    OnDialog([&](TSyntaxFindDialog& dialog) {
        dialog.findChild<QCheckBox*>(QStringLiteral("CaseCheckBox"))->setChecked(false);
        return static_cast<int>(QDialog::Rejected);
    });
    page->Find(); // cancelled: nothing searched, options unchanged
    EXPECT_EQ(messages_.size(), 2);
    EXPECT_EQ(page->LastSearchOptions(), ssoPrompt | ssoMatchCase);
}

TEST_F(FindDialogTest, ReplaceAndReplaceAll) {
    TfrmMain window({});
    TfrmEdit* page = window.ActivePage();
    page->Memo()->SetText(QStringLiteral("a := old; b := old; c := old;"));
    page->Memo()->SetCaret(0, 0);
    OnDialog([&](TSyntaxFindDialog& dialog) {
        EXPECT_TRUE(dialog.NewTextComboBox()->isEnabled());
        dialog.SetFindText(QStringLiteral("old"));
        dialog.NewTextComboBox()->setEditText(QStringLiteral("new"));
        dialog.findChild<QCheckBox*>(QStringLiteral("PromptCheckBox"))->setChecked(false);
        return Press(dialog, dialog.OkButton());
    });
    window.MenuItem(QStringLiteral("MenuEditReplace"))->trigger();
    EXPECT_EQ(page->Text(), QStringLiteral("a := new; b := old; c := old;"));
    EXPECT_EQ(page->LastSearchOptions(), unsigned{ssoReplace});

    OnDialog([&](TSyntaxFindDialog& dialog) {
        EXPECT_EQ(dialog.FindText(), QStringLiteral("a")); // the word at the cursor
        dialog.SetFindText(QStringLiteral("old"));
        return Press(dialog, dialog.ReplaceAllButton());
    });
    page->Memo()->SetCaret(0, 0);
    page->Replace();
    EXPECT_EQ(page->Text(), QStringLiteral("a := new; b := new; c := new;"));
    EXPECT_EQ(page->LastSearchOptions(), unsigned{ssoReplace | ssoReplaceAll});

    // Backward and from the home position with a regular expression.
    page->Memo()->SetText(QStringLiteral("x1 x22 x333"));
    page->Memo()->SetCaret(0, 0);
    OnDialog([&](TSyntaxFindDialog& dialog) {
        dialog.SetReplaceMode(false);
        dialog.SetFindText(QStringLiteral("x\\d\\d+"));
        dialog.findChild<QCheckBox*>(QStringLiteral("RECheckBox"))->setChecked(true);
        dialog.findChild<QRadioButton*>(QStringLiteral("HomeRadioButton"))->setChecked(true);
        return Press(dialog, dialog.OkButton());
    });
    page->Find();
    EXPECT_EQ(page->Memo()->selectedText(), QStringLiteral("x22"));
    // Search Again drops "home" and "selected text": it goes on from the cursor.
    page->SearchAgain();
    EXPECT_EQ(page->Memo()->selectedText(), QStringLiteral("x333"));
}

TEST_F(FindDialogTest, PromptOnReplaceAsksForEveryMatch) {
    TfrmMain window({});
    TfrmEdit* page = window.ActivePage();
    page->Memo()->SetText(QStringLiteral("old old old old"));
    page->Memo()->SetCaret(0, 0);
    std::deque<TReplaceAnswer> answers = {TReplaceAnswer::Yes, TReplaceAnswer::No, TReplaceAnswer::All};
    DialogHooks().AskReplace = [&](QWidget*, const QString& found) {
        replacePrompts_ << found;
        const TReplaceAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    };
    OnDialog([&](TSyntaxFindDialog& dialog) {
        dialog.SetFindText(QStringLiteral("old"));
        dialog.NewTextComboBox()->setEditText(QStringLiteral("new"));
        EXPECT_TRUE(dialog.findChild<QCheckBox*>(QStringLiteral("PromptCheckBox"))->isChecked());
        return Press(dialog, dialog.ReplaceAllButton());
    });
    page->Replace();
    EXPECT_EQ(page->Text(), QStringLiteral("new old new new"));
    EXPECT_EQ(replacePrompts_, (QStringList{"old", "old", "old"}));
    EXPECT_EQ(page->LastSearchOptions(), unsigned{ssoPrompt | ssoReplace | ssoReplaceAll});
}

TEST_F(FindDialogTest, SearchAgainBeforeAnyFindOpensTheDialog) {
    TfrmMain window({});
    TfrmEdit* page = window.ActivePage();
    page->Memo()->SetText(QStringLiteral("  "));
    QString caption;
    OnDialog([&](TSyntaxFindDialog& dialog) {
        caption = dialog.windowTitle();
        return static_cast<int>(QDialog::Rejected);
    });
    window.MenuItem(QStringLiteral("MenuEditSearchAgain"))->trigger();
    EXPECT_EQ(modalDialogs_, 1);
    EXPECT_EQ(caption, QStringLiteral("Find or replace text"));
    EXPECT_TRUE(messages_.isEmpty());
}

} // namespace
} // namespace velkor::test
