// The menu tree: captions, access keys, shortcuts and hidden items; the compile settings of a fresh file.
#include "ide/edit_page.h"
#include "ide/help_view.h"
#include "ide/iff_view.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "platform/exception.h"
#include "platform/ini_file.h"
#include "tests/ide/ide_test_support.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMenuBar>

namespace velkor::test {
namespace {

class MenusTest : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        TIniFile(IniPath()).WriteString("main", "sopath", "/games/so");
    }
};

TEST_F(MenusTest, EveryItemHasItsCaptionAndShortcut) {
    TfrmMain window({});
    const auto items = ReadCases("menu_items.txt");
    ASSERT_EQ(items.size(), 43u);
    for (const QStringList& item : items) {
        SCOPED_TRACE(item[0].toStdString());
        QAction* action = window.MenuItem(item[0]);
        ASSERT_NE(action, nullptr);
        EXPECT_EQ(action->text(), item[1]);
        EXPECT_EQ(action->shortcut(), QKeySequence(item.value(2)));
    }
    // Save has no shortcut: Ctrl+S belongs to the symbol browser.
    EXPECT_TRUE(window.MenuItem(QStringLiteral("MenuFileSave"))->shortcut().isEmpty());
    EXPECT_FALSE(window.MenuItem(QStringLiteral("CompilerusingCommandLineCompiler1"))->isVisible());
    EXPECT_FALSE(window.MenuItem(QStringLiteral("MenuCompileAll"))->isVisible());
    EXPECT_EQ(window.findChild<QMenu*>(QStringLiteral("MenuExtensions"))->title(),
              QStringLiteral("E&xtensions"));
}

TEST_F(MenusTest, AFreshSettingsFileCompilesWithVerbosityOneAndNoOptimiser) {
    TCompileSettings fresh = ReadCompileSettings();
    EXPECT_EQ(fresh.Verbosity, 1);
    EXPECT_FALSE(fresh.Optimize);
    EXPECT_TRUE(fresh.HaltOnError);
    TIniFile ini(IniPath());
    ini.WriteInteger("compiler", "verbosity", 255);
    ini.WriteBool("compiler", "optimization", true);
    ini.WriteBool("compiler", "haltonerror", false);
    const TCompileSettings written = ReadCompileSettings();
    EXPECT_EQ(written.Verbosity, 255);
    EXPECT_TRUE(written.Optimize);
    EXPECT_FALSE(written.HaltOnError);
    // A hand-edited level out of range is taken as the nearest, not a "Range check error" at every compile.
    ini.WriteInteger("compiler", "verbosity", 2147483647);
    EXPECT_EQ(ReadCompileSettings().Verbosity, 255);
    ini.WriteInteger("compiler", "verbosity", -5);
    EXPECT_EQ(ReadCompileSettings().Verbosity, 0);
}

} // namespace
} // namespace velkor::test
