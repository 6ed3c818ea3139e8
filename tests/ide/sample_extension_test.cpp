// Extensions end to end in a running main window: the sample library's menu items with and without an
// open page, the exports it reaches the IDE through, the start list and the Plugins tab.
#include "ide/edit_page.h"
#include "ide/ext_handler.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "ide/settings_dialog.h"
#include "ide/velkor_extension.h"
#include "platform/executable_path.h"
#include "platform/ini_file.h"
#include "tests/ide/ide_test_support.h"

#include <QAction>
#include <QListWidget>
#include <QMenu>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace velkor::test {
namespace {

class SampleExtensionTest : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        // A game folder, so that the first show does not open the settings dialog.
        TIniFile(IniPath()).WriteString("main", "sopath", "/so");
        unsetenv("VELKOR_TEST_INIT_ORDER");
    }
    void TearDown() override {
        SetExecutableFolderForTesting("");
        IdeTest::TearDown();
    }

    static QStringList ExtensionMenuItems(const TfrmMain& window) {
        QStringList names;
        for (const QAction* action : window.findChild<QMenu*>(QStringLiteral("MenuExtensions"))->actions())
            if (!action->isSeparator()) names << action->objectName();
        return names;
    }
    static QAction* Item(const TfrmMain& window, const char* name) {
        return window.findChild<QMenu*>(QStringLiteral("MenuExtensions"))
            ->findChild<QAction*>(QString::fromLatin1(name));
    }
    static QString LastOutput(TfrmMain& window) {
        const QStringList lines = window.OutputView().Lines();
        return lines.isEmpty() ? QString() : lines.back();
    }
};

TEST_F(SampleExtensionTest, TheExportsHandOutTheLiveObjects) {
    EXPECT_EQ(extGetMainForm(), nullptr);
    EXPECT_EQ(extGetActiveEdit(), nullptr);
    TfrmMain window({});
    EXPECT_EQ(extGetMainForm(), &window);
    EXPECT_EQ(extGetApplication(), qApp);
    ASSERT_NE(window.ActivePage(), nullptr);
    EXPECT_EQ(extGetActiveEdit(), window.ActivePage()->Memo());
    window.CloseAll();
    ProcessEvents();
    EXPECT_EQ(extGetActiveEdit(), nullptr);
}

TEST_F(SampleExtensionTest, InitExtGetsTheExecutablesOwnModuleHandle) {
    unsetenv("VELKOR_TEST_EXTENSION_HOST");
    ASSERT_EQ(LoadExtension(VELKOR_TEST_EXTENSION), "");
    char self[32];
    std::snprintf(self, sizeof self, "%p", dlopen(nullptr, RTLD_NOW));
    ASSERT_NE(std::getenv("VELKOR_TEST_EXTENSION_HOST"), nullptr);
    EXPECT_STREQ(std::getenv("VELKOR_TEST_EXTENSION_HOST"), self);
}

TEST_F(SampleExtensionTest, ItsItemsCountTheLinesAndInsertTheTemplate) {
    TfrmMain window({});
    ASSERT_EQ(LoadExtension(VELKOR_SAMPLE_EXTENSION), "");
    EXPECT_EQ(ExtensionMenuItems(window),
              (QStringList{"MenuExtLoad", "SampleCountLines", "SampleInsertTemplate"}));
    EXPECT_EQ(LastOutput(window),
              QStringLiteral("Sample extension: Extensions > Count Lines and Insert Template are ready"));

    TfrmEdit* page = window.ActivePage();
    ASSERT_NE(page, nullptr);
    page->Memo()->SetText(QStringLiteral("mission m;\r\n\r\nvar\r\n  kills = 0;"));
    window.OutputView().hide();
    Item(window, "SampleCountLines")->trigger();
    EXPECT_EQ(LastOutput(window), QStringLiteral("Count Lines: 4 lines"));
    // The count is brought into view.
    EXPECT_FALSE(window.OutputView().isHidden());

    // The template goes in at the caret, in the page's own line breaks.
    page->Memo()->SetCaret(1, 0);
    Item(window, "SampleInsertTemplate")->trigger();
    EXPECT_EQ(page->Memo()->Text(), QStringLiteral("mission m;\r\n"
                                                   "object Name (Name) AS SHIP\r\n"
                                                   "  x: 0; y: 0; z: 0;\r\n"
                                                   "end;\r\n"
                                                   "\r\nvar\r\n  kills = 0;"));
    EXPECT_TRUE(page->Modified());
    Item(window, "SampleCountLines")->trigger();
    EXPECT_EQ(LastOutput(window), QStringLiteral("Count Lines: 7 lines"));
    // One undo takes the whole template out again.
    page->Memo()->undo();
    EXPECT_EQ(page->Memo()->Text(), QStringLiteral("mission m;\r\n\r\nvar\r\n  kills = 0;"));
}

TEST_F(SampleExtensionTest, WithNoPageOpenItSaysSo) {
    TfrmMain window({});
    ASSERT_EQ(LoadExtension(VELKOR_SAMPLE_EXTENSION), "");
    window.CloseAll();
    ProcessEvents();
    ASSERT_EQ(window.ActivePage(), nullptr);
    Item(window, "SampleCountLines")->trigger();
    EXPECT_EQ(LastOutput(window), QStringLiteral("Count Lines: no active editor"));
    Item(window, "SampleInsertTemplate")->trigger();
    EXPECT_EQ(LastOutput(window), QStringLiteral("Insert Template: no active editor"));
    EXPECT_TRUE(messages_.isEmpty());
}

TEST_F(SampleExtensionTest, LoadedAgainItIsStartedAgainButAddsNoSecondSetOfItems) {
    TfrmMain window({});
    ASSERT_EQ(LoadExtension(VELKOR_SAMPLE_EXTENSION), "");
    window.OutputView().Clear();
    ASSERT_EQ(LoadExtension(VELKOR_SAMPLE_EXTENSION), "");
    EXPECT_EQ(ExtensionMenuItems(window),
              (QStringList{"MenuExtLoad", "SampleCountLines", "SampleInsertTemplate"}));
    EXPECT_TRUE(window.OutputView().Lines().isEmpty());
}

TEST_F(SampleExtensionTest, TheStartListLoadsInFileOrderAndGoesOnPastAMissingLibrary) {
    const std::string missing = Path("no such extension.so");
    TIniFile ini(IniPath());
    ini.WriteString("autoloadext", VELKOR_ORDER_SECOND_EXTENSION, "1");
    ini.WriteString("autoloadext", missing, "1");
    ini.WriteString("autoloadext", VELKOR_ORDER_FIRST_EXTENSION, "1");
    ini.WriteString("autoloadext", VELKOR_SAMPLE_EXTENSION, "1");
    TfrmMain window({});
    EXPECT_EQ(std::getenv("VELKOR_TEST_INIT_ORDER"), nullptr);
    window.show();
    ASSERT_NE(std::getenv("VELKOR_TEST_INIT_ORDER"), nullptr);
    EXPECT_STREQ(std::getenv("VELKOR_TEST_INIT_ORDER"), "second,first");
    EXPECT_EQ(messages_,
              QStringList{QString::fromStdString("Could not load library \"" + missing + "\": not found!")});
    // The IDE went on: the library after the failure is there and works.
    Item(window, "SampleCountLines")->trigger();
    EXPECT_EQ(LastOutput(window), QStringLiteral("Count Lines: 1 line"));
    // A manual load of a library already started starts it again.
    openAnswers_ << QString::fromUtf8(VELKOR_ORDER_FIRST_EXTENSION);
    window.LoadExtensionDialog();
    EXPECT_STREQ(std::getenv("VELKOR_TEST_INIT_ORDER"), "second,first,first");
}

TEST_F(SampleExtensionTest, ALibraryTheLoaderRefusesIsReportedWithTheLoadersReason) {
    WriteFile(Dir() / "broken.so", "\x7f"
                                   "ELF but nothing more");
    TfrmMain window({});
    window.LoadExtensionFile(Path("broken.so"));
    EXPECT_EQ(messages_, QStringList{QString::fromStdString("Could not load library \"" + Path("broken.so") +
                                                            "\": not found!")});
    EXPECT_TRUE(LastOutput(window).contains(QStringLiteral("broken.so")));
}

TEST_F(SampleExtensionTest, ANameWithoutAFolderIsLookedForBesideTheExecutable) {
    const std::filesystem::path sample = VELKOR_SAMPLE_EXTENSION;
    SetExecutableFolderForTesting(sample.parent_path().string());
    TfrmMain window({});
    // Written in another letter case, as settings files from Windows are.
    const std::string name = sample.filename().string();
    std::string upper = name;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(LoadExtension(upper), "");
    EXPECT_NE(Item(window, "SampleCountLines"), nullptr);
    EXPECT_EQ(LoadExtension("elsewhere_" + name),
              "Could not load library \"elsewhere_" + name + "\": not found!");
}

TEST_F(SampleExtensionTest, ThePluginsTabListsTheSampleAndTickingItLoadsItAtTheNextStart) {
    const std::filesystem::path sample = VELKOR_SAMPLE_EXTENSION;
    // The sample is built beside the velkor executable.
    SetExecutableFolderForTesting(sample.parent_path().string());
    {
        TfrmSettings dialog;
        const QList<QListWidgetItem*> found =
            dialog.clbPlugins->findItems(QStringLiteral("sample_extension.so"), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1);
        EXPECT_EQ(found.front()->checkState(), Qt::Unchecked);
        found.front()->setCheckState(Qt::Checked);
        dialog.WriteSettings();
    }
    const std::string key = ExecutableFolder() + "sample_extension.so";
    EXPECT_EQ(TIniFile(IniPath()).ReadSection("autoloadext"), std::vector<std::string>{key});
    EXPECT_EQ(TIniFile(IniPath()).ReadString("autoloadext", key, ""), "1");

    TfrmMain window({});
    EXPECT_EQ(Item(window, "SampleCountLines"), nullptr);
    window.show();
    EXPECT_NE(Item(window, "SampleCountLines"), nullptr);
    EXPECT_TRUE(messages_.isEmpty());
}

} // namespace
} // namespace velkor::test
