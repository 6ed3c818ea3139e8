// Code assistance on a compiled page: Find Declaration (also into an include file and with the kept range
// error), completion, parameter hints and their keys, the string list, Open File at Cursor, the mouse
// hint, the context menu.
#include "compiler/symbol_queries.h"
#include "ide/edit_page.h"
#include "ide/help_view.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "ide/proc_list.h"
#include "ide/reg_mru.h"
#include "iff/iff_strings.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

namespace velkor::test {
namespace {

class CodeAssistTest : public PageTest {
protected:
    // Puts the caret at the first occurrence of `text` plus `offset` characters.
    static void CaretAt(TfrmEdit& page, const QString& text, int offset = 0) {
        const QStringList lines = page.Memo()->Lines();
        for (int line = 0; line < lines.size(); ++line) {
            const qsizetype column = lines[line].indexOf(text);
            if (column >= 0) {
                page.Memo()->setCursorPosition(line, static_cast<int>(column) + offset);
                return;
            }
        }
        ADD_FAILURE() << "not in the text: " << text.toStdString();
    }
};

TEST_F(CodeAssistTest, FindDeclarationInThePageInAnIncludeAndTheKeptRangeError) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    CaretAt(*page, QStringLiteral("Attack(kills"), 2);
    page->Memo()->setFirstVisibleLine(12);
    page->ContextItem(QStringLiteral("ContextFindDeclaration"))->trigger();
    EXPECT_EQ(page->Memo()->CaretLine(), 8);
    EXPECT_EQ(page->Memo()->CaretColumn(), 0);
    EXPECT_EQ(page->Memo()->firstVisibleLine(), 3);
    EXPECT_EQ(window.Pages().size(), 1);

    // No symbol at the cursor: nothing moves.
    CaretAt(*page, QStringLiteral("begin"));
    page->FindDeclaration();
    EXPECT_EQ(page->Memo()->CaretLine(), 9);
    EXPECT_TRUE(messages_.isEmpty());

    // Into the include, which opens.
    CaretAt(*page, QStringLiteral("Boost(a)"), 1);
    page->FindDeclaration();
    ASSERT_EQ(window.Pages().size(), 2);
    TfrmEdit* helpers = window.ActivePage();
    ASSERT_NE(helpers, page);
    EXPECT_EQ(helpers->Caption(), QStringLiteral("helpers.pas"));
    EXPECT_EQ(helpers->Memo()->CaretLine(), 5);
    EXPECT_EQ(helpers->Memo()->firstVisibleLine(), 0);
    EXPECT_TRUE(messages_.isEmpty());
    // The declaring file went to the recent list.
    ASSERT_FALSE(window.RegMru1().Items().empty());
    EXPECT_EQ(window.RegMru1().Items()[0].Path, Path("helpers.pas"));

    // A second jump activates the open page instead of loading it again.
    window.ActivatePage(*page);
    page->FindDeclaration();
    EXPECT_EQ(window.Pages().size(), 2);
    EXPECT_EQ(window.ActivePage(), helpers);

    // A declaration above line five is the kept range error.
    window.ActivatePage(*page);
    CaretAt(*page, QStringLiteral("Attack(kills, "), 8);
    ASSERT_EQ(page->WordAtCursor(), QStringLiteral("kills"));
    page->FindDeclaration();
    EXPECT_EQ(messages_, QStringList{"Range check error"});
    // The caret reached the line before the top line failed.
    EXPECT_EQ(page->Memo()->CaretLine(), 2);
    EXPECT_THROW(page->ShowDeclarationLine(0), ERangeError);
    EXPECT_THROW(page->ShowDeclarationLine(4), ERangeError);
    EXPECT_NO_THROW(page->ShowDeclarationLine(5));
    EXPECT_EQ(page->Memo()->CaretLine(), 4);
}

TEST_F(CodeAssistTest, CompletionAtTheCursor) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    page->Memo()->SetText(page->Text() + QStringLiteral("atta"));
    page->Memo()->SetCaret(page->Memo()->LineCount() - 1, 4);
    page->ContextItem(QStringLiteral("CompleteWordAtCursor1"))->trigger();
    EXPECT_EQ(page->Memo()->LineText(page->Memo()->LineCount() - 1), QStringLiteral("Attack("));
    ASSERT_NE(page->ParameterHint(), nullptr);
    EXPECT_EQ(page->ParameterHint()->text(), QStringLiteral("Attack(<b>ship</b>, target)"));
    EXPECT_EQ(modalDialogs_, 0);

    // A word in the middle of a line: the whole word is replaced, a constant has no bracket.
    page->CloseParameterHint();
    page->Memo()->SetText(QStringLiteral("x := maxw + 1;"));
    page->Memo()->SetCaret(0, 7);
    page->CompleteWordAtCursor();
    EXPECT_EQ(page->Text(), QStringLiteral("x := MAXWAVE + 1;"));
    EXPECT_EQ(page->ParameterHint(), nullptr);

    // Several matches or none: the symbol browser opens, filtered.
    QString filter;
    int mask = 0;
    int rows = -1;
    DialogHooks().ExecModal = [&](QDialog& dialog) {
        auto& list = static_cast<TfrmProcList&>(dialog);
        filter = list.edtMethods()->text();
        mask = list.KindMask();
        rows = list.lvProcs()->topLevelItemCount();
        return 0;
    };
    page->Memo()->SetText(QStringLiteral("ship"));
    page->Memo()->SetCaret(0, 4);
    page->CompleteWordAtCursor();
    EXPECT_EQ(filter, QStringLiteral("ship"));
    EXPECT_EQ(mask, 15);
    EXPECT_EQ(rows, 3); // SHIPCOUNT, shipsLeft, shipBonus
    EXPECT_EQ(page->Text(), QStringLiteral("ship"));

    page->Memo()->SetText(QStringLiteral("nothing"));
    page->Memo()->SetCaret(0, 3);
    page->CompleteWordAtCursor();
    EXPECT_EQ(filter, QStringLiteral("nothing"));
    EXPECT_EQ(rows, 0);
}

TEST_F(CodeAssistTest, TheParameterHintFollowsTheArgumentsUnlessSwitchedOff) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    page->Memo()->SetText(QStringLiteral("  Attack"));
    page->Memo()->SetCaret(0, 8);
    QTest::keyClick(page->Memo(), Qt::Key_ParenLeft, Qt::ShiftModifier, 10);
    ASSERT_NE(page->ParameterHint(), nullptr);
    EXPECT_EQ(page->ParameterHint()->text(), QStringLiteral("Attack(<b>ship</b>, target)"));
    EXPECT_TRUE(page->ParameterHint()->isVisible());
    QTest::keyClicks(page->Memo(), QStringLiteral("1, "));
    EXPECT_TRUE(page->Typed());
    page->HintTimerTick();
    EXPECT_FALSE(page->Typed());
    ASSERT_NE(page->ParameterHint(), nullptr);
    EXPECT_EQ(page->ParameterHint()->text(), QStringLiteral("Attack(ship, <b>target</b>)"));
    // ")" closes it.
    QTest::keyClick(page->Memo(), Qt::Key_ParenRight, Qt::ShiftModifier);
    EXPECT_EQ(page->ParameterHint(), nullptr);
    EXPECT_EQ(page->Text(), QStringLiteral("  Attack(1, )"));

    // Moving away closes it too, and the timer closes it once the caret has left the call.
    page->Memo()->SetCaret(0, 9);
    page->ShowParameterHint();
    ASSERT_NE(page->ParameterHint(), nullptr);
    QTest::keyClick(page->Memo(), Qt::Key_Down);
    EXPECT_EQ(page->ParameterHint(), nullptr);
    page->Memo()->SetCaret(0, 9);
    page->ShowParameterHint();
    page->Memo()->SetCaret(0, 1);
    QTest::keyClick(page->Memo(), Qt::Key_Right);
    page->HintTimerTick();
    EXPECT_EQ(page->ParameterHint(), nullptr);

    // The Parameter List item shows the innermost call's hint, a game function's too.
    page->Memo()->SetText(QStringLiteral("Explode(1, Boost(2), 3"));
    page->Memo()->SetCaret(0, 18);
    page->ContextItem(QStringLiteral("ContextParameterList"))->trigger();
    ASSERT_NE(page->ParameterHint(), nullptr);
    EXPECT_EQ(page->ParameterHint()->text(), QStringLiteral("Boost(<b>amount</b>)"));
    page->Memo()->SetText(QStringLiteral("Explode(1, Boost(2)"));
    page->Memo()->SetCaret(0, 19);
    page->ShowParameterHint();
    EXPECT_EQ(page->ParameterHint()->text(), QStringLiteral("Explode(x, <b>y</b>)"));
}

TEST_F(CodeAssistTest, WithParameterHintsOffABracketShowsNothing) {
    TIniFile(IniPath()).WriteBool("editor", "disable_paramhint", true);
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    page->Memo()->SetText(QStringLiteral("Attack"));
    page->Memo()->SetCaret(0, 6);
    QTest::keyClick(page->Memo(), Qt::Key_ParenLeft, Qt::ShiftModifier);
    EXPECT_EQ(page->ParameterHint(), nullptr);
    EXPECT_EQ(page->Text(), QStringLiteral("Attack("));
}

TEST_F(CodeAssistTest, TheStringListOpensOnTheTableAndInsertsTheChosenString) {
    TIffStringList table;
    table.Lines = {"Hello pilot", "Second line", "Sector clear", "padding padding"};
    table.InfoText1 = "English";
    table.InfoText2 = "Default";
    table.SaveToFile(Dir() / "texts.eng");
    const std::string unit = "mission Talk;\r\n#STRINGS texts;\r\nvar x;\r\n";
    TfrmMain window({});
    TfrmEdit* page = window.OpenFile(MakeFile("talk.pas", unit), false);
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

TEST_F(CodeAssistTest, OpenFileAtCursorFollowsTheSearchPath) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    CaretAt(*page, QStringLiteral("\"helpers\""), 3);
    page->ContextItem(QStringLiteral("ContextOpenFileAtCursor"))->trigger();
    ASSERT_EQ(window.Pages().size(), 2);
    EXPECT_EQ(window.ActivePage()->Caption(), QStringLiteral("helpers.pas"));
    EXPECT_EQ(window.RegMru1().Items()[0].Path, Path("helpers.pas"));

    window.ActivatePage(*page);
    CaretAt(*page, QStringLiteral("kills"));
    page->OpenFileAtCursor();
    EXPECT_EQ(messages_, QStringList{"File not found: kills.pas"});
}

TEST_F(CodeAssistTest, TheMouseHintNamesTheSymbolUnderThePointer) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    Show(window, 900, 700);
    TSyntaxEdit* memo = page->Memo();
    memo->setFirstVisibleLine(0);
    const auto pointOf = [memo](int line, int index) {
        const long at = memo->positionFromLineIndex(line, index);
        return QPoint(
            static_cast<int>(memo->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, at)) + 2,
            static_cast<int>(memo->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, at)) + 4);
    };
    EXPECT_EQ(page->SymbolHintAt(pointOf(8, 11)), // inside "Attack" on line 9
              QStringLiteral("Function Attack (2 parameters) - Demo.pas (9)"));
    EXPECT_EQ(page->SymbolHintAt(pointOf(1, 8)), QStringLiteral("Constant MAXWAVE = 3 - Demo.pas (2)"));
    EXPECT_EQ(page->SymbolHintAt(pointOf(16, 22)), // "Boost" on line 17
              QString::fromStdString("Function Boost (1 parameter) - helpers.pas (6)"));
    EXPECT_EQ(page->SymbolHintAt(QPoint(2000, 2000)), QString());
}

TEST_F(CodeAssistTest, ContextMenuCaptionsAndRules) {
    TfrmMain window({});
    TfrmEdit* page = window.ActivePage();
    const auto expected = ReadCases("context_menu.txt");
    const QList<QAction*> actions = page->PopupMenu1()->actions();
    ASSERT_EQ(actions.size(), static_cast<qsizetype>(expected.size()));
    for (qsizetype i = 0; i < actions.size(); ++i) {
        const QStringList& row = expected[static_cast<std::size_t>(i)];
        EXPECT_EQ(actions[i]->text(), row[0] == u'-' ? QString() : row[0]);
        if (row.size() > 1) {
            EXPECT_EQ(actions[i]->shortcut(), QKeySequence(row[1])) << row[0].toStdString();
        }
    }

    page->Memo()->SetText(QStringLiteral("while x"));
    page->Memo()->SetCaret(0, 2);
    page->RefreshContextMenu();
    EXPECT_EQ(page->ContextItem(QStringLiteral("ContextTopicSearch"))->text(),
              QStringLiteral("Topic &Search (while)"));
    EXPECT_FALSE(page->ContextItem(QStringLiteral("ContextCopy"))->isEnabled());
    page->Memo()->selectAll();
    page->RefreshContextMenu();
    EXPECT_TRUE(page->ContextItem(QStringLiteral("ContextCopy"))->isEnabled());
    page->ContextItem(QStringLiteral("ContextTopicSearch"))->trigger();
    EXPECT_TRUE(
        QString::fromStdString(window.HelpView().CurrentPage()).endsWith(QStringLiteral("help/while.html")));
}

} // namespace
} // namespace velkor::test
