// What the window and the editor look like: the window rendered with its caption, the dark theme, the error
// line of a failed compile, and the theme setting that pages take. The pixels of the grabbed widgets are
// inspected. Runs under Xvfb when it is installed (see CMakeLists.txt) and on the offscreen platform. With
// VELKOR_SCREENSHOT_DIR set it also leaves the README's two pictures there (scripts/screenshots.sh).
#include "editor/highlighter.h"
#include "editor/syntax_edit.h"
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "ide/settings_dialog.h"
#include "platform/ini_file.h"
#include "tests/ide/edit_page_test_support.h"
#include "tests/ide/ide_test_support.h"
#include "tests/ide/screenshot_support.h"

#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QPixmap>
#include <QSet>
#include <QTest>

#include <cstdlib>

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

class ScreenshotTest : public IdeTest {};

TEST_F(ScreenshotTest, TheWindowRendersWithItsCaption) {
    TIniFile(IniPath()).WriteString("main", "sopath", "/so");
    TfrmMain window({});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Velkor Console 3.0d (Compiler: 1.0 R24d)"));
    const QImage image = window.grab().toImage();
    ASSERT_FALSE(image.isNull());
    EXPECT_GE(image.width(), 200);
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 7) {
        for (int x = 0; x < image.width(); x += 7) colours.insert(image.pixel(x, y));
    }
    // A blank grab is one colour; menus, tabs, the editor and the views give many.
    EXPECT_GE(colours.size(), 4);
    if (const char* shot = std::getenv("VELKOR_SCREENSHOT")) image.save(QString::fromLocal8Bit(shot));
}

using ThemeSettingTest = PageTest;

TEST_F(ThemeSettingTest, PagesTakeTheSettingAndTheDialogChangesIt) {
    struct Case {
        const char* Stored;  // in velkor.ini before the window starts; null: no key
        int Shown;           // the dialog's item
        const char* Chosen;  // the item picked in the dialog
        const char* Written; // what OK writes
    };
    const Case cases[] = {
        {nullptr, 0, "Dark", "dark"},
        {"dark", 2, "Light", "light"},
        {"LIGHT", 1, "System", "system"},
        {"nonsense", 0, "Dark", "dark"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Stored ? c.Stored : "(none)");
        TIniFile ini(IniPath());
        ini.EraseSection("editor");
        if (c.Stored) ini.WriteString("editor", "theme", c.Stored);
        TfrmMain window({});
        TSyntaxEdit& memo = *window.ActivePage()->Memo();
        const TThemeChoice stored = ThemeChoiceFromName(c.Stored ? c.Stored : "");
        EXPECT_EQ(memo.ThemeChoice(), stored);
        TfrmSettings settings(&window);
        ASSERT_EQ(settings.cbTheme->objectName(), QStringLiteral("cbTheme"));
        EXPECT_EQ(settings.cbTheme->currentIndex(), c.Shown);
        settings.cbTheme->setCurrentText(QString::fromLatin1(c.Chosen));
        settings.WriteSettings();
        EXPECT_EQ(TIniFile(IniPath()).ReadString("editor", "theme", ""), c.Written);
        // The open page changed at once, and a new page starts with it.
        EXPECT_EQ(memo.ThemeChoice(), ThemeChoiceFromName(c.Written));
        EXPECT_EQ(window.NewPage()->Memo()->ThemeChoice(), ThemeChoiceFromName(c.Written));
    }
}

} // namespace
} // namespace velkor::test
