// The find and replace dialog itself: its controls, option bits, rules and history.
#include "editor/search_options.h"
#include "ide/find_dialog.h"
#include "tests/ide/edit_page_test_support.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>

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

    // Presses a button the way the user would and gives the dialog's result.
    static int Press(TSyntaxFindDialog& dialog, QPushButton* button) {
        dialog.setResult(QDialog::Rejected);
        button->click();
        return dialog.result();
    }
};

TEST_F(FindDialogTest, ControlsCaptionsAndOptionBits) {
    TSyntaxFindDialog dialog;
    // Every caption, sorted: the title, the groups, the labels and the buttons.
    QStringList texts{dialog.windowTitle()};
    for (const QGroupBox* group : dialog.findChildren<QGroupBox*>()) texts << group->title();
    for (const QLabel* label : dialog.findChildren<QLabel*>()) texts << label->text();
    for (const QPushButton* button : dialog.findChildren<QPushButton*>()) texts << button->text();
    texts.sort();
    QStringList expected;
    for (const QStringList& row : ReadCases("find_dialog_captions.txt"))
        expected << row[0].mid(1, row[0].size() - 2);
    EXPECT_EQ(texts, expected);
    EXPECT_TRUE(dialog.OkButton()->isDefault());
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
    for (const QStringList& row : ReadCases("find_dialog_rules.txt")) {
        SCOPED_TRACE(row.join(u'\t').toStdString());
        ASSERT_EQ(row.size(), 5);
        TSyntaxFindDialog dialog;
        dialog.SetFindText(row[0] == u'-' ? QString() : row[0]);
        dialog.SetReplaceMode(row[1] == u"replace");
        for (const QString& state : row[2].split(u' '))
            Child<QCheckBox>(dialog, "RECheckBox")->setChecked(state == u"on");
        for (const int enabled : {1, 0}) {
            for (const QString& name : row[4 - enabled].split(u' ', Qt::SkipEmptyParts))
                if (name != u'-')
                    EXPECT_EQ(Child<QWidget>(dialog, name.toLatin1().constData())->isEnabled(), enabled != 0)
                        << name.toStdString();
        }
    }
    TSyntaxFindDialog dialog;
    // On showing, the find box has the focus.
    dialog.SetFindText(QStringLiteral("y"));
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    ProcessEvents();
    EXPECT_TRUE(dialog.FindTextComboBox()->hasFocus() || dialog.FindTextComboBox()->lineEdit()->hasFocus());
}

TEST_F(FindDialogTest, HistoryHoldsEachTextOnceMostRecentFirstAndTheBoxCompletesInItsDropDown) {
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

    // The find box completes only in its drop-down, not in the text typed.
    dialog.show();
    QComboBox* box = dialog.FindTextComboBox();
    box->addItem(QStringLiteral("Foe(\\d)"));
    box->setEditText(QString());
    QTest::keyClicks(box->lineEdit(), QStringLiteral("Foe"));
    EXPECT_EQ(box->currentText(), QStringLiteral("Foe"));
    EXPECT_EQ(box->lineEdit()->selectedText(), QString());
    QTest::keyClicks(box->lineEdit(), QStringLiteral("x"));
    EXPECT_EQ(box->currentText(), QStringLiteral("Foex"));
}

} // namespace
} // namespace velkor::test
