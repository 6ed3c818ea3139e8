// What the editor and the toolbar look like: the dark theme, the current line, matched block words,
// folds and indentation guides, the toolbar's icons. The pixels of the grabbed widgets are inspected. Runs
// under Xvfb when it is installed (see CMakeLists.txt) and on the offscreen platform. With
// VELKOR_SCREENSHOT_DIR set it also leaves the README's two pictures there (scripts/screenshots.sh).
#include "editor/highlighter.h"
#include "editor/syntax_edit.h"
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/tool_bar.h"
#include "tests/ide/edit_page_test_support.h"
#include "tests/ide/screenshot_support.h"

#include <QTest>
#include <QToolBar>

namespace velkor::test {
namespace {

class AppearanceScreenshotTest : public PageTest {
protected:
    // A window of the given theme showing `text` in its page, shown and painted.
    std::unique_ptr<TfrmMain> ShowPage(const char* theme, const std::string& text) {
        TIniFile(IniPath()).WriteString("editor", "theme", theme);
        auto window =
            std::make_unique<TfrmMain>(QStringList{QString::fromStdString(MakeFile("Demo.pas", text))});
        window->resize(1000, 700);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        ProcessEvents();
        return window;
    }
    static TSyntaxEdit& Memo(TfrmMain& window) { return *window.ActivePage()->Memo(); }
    // The empty part of a line, right of its text.
    static QRect LineTail(TSyntaxEdit& memo, int line) {
        const QRect text = TextRect(memo, line, 0, static_cast<int>(memo.LineText(line).size()));
        return QRect(text.right() + 20, text.top() + 1, memo.viewport()->width() - text.right() - 40,
                     text.height() - 2);
    }
};

constexpr const char* kBlocks = "mission Blocks;\r\n"      // 0
                                "function Attack(a);\r\n"  // 1
                                "begin\r\n"                // 2
                                "  if (a) then\r\n"        // 3
                                "  begin\r\n"              // 4
                                "      a := 1;\r\n"        // 5
                                "  end;\r\n"               // 6
                                "end;\r\n"                 // 7
                                "object A (A) AS SHIP\r\n" // 8
                                "  x: 0;\r\n"              // 9
                                "end;\r\n";                // 10

TEST_F(AppearanceScreenshotTest, TheDarkThemeDarkensTheWholePage) {
    auto window = ShowPage("dark", kDemoMission);
    TSyntaxEdit& memo = Memo(*window);
    memo.SetCaret(10, 0);
    const QImage image = GrabEditor(memo);
    KeepScreenshot(window->grab().toImage(), "page_dark.png");
    const TEditorTheme& dark = DarkEditorTheme();
    ASSERT_STREQ(memo.Theme().Name, "dark");
    // No white is left anywhere: not on the page, not in the gutter.
    EXPECT_EQ(PixelsNear(image, image.rect(), Qt::white, 60), 0);
    EXPECT_GT(PixelsNear(image, LineTail(memo, 12), dark.Paper, 6), LineTail(memo, 12).width() * 8);
    // "function" on line 9 is a keyword, "// Adds its arguments." on line 8 a comment, "Attack" plain.
    EXPECT_GT(PixelsNear(image, TextRect(memo, 8, 0, 8), dark.Styles[hsKeyword]), 10);
    EXPECT_GT(PixelsNear(image, TextRect(memo, 7, 3, 21), dark.Styles[hsComment]), 10);
    EXPECT_GT(PixelsNear(image, TextRect(memo, 8, 9, 15), dark.Styles[hsDefault]), 10);
    // The gutter and the caret's line in their own colours.
    const QRect gutter(2, TextRect(memo, 12, 0, 0).top(), 10, 10);
    EXPECT_GT(PixelsNear(image, gutter, dark.MarginBack, 6), 80);
    EXPECT_GT(PixelsNear(image, LineTail(memo, 10), dark.CaretLine, 6), LineTail(memo, 10).width() * 8);
}

TEST_F(AppearanceScreenshotTest, TheCaretLineAndMatchedBlockWordsStandOut) {
    auto window = ShowPage("light", kBlocks);
    TSyntaxEdit& memo = Memo(*window);
    memo.SetCaret(4, 4);
    ProcessEvents();
    const QImage image = GrabEditor(memo);
    KeepScreenshot(window->grab().toImage(), "page_matching.png");
    const TEditorTheme& light = LightEditorTheme();
    EXPECT_GT(PixelsNear(image, LineTail(memo, 4), light.CaretLine, 4), LineTail(memo, 4).width() * 8);
    EXPECT_EQ(PixelsNear(image, LineTail(memo, 3), light.CaretLine, 4), 0);
    // The inner begin and its end carry the match colour; the outer pair does not.
    EXPECT_GT(PixelsNear(image, TextRect(memo, 4, 2, 7), light.BraceMatchBack, 8), 40);
    EXPECT_GT(PixelsNear(image, TextRect(memo, 6, 2, 5), light.BraceMatchBack, 8), 30);
    EXPECT_EQ(PixelsNear(image, TextRect(memo, 2, 0, 5), light.BraceMatchBack, 8), 0);
    EXPECT_EQ(PixelsNear(image, TextRect(memo, 7, 0, 3), light.BraceMatchBack, 8), 0);
    // An indentation guide runs through the deeper line's indentation, none through the shallow ones.
    const QRect deepIndent = TextRect(memo, 5, 1, 6);
    const QRect shallowIndent = TextRect(memo, 3, 0, 2);
    EXPECT_GT(PixelsNear(image, deepIndent, light.IndentGuide, 30), 3);
    EXPECT_EQ(PixelsNear(image, shallowIndent, light.IndentGuide, 30), 0);
}

TEST_F(AppearanceScreenshotTest, AFoldedFunctionShowsOnlyItsHeader) {
    auto window = ShowPage("light", kBlocks);
    TSyntaxEdit& memo = Memo(*window);
    memo.SetCaret(0, 0);
    const int foldX = static_cast<int>(memo.SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 0L) +
                                       memo.SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 1L));
    const int foldWidth = static_cast<int>(
        memo.SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, TSyntaxEdit::kFoldMargin));
    ASSERT_GT(foldWidth, 8);
    const auto box = [&](int line) {
        const QRect row = TextRect(memo, line, 0, 0);
        return QRect(foldX, row.top(), foldWidth, row.height());
    };
    const QColor marker = LightEditorTheme().FoldMarkerBack;
    const QImage open = GrabEditor(memo);
    // Boxes beside the function, the inner begin and the object; none beside a plain line.
    for (int line : {1, 4, 8}) EXPECT_GT(PixelsNear(open, box(line), marker, 30), 10) << line;
    EXPECT_EQ(PixelsNear(open, box(0), marker, 30), 0);
    const int objectTop = TextRect(memo, 8, 0, 0).top();
    const int bodyTop = TextRect(memo, 2, 0, 0).top();

    // A click on the function's box folds it: the object comes right below the header.
    const QRect header = box(1);
    QTest::mouseClick(memo.viewport(), Qt::LeftButton, Qt::NoModifier, header.center());
    ProcessEvents();
    const QImage folded = GrabEditor(memo);
    KeepScreenshot(window->grab().toImage(), "page_folded.png");
    EXPECT_EQ(TextRect(memo, 8, 0, 0).top(), bodyTop);
    EXPECT_LT(bodyTop, objectTop);
    EXPECT_NE(folded.copy(header), open.copy(header)); // the box shows "+" instead of "-"
    EXPECT_GT(PixelsNear(folded, TextRect(memo, 8, 0, 6), LightEditorTheme().Styles[hsKeyword]), 10);
    QTest::mouseClick(memo.viewport(), Qt::LeftButton, Qt::NoModifier, header.center());
    ProcessEvents();
    EXPECT_EQ(TextRect(memo, 8, 0, 0).top(), objectTop);
}

TEST_F(AppearanceScreenshotTest, TheToolbarShowsEveryButtonsIcon) {
    auto window = ShowPage("light", kDemoMission);
    TMainToolBar& bar = window->ToolBar();
    ASSERT_TRUE(bar.isVisible());
    const QImage image = bar.grab().toImage();
    KeepScreenshot(image, "toolbar.png");
    const QColor background = image.pixelColor(image.width() - 2, image.height() / 2);
    int buttons = 0;
    for (QAction* action : bar.actions()) {
        if (action->isSeparator()) continue;
        QWidget* button = bar.widgetForAction(action);
        ASSERT_NE(button, nullptr);
        const QRect rect = button->geometry();
        EXPECT_GE(rect.width(), 22);
        const int drawn = rect.width() * rect.height() - PixelsNear(image, rect, background, 30);
        EXPECT_GT(drawn, 22 * 22 / 5) << action->objectName().toStdString();
        ++buttons;
    }
    EXPECT_EQ(buttons, 7);
    // The bar sits above the editor tabs.
    EXPECT_LE(bar.geometry().bottom(), window->PageControlEditor()->mapTo(window.get(), QPoint(0, 0)).y());
}

// The README's pictures: the demo mission after a compile, caret on a begin, in both themes.
TEST_F(AppearanceScreenshotTest, ReadmePictures) {
    for (const char* theme : {"light", "dark"}) {
        auto window = ShowPage(theme, kDemoMission);
        TfrmEdit& page = *window->ActivePage();
        EXPECT_TRUE(page.Compile());
        page.Memo()->SetCaret(9, 2);
        ProcessEvents();
        const QImage image = window->grab().toImage();
        // The page's colour fills a good part of the picture.
        const QColor paper = page.Memo()->Theme().Paper;
        EXPECT_GT(PixelsNear(image, image.rect(), paper, 6), image.width() * image.height() / 5) << theme;
        KeepScreenshot(image, (std::string("ide-") + theme + ".png").c_str());
    }
}

} // namespace
} // namespace velkor::test
