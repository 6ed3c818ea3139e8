// The project at hand: the Files view of the unit's folder and search path, and Find in Files over it.
#include "ide/edit_page.h"
#include "ide/file_tree_view.h"
#include "ide/find_in_files.h"
#include "ide/main_window.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTreeWidget>

namespace velkor::test {
namespace {

TEST(FindInTextTest, PlainTextAndRegularExpressionsFindTheirLines) {
    const QByteArray text = "unit Helpers;\r\nvar shipBonus;\r\n// SHIP ahoy\nfunction Boost(a);\r\nend;";
    for (const QStringList& row : ReadCases("find_in_text.txt")) {
        const QRegularExpression pattern = FindInFilesPattern(row[0], row[1] == u"regex", row[2] == u"case");
        QStringList lines;
        for (const TFileMatch& match : FindInText(QStringLiteral("h.pas"), text, pattern)) {
            lines << QString::number(match.Line);
            EXPECT_FALSE(match.Text.contains(u'\r'));
        }
        EXPECT_EQ(lines.join(u' '), row.value(3)) << row.join(u' ').toStdString();
    }
    EXPECT_EQ(
        FindInText(QStringLiteral("h.pas"), text, FindInFilesPattern(QStringLiteral("ship"), false, false))[0]
            .Text,
        QStringLiteral("var shipBonus;"));
    // Binary contents are no text; an invalid expression finds nothing.
    EXPECT_TRUE(FindInText(QStringLiteral("b.mis"), QByteArray("FORM\0\0ship", 10),
                           FindInFilesPattern(QStringLiteral("ship"), false, false))
                    .empty());
    EXPECT_FALSE(FindInFilesPattern(QStringLiteral("(ship"), true, false).isValid());
}

class ProjectViewsTest : public PageTest {
protected:
    void SetUp() override {
        PageTest::SetUp();
        std::filesystem::create_directories(Dir() / "lib");
        WriteFile(Dir() / "lib" / "stock.pas", "unit Stock;\r\nvar shipReserve;\r\n");
        std::filesystem::create_directories(Dir() / "missions");
        WriteFile(Dir() / "missions" / "m1.pas", "mission M1;\r\n");
    }
    static QStringList Children(QTreeWidgetItem* item) {
        QStringList names;
        for (int i = 0; i < item->childCount(); ++i) names << item->child(i)->text(0);
        return names;
    }
};

TEST_F(ProjectViewsTest, TheFilesViewShowsTheUnitsFolderAndSearchPathAndOpensFiles) {
    TfrmMain window({});
    Show(window);
    TfrmEdit* demo = window.OpenFile(MakeFile("Demo.pas", kDemoMission), false);
    ASSERT_NE(demo, nullptr);
    ASSERT_NE(window.MenuItem(QStringLiteral("MenuViewFiles")), nullptr);
    window.MenuItem(QStringLiteral("MenuViewFiles"))->trigger();
    TfrmFileTree& files = window.FileTreeView();
    ASSERT_TRUE(files.isVisible());
    EXPECT_EQ(window.SiteOf(files), "PageControl2");
    const QString root = QDir::cleanPath(QString::fromStdString(Dir().string()));
    ASSERT_FALSE(files.Roots().isEmpty());
    EXPECT_EQ(files.Roots().front(), root);
    EXPECT_TRUE(files.Roots().contains(root + QStringLiteral("/lib")))
        << files.Roots().join(u' ').toStdString();

    QTreeWidgetItem* top = files.Tree()->topLevelItem(0);
    ASSERT_TRUE(top->isExpanded());
    const QStringList names = Children(top);
    // Folders first, then files, by name.
    EXPECT_LT(names.indexOf(QStringLiteral("lib")), names.indexOf(QStringLiteral("Demo.pas")));
    EXPECT_TRUE(names.contains(QStringLiteral("helpers.pas")));
    EXPECT_TRUE(names.contains(QStringLiteral("missions")));
    // Every file under the roots, once, subfolders included.
    const QStringList all = files.Files();
    EXPECT_TRUE(all.contains(root + QStringLiteral("/missions/m1.pas")));
    EXPECT_EQ(all.count(root + QStringLiteral("/lib/stock.pas")), 1);

    QTreeWidgetItem* m1 = files.Reveal(root + QStringLiteral("/missions/m1.pas"));
    ASSERT_NE(m1, nullptr);
    files.Tree()->setCurrentItem(m1);
    files.Tree()->scrollToItem(m1);
    DoubleClick(*files.Tree()->viewport(), files.Tree()->visualItemRect(m1).center());
    ASSERT_NE(window.ActivePage(), demo);
    EXPECT_EQ(window.ActivePage()->Caption(), QStringLiteral("m1.pas"));
    // The tree follows the active page.
    EXPECT_EQ(files.Roots().front(), root + QStringLiteral("/missions"));
}

TEST_F(ProjectViewsTest, FindInFilesListsTheMatchesAndOpensThem) {
    TfrmMain window({});
    Show(window);
    TfrmEdit* demo = window.OpenFile(MakeFile("Demo.pas", kDemoMission), false);
    ASSERT_NE(demo, nullptr);
    demo->Memo()->SetCaret(16, 23); // in "Boost"
    QAction* start = window.MenuItem(QStringLiteral("MenuSearchFindInFiles"));
    ASSERT_NE(start, nullptr);
    EXPECT_EQ(start->shortcut(), QKeySequence(QStringLiteral("Shift+Ctrl+F")));
    start->trigger();
    TfrmFindInFiles& find = window.FindInFilesView();
    ASSERT_TRUE(find.isVisible());
    EXPECT_EQ(find.FindText()->text(), QStringLiteral("Boost"));
    QTest::keyClick(find.FindText(), Qt::Key_Return);
    QStringList found;
    for (const TFileMatch& match : find.Matches())
        found << QFileInfo(match.File).fileName() + u':' + QString::number(match.Line);
    EXPECT_EQ(found, (QStringList{QStringLiteral("Demo.pas:17"), QStringLiteral("helpers.pas:6")}));
    EXPECT_EQ(find.Results()->topLevelItemCount(), 2);
    EXPECT_TRUE(find.Summary()->text().startsWith(QStringLiteral("2 matches")));

    // A regular expression, across the search path's folders.
    find.FindText()->setText(QStringLiteral("ship\\w*(Left|Bonus|Reserve)"));
    find.RegularExpression()->setChecked(true);
    find.MatchCase()->setChecked(true);
    find.Search();
    found.clear();
    for (const TFileMatch& match : find.Matches())
        found << QFileInfo(match.File).fileName() + u':' + QString::number(match.Line);
    EXPECT_EQ(found, (QStringList{QStringLiteral("Demo.pas:3"), QStringLiteral("helpers.pas:3"),
                                  QStringLiteral("stock.pas:2")}));
    find.FindText()->setText(QStringLiteral("ship("));
    EXPECT_EQ(find.Search(), 0);
    EXPECT_TRUE(find.Summary()->text().startsWith(QStringLiteral("Invalid regular expression")));

    // A double click on a match opens its file there; Back returns.
    find.FindText()->setText(QStringLiteral("Boost"));
    find.RegularExpression()->setChecked(false);
    find.Search();
    QTreeWidgetItem* second = find.Results()->topLevelItem(1);
    find.Results()->scrollToItem(second);
    DoubleClick(*find.Results()->viewport(), find.Results()->visualItemRect(second).center());
    ASSERT_EQ(window.ActivePage()->Caption(), QStringLiteral("helpers.pas"));
    EXPECT_EQ(window.ActivePage()->Memo()->CaretLine(), 5);
    ASSERT_TRUE(window.NavigateBack());
    EXPECT_EQ(window.ActivePage(), demo);
    EXPECT_EQ(demo->Memo()->CaretLine(), 16);
}

} // namespace
} // namespace velkor::test
