// The Problems view and the editor's marks: every error and hint of the last compile, listed and marked
// where it is, the marks following edits; a double click goes to the place. The look (red and blue marks in
// the margin and under the text) is checked on the pixels. How each page keeps its own is a scenario.
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "ide/problem_markers.h"
#include "ide/problems_view.h"
#include "tests/ide/edit_page_test_support.h"
#include "tests/ide/screenshot_support.h"

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QTest>
#include <QTreeWidget>

#include <cstdlib>

namespace velkor::test {
namespace {

class ProblemsTest : public PageTest {
protected:
    void SetUp() override {
        PageTest::SetUp();
        TIniFile(IniPath()).WriteBool("compiler", "haltonerror", false);
        TIniFile(IniPath()).WriteInteger("compiler", "verbosity", 3);
        MakeFile("faulty.pas", kFaulty);
    }
    static QStringList Rows(const TfrmProblems& view) {
        QStringList rows;
        const QTreeWidget* tree = view.ProblemList();
        for (int i = 0; i < tree->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* item = tree->topLevelItem(i);
            rows << item->text(0) + u':' + item->text(1);
        }
        return rows;
    }
};

TEST(CollectProblemsTest, ErrorsAndHintsWithAPlaceAreProblems) {
    for (const QStringList& row : ReadCases("problems.txt")) {
        const std::vector<TProblem> found = CollectProblems({row[0]}, [](const QString& unit) {
            return unit == QStringLiteral("demo") ? std::string("/w/demo.pas") : std::string();
        });
        ASSERT_EQ(found.size(), row.size() > 1 ? 1U : 0U) << row[0].toStdString();
        if (found.empty()) continue;
        EXPECT_EQ(found[0].UnitName, row[1]);
        EXPECT_EQ(found[0].File, row[1] == u"demo" ? "/w/demo.pas" : row[1].toStdString());
        EXPECT_EQ(found[0].Line, row[2].toInt());
        EXPECT_EQ(found[0].Text, row[3]);
        EXPECT_EQ(found[0].Kind, row[4] == u"Error" ? TMessageKind::Error : TMessageKind::Hint);
    }
}

TEST_F(ProblemsTest, EveryErrorOfTheLastCompileIsListedMarkedAndReachedWhereItIsNow) {
    TfrmMain window({});
    Show(window);
    TfrmEdit* page = window.OpenFile(MakeFile("broken.pas", kBroken), false);
    ASSERT_NE(page, nullptr);
    page->Compile();
    TfrmProblems& view = window.ProblemsView();
    const QStringList rows = Rows(view);
    // The diagnostic lines of verbosity 3 are no problems.
    EXPECT_TRUE(rows.contains(QStringLiteral("faulty.pas:5"))) << rows.join(u' ').toStdString();
    EXPECT_TRUE(rows.contains(QStringLiteral("broken.pas:6"))) << rows.join(u' ').toStdString();
    EXPECT_TRUE(rows.contains(QStringLiteral("broken.pas:7"))) << rows.join(u' ').toStdString();
    for (const TfrmProblems::TEntry& entry : view.Entries()) {
        EXPECT_FALSE(entry.Problem.Text.startsWith(QStringLiteral("  raised in")));
        EXPECT_TRUE(entry.Problem.Text.startsWith(QStringLiteral("ERROR: ")) ||
                    entry.Problem.Text.startsWith(QStringLiteral("HINT: ")));
    }
    // The unit's file is known even though the include is not open.
    EXPECT_EQ(
        view.Entries()[static_cast<std::size_t>(rows.indexOf(QStringLiteral("faulty.pas:5")))].Problem.File,
        Path("faulty.pas"));

    TProblemMarkers& marks = TProblemMarkers::Of(*page->Memo());
    const std::vector<int> marked = marks.MarkedLines();
    EXPECT_NE(std::find(marked.begin(), marked.end(), 5), marked.end());
    EXPECT_NE(std::find(marked.begin(), marked.end(), 6), marked.end());
    ASSERT_FALSE(marks.MessagesOn(5).isEmpty());
    EXPECT_TRUE(marks.MessagesOn(5).front().startsWith(QStringLiteral("ERROR: ")));
    EXPECT_TRUE(marks.MessagesOn(2).isEmpty());
    EXPECT_TRUE(page->Memo()->markersAtLine(5) & (1 << TProblemMarkers::kErrorMarker));

    // Two lines typed above the errors: the marks move down with their lines.
    page->Memo()->SetCaret(0, 0);
    page->Memo()->insert(QStringLiteral("// one\r\n// two\r\n"));
    EXPECT_TRUE(marks.MessagesOn(5).isEmpty());
    EXPECT_FALSE(marks.MessagesOn(7).isEmpty());
    // A double click goes where the line is now.
    const int row = static_cast<int>(rows.indexOf(QStringLiteral("broken.pas:7")));
    ASSERT_GE(row, 0);
    QTreeWidget* tree = window.ProblemsView().ProblemList();
    window.ProblemsView().BringToFront();
    QApplication::processEvents();
    QTreeWidgetItem* item = tree->topLevelItem(row);
    tree->scrollToItem(item);
    const QPoint at = tree->visualItemRect(item).center();
    ASSERT_EQ(tree->itemAt(at), item);
    DoubleClick(*tree->viewport(), at);
    EXPECT_EQ(window.ActivePage(), page);
    EXPECT_EQ(page->Memo()->CaretLine(), 8);

    // The include's row opens it, and the include gets the mark of its error.
    const int inInclude = static_cast<int>(rows.indexOf(QStringLiteral("faulty.pas:5")));
    ASSERT_GE(inInclude, 0);
    EXPECT_TRUE(window.GotoProblem(inInclude));
    EXPECT_EQ(window.ActivePage()->Caption(), QStringLiteral("faulty.pas"));
    EXPECT_EQ(window.ActivePage()->Memo()->CaretLine(), 4);
    EXPECT_EQ(TProblemMarkers::Of(*window.ActivePage()->Memo()).MarkedLines(), std::vector<int>{4});
}

TEST_F(ProblemsTest, ScreenshotMarksAreRedInTheMarginAndUnderTheTextAndTheViewDocksBesideTheOutput) {
    TfrmMain window({});
    Show(window, 900, 650);
    TfrmEdit* page = window.OpenFile(MakeFile("broken.pas", kBroken), false);
    ASSERT_NE(page, nullptr);
    page->Compile();
    window.ProblemsView().BringToFront();
    page->Memo()->SetCaret(0, 0);
    page->Memo()->setFirstVisibleLine(0);
    QApplication::processEvents();
    TPageEditor& memo = *page->Memo();
    const QImage image = memo.viewport()->grab().toImage();
    KeepScreenshot(window.grab().toImage(), "problems_view.png");
    const auto redIn = [&](const QRect& rect) {
        int count = 0;
        const QRect r = rect.intersected(image.rect());
        for (int y = r.top(); y <= r.bottom(); ++y) {
            for (int x = r.left(); x <= r.right(); ++x) {
                const QColor c = image.pixelColor(x, y);
                if (c.red() > 150 && c.green() < 90 && c.blue() < 90) ++count;
            }
        }
        return count;
    };
    const int lineHeight = static_cast<int>(memo.SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL, 0L));
    const int marginLeft = memo.marginWidth(TPageEditor::kLineNumberMargin);
    const int textLeft = marginLeft + memo.marginWidth(TPageEditor::kBookmarkMargin);
    const auto lineRect = [&](int line, int left, int right) {
        return QRect(left, line * lineHeight, right - left, lineHeight);
    };
    // Line 6 (index 5) has an error: a red mark in the margin and a red wave under the text.
    EXPECT_GT(redIn(lineRect(5, marginLeft, textLeft)), 10);
    EXPECT_GT(redIn(lineRect(5, textLeft, image.width())), 5);
    // Line 3 has none.
    EXPECT_EQ(redIn(lineRect(2, marginLeft, textLeft)), 0);
    EXPECT_EQ(redIn(lineRect(2, textLeft, image.width())), 0);
    // The hint over the margin of the marked line is its message.
    EXPECT_TRUE(TProblemMarkers::Of(memo)
                    .HintAt(lineRect(5, marginLeft, textLeft).center())
                    .startsWith(QStringLiteral("ERROR: ")));
    EXPECT_TRUE(TProblemMarkers::Of(memo).HintAt(lineRect(2, marginLeft, textLeft).center()).isEmpty());

    // The view docks beside the output; the View menu hides and shows it.
    QAction* item = window.MenuItem(QStringLiteral("MenuViewProblems"));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(window.SiteOf(window.ProblemsView()), "PageControl1");
    ASSERT_TRUE(window.ProblemsView().isVisible());
    item->trigger();
    EXPECT_FALSE(window.ProblemsView().isVisible());
    item->trigger();
    EXPECT_TRUE(window.ProblemsView().isVisible());
}

} // namespace
} // namespace velkor::test
