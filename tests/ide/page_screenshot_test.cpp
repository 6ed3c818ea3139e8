// What a person sees of an editor page: the demo mission coloured, the error line marked after a failed
// compile, the symbol browser listing functions. The pixels of the grabbed widgets are inspected. Runs
// under Xvfb when it is installed (see CMakeLists.txt) and on the offscreen platform. Also reports the
// keystroke-to-repaint time of a 50,000-line unit inside a page.
#include "editor/highlighter.h"
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "ide/proc_list.h"
#include "tests/ide/edit_page_test_support.h"
#include "tests/ide/screenshot_support.h"

#include <QElapsedTimer>
#include <QImage>
#include <QPixmap>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace velkor::test {
namespace {

using PageScreenshotTest = PageTest;

TEST_F(PageScreenshotTest, ADemoMissionIsColoured) {
    TfrmMain window({});
    TfrmEdit* page = window.OpenFile(MakeFile("Demo.pas", kDemoMission), false);
    ASSERT_NE(page, nullptr);
    window.resize(1000, 760);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    TSyntaxEdit& memo = *page->Memo();
    const QImage image = GrabEditor(memo);
    KeepScreenshot(window.grab().toImage(), "page_coloured.png");
    const TSourceHighlighter& colours = *memo.Highlighter();
    // "function" on line 9 is a keyword, "// Adds its arguments." on line 8 a comment, "Attack" plain.
    const QRect keyword = TextRect(memo, 8, 0, 8);
    const QRect comment = TextRect(memo, 7, 3, 21);
    const QRect plain = TextRect(memo, 8, 9, 15);
    const QColor keywordColour = colours.color(hsKeyword);
    const QColor commentColour = colours.color(hsComment);
    const QColor plainColour = colours.color(hsDefault);
    ASSERT_NE(keywordColour, plainColour);
    ASSERT_NE(commentColour, plainColour);
    EXPECT_GT(PixelsNear(image, keyword, keywordColour, 40), 10);
    EXPECT_GT(PixelsNear(image, comment, commentColour, 40), 10);
    EXPECT_EQ(PixelsNear(image, plain, keywordColour, 40), 0);
    EXPECT_EQ(PixelsNear(image, plain, commentColour, 40), 0);
    EXPECT_GT(PixelsNear(image, plain, plainColour, 40), 10);
}

TEST_F(PageScreenshotTest, TheErrorLineIsMarkedAfterAFailedCompile) {
    TIniFile(IniPath()).WriteInteger("compiler", "verbosity", 0);
    TfrmMain window({});
    TfrmEdit* page = window.ActivePage();
    window.resize(1000, 760);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    page->Memo()->SetText(QStringLiteral("mission Broken;\r\nvar a;\r\nthis is not pascal;\r\nvar b;\r\n"));
    EXPECT_FALSE(page->Compile());
    ASSERT_EQ(page->Memo()->ErrorLine(), 2);
    TSyntaxEdit& memo = *page->Memo();
    const QImage image = GrabEditor(memo);
    KeepScreenshot(window.grab().toImage(), "page_error_line.png");
    const QColor mark(0xFF, 0xB0, 0xB0);
    const int width = memo.viewport()->width();
    const QRect errorLine = TextRect(memo, 2, 0, 0).adjusted(0, 1, width - 1, -1);
    const QRect otherLine = TextRect(memo, 1, 0, 0).adjusted(0, 1, width - 1, -1);
    EXPECT_GT(PixelsNear(image,
                         QRect(errorLine.left() + 60, errorLine.top(), width - 100, errorLine.height()), mark,
                         10),
              width);
    EXPECT_EQ(PixelsNear(image,
                         QRect(otherLine.left() + 60, otherLine.top(), width - 100, otherLine.height()), mark,
                         10),
              0);
    EXPECT_FALSE(window.OutputView().Lines().isEmpty());
}

TEST_F(PageScreenshotTest, TheSymbolBrowserListsTheFunctions) {
    TfrmMain window({});
    TfrmEdit* page = window.OpenFile(MakeFile("Demo.pas", kDemoMission), false);
    ASSERT_NE(page, nullptr);
    ASSERT_TRUE(page->Compile());
    window.show();
    TfrmProcList list(*page, &window);
    list.SetKindMask(8);
    list.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    const QImage image = list.grab().toImage();
    KeepScreenshot(image, "symbol_browser.png");
    QTreeWidget* view = list.lvProcs();
    ASSERT_EQ(view->topLevelItemCount(), 4);
    // Each row is drawn: the start of the row's first column holds text pixels that differ from the row's
    // background (the selected first row has its own colours), the space below the last row holds none.
    const QImage rows = view->viewport()->grab().toImage();
    const auto inkIn = [&rows](const QRect& rect) {
        const QColor background = rows.pixelColor(rect.right(), rect.center().y());
        return rect.width() * rect.height() - PixelsNear(rows, rect, background, 30);
    };
    for (int i = 0; i < 4; ++i) {
        const QRect rect = view->visualItemRect(view->topLevelItem(i)).intersected(QRect(0, 0, 300, 1000));
        EXPECT_GT(inkIn(rect), 10) << i;
    }
    const QRect last = view->visualItemRect(view->topLevelItem(3));
    EXPECT_EQ(inkIn(QRect(0, last.bottom() + 4, 300, last.height())), 0);
    EXPECT_EQ(view->topLevelItem(0)->text(0), QStringLiteral("Boost"));
}

TEST_F(PageScreenshotTest, KeystrokeToRepaintIn50000Lines) {
    QString text;
    text.reserve(50000 * 40);
    text += QStringLiteral("mission big;\r\n");
    for (int i = 1; i < 50000; ++i) {
        switch (i % 4) {
        case 0: text += QStringLiteral("function f%1(a, b);\r\n").arg(i); break;
        case 1:
            text += QStringLiteral("begin /* block */ a := $%1 + %1010;\r\n").arg(i, 4, 16, QLatin1Char('0'));
            break;
        case 2: text += QStringLiteral("  if a > 2.5E+3 then Msg(\"x\"); // note\r\n"); break;
        default: text += QStringLiteral("end;\r\n"); break;
        }
    }
    TfrmMain window({});
    TfrmEdit* page = window.ActivePage();
    window.resize(1000, 760);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    page->Memo()->SetText(text);
    page->Memo()->SetCaret(25000, 6);
    page->Memo()->setFocus();
    std::vector<double> ms;
    QElapsedTimer timer;
    for (int i = 0; i < 200; ++i) {
        timer.start();
        QTest::keyClick(page->Memo(), static_cast<Qt::Key>(Qt::Key_A + i % 26));
        page->HintTimerTick();
        page->Memo()->viewport()->repaint();
        ms.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    std::printf("page keystroke to repaint, 50,000 lines: median %.2f ms, worst %.2f ms (platform %s)\n",
                ms[ms.size() / 2], ms.back(), qPrintable(QGuiApplication::platformName()));
    RecordProperty("keystroke_median_us", static_cast<int>(ms[ms.size() / 2] * 1000));
    EXPECT_LT(ms[ms.size() / 2], 50.0);
}

} // namespace
} // namespace velkor::test
