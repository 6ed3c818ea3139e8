// The menu tree: captions, access keys, shortcuts, hidden items and the rules that enable items.
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

TEST_F(MenusTest, ProjectItemsAndCompileAllDoNothing) {
    TfrmMain window({});
    for (const char* name : {"MenuFileNewProject", "MenuFileSaveProject", "MenuCompileAll"})
        window.MenuItem(QString::fromLatin1(name))->trigger();
    ProcessEvents();
    EXPECT_EQ(window.Pages().size(), 1);
    EXPECT_EQ(modalDialogs_, 0);
    EXPECT_TRUE(messages_.isEmpty());
    EXPECT_TRUE(window.IffView().Text().isEmpty());
}

TEST_F(MenusTest, FileMenuRules) {
    TfrmMain window({});
    const auto enabled = [&](const char* name) {
        return window.MenuItem(QString::fromLatin1(name))->isEnabled();
    };
    window.UpdateFileMenu();
    EXPECT_TRUE(enabled("MenuFileClose"));
    EXPECT_TRUE(enabled("MenuFileCloseAll"));
    EXPECT_TRUE(enabled("MenuFileSaveAs"));
    EXPECT_FALSE(enabled("MenuFileSave"));
    window.ActivePage()->Memo()->SetText(QStringLiteral("text"));
    window.UpdateFileMenu();
    EXPECT_TRUE(enabled("MenuFileSave"));
    window.ActivePage()->SetModified(false);
    window.MenuItem(QStringLiteral("MenuFileClose"))->trigger();
    ProcessEvents();
    window.UpdateFileMenu();
    EXPECT_FALSE(enabled("MenuFileClose"));
    EXPECT_FALSE(enabled("MenuFileCloseAll"));
    EXPECT_FALSE(enabled("MenuFileSaveAs"));
    EXPECT_FALSE(enabled("MenuFileSave"));
}

TEST_F(MenusTest, EditMenuFollowsThePageContextItems) {
    TfrmMain window({});
    const auto enabled = [&](const char* name) {
        return window.MenuItem(QString::fromLatin1(name))->isEnabled();
    };
    QApplication::clipboard()->setText(QStringLiteral("clip"));
    window.UpdateEditMenu();
    EXPECT_FALSE(enabled("MenuEditUndo"));
    EXPECT_FALSE(enabled("MenuEditCut"));
    EXPECT_FALSE(enabled("MenuEditCopy"));
    EXPECT_FALSE(enabled("MenuEditDelete"));
    EXPECT_FALSE(enabled("MenuEditSelectAll"));
    EXPECT_EQ(enabled("MenuEditPaste"),
              window.ActivePage()->ContextItem(QStringLiteral("ContextPaste"))->isEnabled());

    window.ActivePage()->Memo()->insert(QStringLiteral("hello world"));
    window.ActivePage()->Memo()->selectAll();
    window.UpdateEditMenu();
    EXPECT_TRUE(enabled("MenuEditUndo"));
    EXPECT_TRUE(enabled("MenuEditCut"));
    EXPECT_TRUE(enabled("MenuEditCopy"));
    EXPECT_TRUE(enabled("MenuEditDelete"));
    EXPECT_TRUE(enabled("MenuEditSelectAll"));

    window.MenuItem(QStringLiteral("MenuEditDelete"))->trigger();
    EXPECT_TRUE(window.ActivePage()->Text().isEmpty());
    window.MenuItem(QStringLiteral("MenuEditUndo"))->trigger();
    EXPECT_EQ(window.ActivePage()->Text(), QStringLiteral("hello world"));
}

TEST_F(MenusTest, TopicItemNamesTheWordAtTheCursor) {
    TfrmMain window({});
    QAction* topic = window.MenuItem(QStringLiteral("MenuHelpTopic"));
    window.UpdateHelpMenu();
    EXPECT_EQ(topic->text(), QStringLiteral("Topic: \"\""));
    EXPECT_FALSE(topic->isEnabled());
    window.ActivePage()->Memo()->SetText(QStringLiteral("  while x"));
    window.ActivePage()->Memo()->SetCaret(0, 4);
    window.UpdateHelpMenu();
    EXPECT_EQ(topic->text(), QStringLiteral("Topic: \"while\""));
    EXPECT_TRUE(topic->isEnabled());
    topic->trigger();
    EXPECT_TRUE(
        QString::fromStdString(window.HelpView().CurrentPage()).endsWith(QStringLiteral("help/while.html")));
    // Between openings of the menu the timer only follows the caret for the shortcut.
    window.ActivePage()->Memo()->SetCaret(0, 1);
    window.UpdateHelpMenu();
    window.ActivePage()->Memo()->SetCaret(0, 4);
    window.TimerTick();
    EXPECT_TRUE(topic->isEnabled());
    EXPECT_EQ(topic->text(), QStringLiteral("Topic: \"\""));
    window.ActivePage()->Memo()->SetCaret(0, 1);
    window.TimerTick();
    EXPECT_FALSE(topic->isEnabled());
}

TEST_F(MenusTest, CompileAndEditPutsTheGeneratedTextIntoANewPageOnlyAfterSuccess) {
    TfrmMain window({});
    window.ActivePage()->Memo()->SetText(QStringLiteral("unit demo;\r\n"));
    const bool compiled = window.ActivePage()->Compile();
    window.IffView().SetText(QStringLiteral("stale"));
    window.MenuItem(QStringLiteral("CompileandEdit1"))->trigger();
    ASSERT_EQ(window.Pages().size(), compiled ? 2 : 1);
    if (!compiled) return;
    EXPECT_EQ(window.ActivePage()->Caption(), QStringLiteral("Untitled1.pas"));
    EXPECT_EQ(window.ActivePage()->Text(), window.IffView().Text());
    EXPECT_NE(window.IffView().Text(), QStringLiteral("stale"));
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

TEST_F(MenusTest, BuildIffWritesTheFilesTheTextNames) {
    // The text names a folder outside the program's own and outside any page's: only the setting lets
    // a text write there.
    TIniFile(IniPath()).WriteBool("compiler", "allow_output_anywhere", true);
    TfrmMain window({});
    const std::string target = Path("built.iff");
    window.IffView().SetText(QString::fromStdString(
        "IFF \"" + target +
        "\"\n{\n  FORM \"MISN\"\n  {\n    CHUNK \"DATA\" { BYTE [3] 1, 2, 3 }\n  }\n}\n"));
    window.MenuItem(QStringLiteral("MenuCompileBuildIff"))->trigger();
    ASSERT_TRUE(std::filesystem::exists(target)) << window.OutputView().Lines().join(u'\n').toStdString();
    const std::string bytes = ReadFile(target);
    EXPECT_EQ(bytes.substr(0, 4), "FORM");
    EXPECT_EQ(window.OutputView().Lines().back(),
              QString::fromStdString("******* " + target + " (" + std::to_string(bytes.size()) +
                                     " bytes) *******"));
}

TEST_F(MenusTest, BuildIffReportsAssemblerErrors) {
    TfrmMain window({});
    window.IffView().SetText(QStringLiteral("IFF \"x.iff\"\n{\n  FORM\n"));
    window.MenuItem(QStringLiteral("MenuCompileBuildIff"))->trigger();
    ASSERT_FALSE(window.OutputView().Lines().isEmpty());
    EXPECT_TRUE(window.OutputView().Lines().front().startsWith(QStringLiteral("[error] line ")));
}

} // namespace
} // namespace velkor::test
