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

struct ItemText {
    const char* Name;
    const char* Caption;
    const char* ShortCut;
};

TEST_F(MenusTest, EveryItemHasItsCaptionAndShortcut) {
    const ItemText items[] = {
        {"MenuFileNewUnit", "New &Unit", "Ctrl+N"},
        {"MenuFileNewProject", "New &Project", "Ctrl+P"},
        {"MenuFileOpen", "&Open...", ""},
        {"MenuFileReopen", "&Reopen", ""},
        {"MenuFileDecodeIff", "Decode IFF...", ""},
        {"MenuFileSave", "&Save", ""},
        {"MenuFileSaveAs", "Save &As...", ""},
        {"MenuFileSaveProject", "Save Pro&ject", ""},
        {"MenuFileSaveAll", "Sa&ve All", ""},
        {"MenuFileClose", "&Close", ""},
        {"MenuFileCloseAll", "C&lose All", ""},
        {"MenuFileSettings", "Se&ttings...", ""},
        {"MenuFileExit", "E&xit", ""},
        {"MenuEditUndo", "&Undo", "Ctrl+Z"},
        {"MenuEditCut", "Cu&t", "Ctrl+X"},
        {"MenuEditCopy", "&Copy", "Ctrl+C"},
        {"MenuEditPaste", "&Paste", "Ctrl+V"},
        {"MenuEditDelete", "&Delete", "Ctrl+Del"},
        {"MenuEditSelectAll", "Se&lect All", "Ctrl+A"},
        {"MenuViewIff", "&IFF Source", ""},
        {"MenuViewOutput", "&Output", ""},
        {"MenuViewHelp", "&Help", ""},
        {"MenuEditFind", "&Find...", "Ctrl+F"},
        {"MenuEditSearchAgain", "Search &Again", "F3"},
        {"MenuEditReplace", "&Replace...", "Ctrl+R"},
        {"MenuEditFindGotoLine", "&Go to Line Number...", "Ctrl+L"},
        {"MenuEditFindSymbolBrowser", "&Symbol Browser", "Ctrl+S"},
        {"MenuEditFindFunctionList", "&Function List...", "Ctrl+G"},
        {"MenuEditFindObjectList", "&Object List...", "Ctrl+O"},
        {"MenuEditFindConstList", "Constant List", "Ctrl+T"},
        {"MenuCompileCompile", "Com&pile", "Ctrl+F9"},
        {"CompileandEdit1", "Compile && &Edit", ""},
        {"MenuCompileBuild", "&Compile && Build Iff", "F9"},
        {"CompilerusingCommandLineCompiler1", "Compiler &using CommandLine Compiler", ""},
        {"MenuCompileAll", "Compile && Build &All", ""},
        {"MenuCompileBuildIff", "&Build Iff", ""},
        {"MenuExtLoad", "&Load...", ""},
        {"MenuHelpTopic", "&Topic: ", "F1"},
        {"MenuHelpLanguage", "&Language", ""},
        {"MenuHelpObjects", "&Objects", ""},
        {"MenuHelpProperties", "&Properties", ""},
        {"MenuHelpFunctions", "&Functions", ""},
        {"MenuHelpAbout", "&About...", ""},
    };
    TfrmMain window({});
    for (const ItemText& item : items) {
        SCOPED_TRACE(item.Name);
        QAction* action = window.MenuItem(QString::fromLatin1(item.Name));
        ASSERT_NE(action, nullptr);
        EXPECT_EQ(action->text(), QString::fromLatin1(item.Caption));
        EXPECT_EQ(action->shortcut(), QKeySequence(QString::fromLatin1(item.ShortCut)));
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

TEST_F(MenusTest, ViewItemsAreCheckedByVisibilityAndToggle) {
    TfrmMain window({});
    window.show();
    window.UpdateViewMenu();
    QAction* output = window.MenuItem(QStringLiteral("MenuViewOutput"));
    EXPECT_TRUE(output->isChecked());
    output->trigger();
    window.UpdateViewMenu();
    EXPECT_FALSE(output->isChecked());
    EXPECT_TRUE(window.OutputView().isHidden());
    output->trigger();
    EXPECT_FALSE(window.OutputView().isHidden());
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
}

TEST_F(MenusTest, TheTopicShortcutFollowsTheCaretBetweenOpeningsOfTheHelpMenu) {
    TfrmMain window({});
    QAction* topic = window.MenuItem(QStringLiteral("MenuHelpTopic"));
    window.UpdateHelpMenu();
    ASSERT_FALSE(topic->isEnabled());
    window.ActivePage()->Memo()->SetText(QStringLiteral("  while x"));
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
    ini.WriteInteger("compiler", "verbosity", 256);
    EXPECT_EQ(ReadCompileSettings().Verbosity, 255);
}

TEST_F(MenusTest, AFailedCompileMarksTheErrorLineAndBuildsNothing) {
    TIniFile(IniPath()).WriteInteger("compiler", "verbosity", 0);
    TfrmMain window({});
    window.IffView().SetText(QStringLiteral("unchanged"));
    TfrmEdit* page = window.ActivePage();
    page->Memo()->SetText(QStringLiteral("unit demo;\r\n\r\n\r\nthis is not pascal at all\r\n"));
    window.MenuItem(QStringLiteral("MenuCompileBuild"))->trigger();
    EXPECT_EQ(window.IffView().Text(), QStringLiteral("unchanged"));
    EXPECT_EQ(window.Pages().size(), 1);
    EXPECT_GE(page->Memo()->ErrorLine(), 0);
    EXPECT_EQ(page->Memo()->CaretLine(), page->Memo()->ErrorLine());
    EXPECT_FALSE(window.OutputView().Lines().isEmpty());
}

// A hand-edited verbosity out of range is taken as the nearest level, not a "Range check error" at every
// compile.
TEST_F(MenusTest, AVerbosityOutOfRangeStillCompiles) {
    TIniFile(IniPath()).WriteInteger("compiler", "verbosity", 256);
    TfrmMain window({});
    window.ActivePage()->Memo()->SetText(QStringLiteral("unit demo;\r\n"));
    EXPECT_TRUE(window.ActivePage()->Compile());
    EXPECT_FALSE(window.OutputView().Lines().contains(QStringLiteral("Range check error")));
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
