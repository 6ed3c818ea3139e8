// The symbol lists: the four openings, the columns, filtering by kind, substring and Hide WCP, the search
// box keys, Goto and Insert, and the placement kept in the settings file.
#include "compiler/symbol_queries.h"
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "ide/proc_list.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

namespace velkor::test {
namespace {

class SymbolListTest : public PageTest {
protected:
    static QStringList Rows(const TfrmProcList& list) {
        QStringList rows;
        for (int i = 0; i < list.lvProcs()->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* item = list.lvProcs()->topLevelItem(i);
            rows << item->text(0) + u'|' + item->text(1) + u'|' + item->text(2) + u'|' + item->text(3);
        }
        return rows;
    }

    // Runs `act` on the dialog that the next modal opening shows.
    void OnNextDialog(std::function<void(TfrmProcList&)> act) {
        DialogHooks().ExecModal = [this, act](QDialog& dialog) {
            ++modalDialogs_;
            modalDialogNames_ << dialog.objectName();
            act(static_cast<TfrmProcList&>(dialog));
            return dialog.result();
        };
    }
};

TEST_F(SymbolListTest, TheDialogsControlsAndColumns) {
    TfrmMain window({});
    TfrmProcList list(*window.ActivePage());
    EXPECT_EQ(list.windowTitle(), QStringLiteral("Symbol Browser"));
    EXPECT_EQ(list.objectName(), QStringLiteral("frmProcList"));
    const QStringList columns{"Function", "Type", "File", "Line"};
    const int widths[] = {313, 80, 120, 68};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(list.lvProcs()->headerItem()->text(i), columns[i]);
        EXPECT_EQ(list.lvProcs()->columnWidth(i), widths[i]);
        EXPECT_EQ(list.KindButton(1 << i)->text(),
                  QStringList({"Consts", "Vars", "Objects", "Functions"})[i]);
    }
    EXPECT_EQ(list.chkHideWCP()->text(), QStringLiteral("&Hide WCP functions"));
    EXPECT_FALSE(list.chkHideWCP()->isChecked());
    const auto* gotoButton = list.findChild<QToolButton*>(QStringLiteral("sbGoto"));
    const auto* insertButton = list.findChild<QToolButton*>(QStringLiteral("sbInsert"));
    ASSERT_TRUE(gotoButton && insertButton);
    EXPECT_EQ(gotoButton->text(), QStringLiteral("Goto"));
    EXPECT_EQ(gotoButton->toolTip(), QStringLiteral("Goto implementation (Enter)"));
    EXPECT_EQ(insertButton->text(), QStringLiteral("Insert"));
    EXPECT_EQ(insertButton->toolTip(), QStringLiteral("Insert"));
    const auto labels = list.findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels[0]->text(), QStringLiteral("&Search"));
    EXPECT_EQ(labels[0]->buddy(), list.edtMethods());
}

TEST_F(SymbolListTest, TheFourOpeningsSetTheMask) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    std::vector<std::pair<int, QStringList>> seen;
    OnNextDialog([&](TfrmProcList& list) { seen.emplace_back(list.KindMask(), Rows(list)); });
    window.MenuItem(QStringLiteral("MenuEditFindSymbolBrowser"))->trigger();
    window.MenuItem(QStringLiteral("MenuEditFindFunctionList"))->trigger();
    window.MenuItem(QStringLiteral("MenuEditFindObjectList"))->trigger();
    window.MenuItem(QStringLiteral("MenuEditFindConstList"))->trigger();
    page->ContextItem(QStringLiteral("ContextProcList"))->trigger();
    ASSERT_EQ(seen.size(), 5u);
    EXPECT_EQ(seen[0].first, 15);
    EXPECT_EQ(seen[0].second, (QStringList{"MAXWAVE|Constant|Demo.pas|2", "SHIPCOUNT|Constant|Demo.pas|2",
                                           "kills|Variable|Demo.pas|3", "shipsLeft|Variable|Demo.pas|3",
                                           "shipBonus|Variable|helpers.pas|3", "Boost|Function|helpers.pas|6",
                                           "Explode|Function|Demo.pas|5", "Tick|Function|Demo.pas|14",
                                           "Attack|Function|Demo.pas|9", "Alpha|Object|Demo.pas|20",
                                           "firstwave|Objective|Demo.pas|21"}));
    EXPECT_EQ(seen[1].first, 8);
    EXPECT_EQ(seen[1].second, (QStringList{"Boost|Function|helpers.pas|6", "Explode|Function|Demo.pas|5",
                                           "Tick|Function|Demo.pas|14", "Attack|Function|Demo.pas|9"}));
    EXPECT_EQ(seen[2].first, 4);
    EXPECT_EQ(seen[2].second, (QStringList{"Alpha|Object|Demo.pas|20", "firstwave|Objective|Demo.pas|21"}));
    EXPECT_EQ(seen[3].first, 1);
    EXPECT_EQ(seen[3].second.size(), 2);
    EXPECT_EQ(seen[4].first, 8);
    EXPECT_EQ(modalDialogNames_.front(), QStringLiteral("frmProcList"));
}

TEST_F(SymbolListTest, FilteringBySubstringKindsAndHideWcp) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    TfrmProcList list(*page);
    list.SetKindMask(15);
    list.SetFilter(QStringLiteral("ship"));
    EXPECT_EQ(Rows(list), (QStringList{"SHIPCOUNT|Constant|Demo.pas|2", "shipsLeft|Variable|Demo.pas|3",
                                       "shipBonus|Variable|helpers.pas|3"}));
    // Typing into the box refilters: a substring anywhere, any case.
    list.edtMethods()->setText(QStringLiteral("TAC"));
    EXPECT_EQ(Rows(list), QStringList{"Attack|Function|Demo.pas|9"});
    list.edtMethods()->clear();
    list.KindButton(8)->click();
    EXPECT_FALSE(list.KindButton(8)->isChecked());
    EXPECT_EQ(list.KindMask(), 7);
    EXPECT_EQ(list.lvProcs()->topLevelItemCount(), 7);
    for (int bit : {1, 2, 4}) list.KindButton(bit)->click();
    EXPECT_EQ(list.KindMask(), 0);
    EXPECT_EQ(list.lvProcs()->topLevelItemCount(), 0);
    list.KindButton(8)->click();
    list.chkHideWCP()->setChecked(true);
    EXPECT_EQ(Rows(list), (QStringList{"Boost|Function|helpers.pas|6", "Tick|Function|Demo.pas|14",
                                       "Attack|Function|Demo.pas|9"}));
}

TEST_F(SymbolListTest, TheConstantListShowsTheTwoConstKindsAndNoEnumerationValues) {
    TfrmMain window({});
    TfrmEdit* page = window.OpenFile(
        MakeFile("Kinds.pas", "mission Kinds;\r\nconst Speed = 3;\r\nenum TeamRed, TeamBlue = 5;\r\n"
                              "function F;\r\nconst Local = 1;\r\nbegin\r\nend;\r\n"),
        false);
    ASSERT_NE(page, nullptr);
    ASSERT_TRUE(page->Compile()) << Output(window);
    TfrmProcList list(*page);
    list.SetKindMask(15);
    EXPECT_EQ(Rows(list), (QStringList{"SPEED|Constant|Kinds.pas|2", "F|Function|Kinds.pas|4"}));
    list.SetKindMask(1);
    EXPECT_EQ(Rows(list), QStringList{"SPEED|Constant|Kinds.pas|2"});
    // The mouse hint still gives an enumeration value's value.
    const auto team = page->SymbolNamed(QStringLiteral("TeamBlue"));
    ASSERT_TRUE(team.has_value());
    EXPECT_EQ(SymbolHintText(*team), "Constant TEAMBLUE = 5 - Kinds.pas (3)");
}

TEST_F(SymbolListTest, SearchBoxKeysMoveInTheListAndTypeInTheBox) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    TfrmProcList list(*page);
    list.SetKindMask(8);
    list.show();
    list.edtMethods()->setFocus();
    EXPECT_EQ(list.lvProcs()->currentIndex().row(), 0);
    QTest::keyClick(list.edtMethods(), Qt::Key_Down);
    QTest::keyClick(list.edtMethods(), Qt::Key_Down);
    EXPECT_EQ(list.lvProcs()->currentIndex().row(), 2);
    QTest::keyClick(list.edtMethods(), Qt::Key_Up);
    EXPECT_EQ(list.lvProcs()->currentIndex().row(), 1);
    EXPECT_EQ(list.edtMethods()->text(), QString());
    QTest::keyClicks(list.edtMethods(), QStringLiteral("ti"));
    EXPECT_EQ(list.edtMethods()->text(), QStringLiteral("ti"));
    EXPECT_EQ(Rows(list), QStringList{"Tick|Function|Demo.pas|14"});
    QTest::keyClick(list.edtMethods(), Qt::Key_Left);
    QTest::keyClick(list.edtMethods(), Qt::Key_Delete);
    EXPECT_EQ(list.edtMethods()->text(), QStringLiteral("t"));
    // Enter goes to the declaration and closes.
    QTest::keyClick(list.edtMethods(), Qt::Key_Backspace);
    QTest::keyClicks(list.edtMethods(), QStringLiteral("attack"));
    QTest::keyClick(list.edtMethods(), Qt::Key_Return);
    EXPECT_EQ(list.result(), QDialog::Accepted);
    EXPECT_EQ(page->Memo()->CaretLine(), 8);
}

TEST_F(SymbolListTest, InsertTypesTheNameAndABracketForFunctionsWithParameters) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    const auto insert = [&](const QString& filter, int mask) {
        page->Memo()->SetText(QStringLiteral("x := "));
        page->Memo()->SetCaret(0, 5);
        TfrmProcList list(*page);
        list.SetKindMask(mask);
        list.SetFilter(filter);
        QTest::keyClick(list.edtMethods(), Qt::Key_Insert);
        EXPECT_EQ(list.result(), QDialog::Accepted);
        return page->Text();
    };
    EXPECT_EQ(insert(QStringLiteral("attack"), 15), QStringLiteral("x := Attack("));
    ASSERT_NE(page->ParameterHint(), nullptr);
    EXPECT_EQ(page->ParameterHint()->text(), QStringLiteral("Attack(<b>ship</b>, target)"));
    page->CloseParameterHint();
    EXPECT_EQ(insert(QStringLiteral("tick"), 15), QStringLiteral("x := Tick"));
    EXPECT_EQ(page->ParameterHint(), nullptr);
    EXPECT_EQ(insert(QStringLiteral("maxw"), 15), QStringLiteral("x := MAXWAVE"));
    EXPECT_EQ(insert(QStringLiteral("first"), 15), QStringLiteral("x := firstwave"));
    EXPECT_EQ(insert(QStringLiteral("shipsl"), 15), QStringLiteral("x := shipsLeft"));
    // The sbInsert button with no row: only closes.
    page->Memo()->SetText(QStringLiteral("x := "));
    TfrmProcList empty(*page);
    empty.SetKindMask(0);
    empty.findChild<QToolButton*>(QStringLiteral("sbInsert"))->click();
    EXPECT_EQ(page->Text(), QStringLiteral("x := "));
    EXPECT_EQ(empty.result(), QDialog::Accepted);
}

TEST_F(SymbolListTest, GotoOpensTheIncludeFileAndDoubleClickGoesToo) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window);
    ASSERT_NE(page, nullptr);
    {
        TfrmProcList list(*page);
        list.SetKindMask(8);
        list.SetFilter(QStringLiteral("boost"));
        list.findChild<QToolButton*>(QStringLiteral("sbGoto"))->click();
        EXPECT_EQ(list.result(), QDialog::Accepted);
    }
    ASSERT_EQ(window.Pages().size(), 2);
    EXPECT_EQ(window.ActivePage()->Caption(), QStringLiteral("helpers.pas"));
    EXPECT_EQ(window.ActivePage()->Memo()->CaretLine(), 5);

    TfrmProcList list(*page);
    list.SetKindMask(4);
    QTreeWidgetItem* alpha = list.lvProcs()->topLevelItem(0);
    emit list.lvProcs()->itemDoubleClicked(alpha, 0);
    EXPECT_EQ(page->Memo()->CaretLine(), 19);
}

TEST_F(SymbolListTest, PlacementIsRestoredAndHideWcpWrittenButNotReadBack) {
    TIniFile ini(IniPath());
    ini.WriteInteger("frmProcList", "WindowState", 0);
    ini.WriteInteger("frmProcList", "Width", 700);
    ini.WriteInteger("frmProcList", "Height", 333);
    ini.WriteBool("proclist", "HideWCP", true);
    TfrmMain window({});
    {
        TfrmProcList list(*window.ActivePage());
        EXPECT_EQ(list.width(), 700);
        EXPECT_EQ(list.height(), 333);
        EXPECT_FALSE(list.chkHideWCP()->isChecked());
        list.resize(640, 480);
        list.chkHideWCP()->setChecked(true);
    }
    EXPECT_EQ(ini.ReadInteger("frmProcList", "Width", 0), 640);
    EXPECT_EQ(ini.ReadInteger("frmProcList", "Height", 0), 480);
    EXPECT_EQ(ini.ReadString("proclist", "HideWCP", ""), "1");
    TfrmProcList again(*window.ActivePage());
    EXPECT_FALSE(again.chkHideWCP()->isChecked());
}

TEST(SymbolQueries, ParametersFromTheDeclarationAndTheCallAtTheCaret) {
    EXPECT_EQ(DeclaredParameters("x\r\nFUNCTION  Go ( a, b,c );", 2, "go"),
              (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(DeclaredParameters("function Go;\nfunction GoOn(x);", 1, "goon"),
              std::vector<std::string>{"x"});
    EXPECT_EQ(DeclaredParameters("function Go;", 1, "go"), std::vector<std::string>{});
    EXPECT_EQ(DeclaredParameters("function go\r\n( a,\r\n b );", 1, "GO"),
              (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(DeclaredParameters("function Other(a);", 1, "go"), std::nullopt);
    EXPECT_EQ(DeclaredParameters("function Go(a);", 7, "go"), std::nullopt);
    EXPECT_EQ(DeclaredParameters("myfunction Go(a);", 1, "go"), std::nullopt);

    const auto call = CallAtCaret("  a := F(1, G(2, \"(,\"), 3", 26);
    ASSERT_TRUE(call);
    EXPECT_EQ(call->Name, "F");
    EXPECT_EQ(call->Argument, 2);
    EXPECT_EQ(CallAtCaret("F(1, G(2, ", 10)->Name, "G");
    EXPECT_EQ(CallAtCaret("F(1, G(2, ", 10)->Argument, 1);
    EXPECT_EQ(CallAtCaret("x := (1 + 2", 11), std::nullopt);
    EXPECT_EQ(CallAtCaret("F(1) // G(", 10), std::nullopt);
    EXPECT_EQ(CallAtCaret("F(1)", 4), std::nullopt);
    EXPECT_EQ(CallAtCaret("F(", 500)->Name, "F");
}

} // namespace
} // namespace velkor::test
