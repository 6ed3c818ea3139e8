// Code assistance on a compiled page beyond the scenarios in tests/cases/ide/scenarios: the mouse hint,
// the kept range error of Find Declaration, completion into the symbol browser, the string list and the
// context menu's captions.
#include "ide/proc_list.h"
#include "iff/iff_strings.h"
#include "tests/ide/edit_page_test_support.h"

#include <QTreeWidget>

namespace velkor::test {
namespace {

class CodeAssistTest : public PageTest {};

TEST_F(CodeAssistTest, OnTheCompiledDemo) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    Show(window, 900, 700);
    TSyntaxEdit* memo = page->Memo();
    // The mouse hint names the symbol under the pointer.
    memo->setFirstVisibleLine(0);
    const auto hintAt = [&](int line, int index) {
        return page->SymbolHintAt(TextRect(*memo, line, index, index).topLeft() + QPoint(2, 4));
    };
    EXPECT_EQ(hintAt(8, 11), QStringLiteral("Function Attack (2 parameters) - Demo.pas (9)"));
    EXPECT_EQ(hintAt(1, 8), QStringLiteral("Constant MAXWAVE = 3 - Demo.pas (2)"));
    EXPECT_EQ(hintAt(16, 22), QStringLiteral("Function Boost (1 parameter) - helpers.pas (6)"));
    EXPECT_EQ(page->SymbolHintAt(QPoint(2000, 2000)), QString());

    // A declaration above line five is the kept range error of Find Declaration.
    EXPECT_THROW(page->ShowDeclarationLine(0), ERangeError);
    EXPECT_THROW(page->ShowDeclarationLine(4), ERangeError);
    EXPECT_NO_THROW(page->ShowDeclarationLine(5));
    EXPECT_EQ(memo->CaretLine(), 4);

    // Completion with several matches or none opens the symbol browser, filtered.
    QString filter;
    int mask = 0, rows = -1;
    DialogHooks().ExecModal = [&](QDialog& dialog) {
        auto& list = static_cast<TfrmProcList&>(dialog);
        filter = list.edtMethods()->text();
        mask = list.KindMask();
        rows = list.lvProcs()->topLevelItemCount();
        return 0;
    };
    for (const auto& [word, found] : {std::pair{"ship", 3}, std::pair{"nothing", 0}}) {
        memo->SetText(QString::fromLatin1(word));
        memo->SetCaret(0, 3);
        page->CompleteWordAtCursor();
        EXPECT_EQ(filter, QString::fromLatin1(word));
        EXPECT_EQ(mask, 15);
        EXPECT_EQ(rows, found); // SHIPCOUNT, shipsLeft, shipBonus
        EXPECT_EQ(page->Text(), QString::fromLatin1(word));
    }
}

TEST_F(CodeAssistTest, TheStringListOpensOnTheTableAndInsertsTheChosenString) {
    TIffStringList table;
    table.Lines = {"Hello pilot", "Second line", "Sector clear", "padding padding"};
    table.InfoText1 = "English";
    table.InfoText2 = "Default";
    table.SaveToFile(Dir() / "texts.eng");
    TfrmMain window({});
    TfrmEdit* page =
        window.OpenFile(MakeFile("talk.pas", "mission Talk;\r\n#STRINGS texts;\r\nvar x;\r\n"), false);
    ASSERT_NE(page, nullptr);
    ASSERT_TRUE(page->Compile()) << Output(window);
    window.show();
    page->Memo()->SetText(QStringLiteral("x := texts"));
    page->Memo()->SetCaret(0, 10);
    QTest::keyClick(page->Memo(), Qt::Key_8, Qt::AltModifier);
    QListWidget* list = page->lbCodeHelp();
    ASSERT_TRUE(list->isVisible());
    ASSERT_EQ(list->count(), 4);
    EXPECT_EQ(list->item(1)->text(), QStringLiteral("Second line"));
    EXPECT_EQ(list->palette().color(QPalette::Base), list->palette().color(QPalette::ToolTipBase));
    // Typing goes on in the editor while the list follows the prefix; Up and Down move in the list only.
    QTest::keyClicks(page->Memo(), QStringLiteral("[Se"));
    EXPECT_EQ(list->currentRow(), 1);
    QTest::keyClick(page->Memo(), Qt::Key_Down);
    EXPECT_EQ(list->currentRow(), 2);
    EXPECT_EQ(page->Memo()->CaretLine(), 0);
    QTest::keyClick(page->Memo(), Qt::Key_Return);
    EXPECT_FALSE(list->isVisible());
    EXPECT_EQ(page->Text(), QStringLiteral("x := texts[\"Sector clear\""));

    // Escape hides the list and leaves the text.
    QTest::keyClick(page->Memo(), Qt::Key_8, Qt::AltModifier);
    EXPECT_FALSE(list->isVisible()); // the caret is not on the table's name
    page->Memo()->SetText(QStringLiteral("texts"));
    page->Memo()->SetCaret(0, 5);
    QTest::keyClick(page->Memo(), Qt::Key_BracketLeft);
    ASSERT_TRUE(list->isVisible());
    QTest::keyClick(page->Memo(), Qt::Key_Escape);
    EXPECT_FALSE(list->isVisible());
    EXPECT_EQ(page->Text(), QStringLiteral("texts["));
}

TEST_F(CodeAssistTest, ContextMenuCaptions) {
    TfrmMain window({});
    const auto expected = ReadCases("context_menu.txt");
    const QList<QAction*> actions = window.ActivePage()->PopupMenu1()->actions();
    ASSERT_EQ(actions.size(), static_cast<qsizetype>(expected.size()));
    for (qsizetype i = 0; i < actions.size(); ++i) {
        const QStringList& row = expected[static_cast<std::size_t>(i)];
        EXPECT_EQ(actions[i]->text(), row[0] == u'-' ? QString() : row[0]);
        if (row.size() > 1) {
            EXPECT_EQ(actions[i]->shortcut(), QKeySequence(row[1])) << row[0].toStdString();
        }
    }
}

} // namespace
} // namespace velkor::test
