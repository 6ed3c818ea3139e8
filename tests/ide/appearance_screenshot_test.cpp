// What the window and the editor look like: the dark theme, the error line of a failed compile, the
// README's pictures (which show the whole window) and the theme setting that pages take. The pixels of the
// grabbed widgets are inspected. Runs under Xvfb when it is installed (see CMakeLists.txt) and on the
// offscreen platform. With VELKOR_SCREENSHOT_DIR set it also leaves the pictures there
// (scripts/screenshots.sh).
#include "editor/highlighter.h"
#include "tests/ide/edit_page_test_support.h"

namespace velkor::test {
namespace {

class AppearanceScreenshotTest : public PageTest {
protected:
    // A window of the given theme showing the demo mission in its page, shown and painted.
    std::unique_ptr<TfrmMain> ShowPage(const char* theme) {
        TIniFile(IniPath()).WriteString("editor", "theme", theme);
        auto window = std::make_unique<TfrmMain>(
            QStringList{QString::fromStdString(MakeFile("Demo.pas", kDemoMission))});
        Show(*window, 1000, 700);
        ProcessEvents();
        return window;
    }
    // A line from `from` pixels (by default just right of its text) to short of the viewport's edge.
    static QRect LineTail(TSyntaxEdit& memo, int line, int from = -1) {
        const QRect text = TextRect(memo, line, 0, static_cast<int>(memo.LineText(line).size()));
        if (from < 0) from = text.right() + 20;
        return QRect(from, text.top() + 1, memo.viewport()->width() - from - 20, text.height() - 2);
    }
};

TEST_F(AppearanceScreenshotTest, TheDarkThemeDarkensTheWholePage) {
    auto window = ShowPage("dark");
    TSyntaxEdit& memo = *window->ActivePage()->Memo();
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
    EXPECT_GT(PixelsNear(image, QRect(2, TextRect(memo, 12, 0, 0).top(), 10, 10), dark.MarginBack, 6), 80);
    EXPECT_GT(PixelsNear(image, LineTail(memo, 10), dark.CaretLine, 6), LineTail(memo, 10).width() * 8);
}

TEST_F(AppearanceScreenshotTest, TheErrorLineIsMarkedAfterAFailedCompile) {
    TIniFile(IniPath()).WriteInteger("compiler", "verbosity", 0);
    TfrmMain window({});
    TfrmEdit* page = window.ActivePage();
    Show(window, 1000, 760);
    page->Memo()->SetText(QStringLiteral("mission Broken;\r\nvar a;\r\nthis is not pascal;\r\nvar b;\r\n"));
    EXPECT_FALSE(page->Compile());
    ASSERT_EQ(page->Memo()->ErrorLine(), 2);
    TSyntaxEdit& memo = *page->Memo();
    const QImage image = GrabEditor(memo);
    KeepScreenshot(window.grab().toImage(), "page_error_line.png");
    const QColor mark(0xFF, 0xB0, 0xB0);
    const int from = TextRect(memo, 2, 0, 0).left() + 60;
    EXPECT_GT(PixelsNear(image, LineTail(memo, 2, from), mark, 10), memo.viewport()->width());
    EXPECT_EQ(PixelsNear(image, LineTail(memo, 1, from), mark, 10), 0);
    EXPECT_FALSE(window.OutputView().Lines().isEmpty());
}

// The README's pictures: the window with the demo mission after a compile, caret on a begin, both themes.
TEST_F(AppearanceScreenshotTest, ReadmePictures) {
    for (const char* theme : {"light", "dark"}) {
        auto window = ShowPage(theme);
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

using ThemeSettingTest = PageTest;

TEST_F(ThemeSettingTest, PagesTakeTheSettingAndTheDialogChangesIt) {
    for (const QStringList& row : ReadCases("theme_setting.txt")) {
        SCOPED_TRACE(row.join(u' ').toStdString());
        ASSERT_EQ(row.size(), 4);
        const std::string stored = row[0] == u'-' ? "" : row[0].toStdString();
        TIniFile ini(IniPath());
        ini.EraseSection("editor");
        if (!stored.empty()) ini.WriteString("editor", "theme", stored);
        TfrmMain window({});
        TSyntaxEdit& memo = *window.ActivePage()->Memo();
        EXPECT_EQ(memo.ThemeChoice(), ThemeChoiceFromName(stored));
        TfrmSettings settings(&window);
        EXPECT_EQ(settings.cbTheme->currentText(), row[1]);
        settings.cbTheme->setCurrentText(row[2]);
        settings.WriteSettings();
        EXPECT_EQ(QString::fromStdString(TIniFile(IniPath()).ReadString("editor", "theme", "")), row[3]);
        // The open page changed at once, and a new page starts with it.
        EXPECT_EQ(memo.ThemeChoice(), ThemeChoiceFromName(row[3].toStdString()));
        EXPECT_EQ(window.NewPage()->Memo()->ThemeChoice(), ThemeChoiceFromName(row[3].toStdString()));
    }
}

} // namespace
} // namespace velkor::test
