// Extensions end to end in a running main window: the sample library's menu items with and without an
// open page, the exports it reaches the IDE through, the start list, the load dialog and the loader's
// failure messages.
#include "ide/ext_handler.h"
#include "ide/velkor_extension.h"
#include "tests/ide/edit_page_test_support.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace velkor::test {
namespace {

class SampleExtensionTest : public PageTest {
protected:
    void SetUp() override {
        PageTest::SetUp();
        unsetenv("VELKOR_TEST_INIT_ORDER");
    }

    static QStringList ExtensionMenuItems(const TfrmMain& window) {
        QStringList names;
        for (const QAction* action : window.findChild<QMenu*>(QStringLiteral("MenuExtensions"))->actions())
            if (!action->isSeparator()) names << action->objectName();
        return names;
    }
    static QAction* Item(const TfrmMain& window, const char* name) {
        return window.findChild<QMenu*>(QStringLiteral("MenuExtensions"))->findChild<QAction*>(name);
    }
    // Runs an item of the Extensions menu and gives the last line of the output view after it.
    static QString Run(TfrmMain& window, const char* item) {
        if (item) Item(window, item)->trigger();
        return window.OutputView().Lines().value(window.OutputView().Lines().size() - 1);
    }
};

TEST_F(SampleExtensionTest, TheExportsHandOutTheLiveObjectsAndInitExtTheExecutable) {
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
    // init_ext gets the executable's own module handle.
    unsetenv("VELKOR_TEST_EXTENSION_HOST");
    ASSERT_EQ(LoadExtension(VELKOR_TEST_EXTENSION), "");
    char self[32];
    std::snprintf(self, sizeof self, "%p", dlopen(nullptr, RTLD_NOW));
    ASSERT_NE(std::getenv("VELKOR_TEST_EXTENSION_HOST"), nullptr);
    EXPECT_STREQ(std::getenv("VELKOR_TEST_EXTENSION_HOST"), self);
}

TEST_F(SampleExtensionTest, ItsItemsWorkOnThePageComeOnceAndSayWhenNoPageIsOpen) {
    TfrmMain window({});
    ASSERT_EQ(LoadExtension(VELKOR_SAMPLE_EXTENSION), "");
    EXPECT_EQ(ExtensionMenuItems(window),
              (QStringList{"MenuExtLoad", "SampleCountLines", "SampleInsertTemplate"}));
    EXPECT_EQ(Run(window, nullptr),
              QStringLiteral("Sample extension: Extensions > Count Lines and Insert Template are ready"));

    TfrmEdit* page = window.ActivePage();
    ASSERT_NE(page, nullptr);
    page->Memo()->SetText(QStringLiteral("mission m;\r\n\r\nvar\r\n  kills = 0;"));
    window.OutputView().hide();
    EXPECT_EQ(Run(window, "SampleCountLines"), QStringLiteral("Count Lines: 4 lines"));
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
    EXPECT_EQ(Run(window, "SampleCountLines"), QStringLiteral("Count Lines: 7 lines"));
    // One undo takes the whole template out again.
    page->Memo()->undo();
    EXPECT_EQ(page->Memo()->Text(), QStringLiteral("mission m;\r\n\r\nvar\r\n  kills = 0;"));

    // Loaded again it is started again but adds no second set of items.
    window.OutputView().Clear();
    ASSERT_EQ(LoadExtension(VELKOR_SAMPLE_EXTENSION), "");
    EXPECT_EQ(ExtensionMenuItems(window),
              (QStringList{"MenuExtLoad", "SampleCountLines", "SampleInsertTemplate"}));
    EXPECT_TRUE(window.OutputView().Lines().isEmpty());

    // With no page open it says so.
    window.CloseAll();
    ProcessEvents();
    ASSERT_EQ(window.ActivePage(), nullptr);
    EXPECT_EQ(Run(window, "SampleCountLines"), QStringLiteral("Count Lines: no active editor"));
    EXPECT_EQ(Run(window, "SampleInsertTemplate"), QStringLiteral("Insert Template: no active editor"));
    EXPECT_TRUE(messages_.isEmpty());
}

TEST_F(SampleExtensionTest, TheStartListLoadsInFileOrderAndGoesOnPastAMissingLibrary) {
    const std::string missing = Path("no such extension.so");
    for (const std::string& name :
         {std::string(VELKOR_ORDER_SECOND_EXTENSION), missing, std::string(VELKOR_ORDER_FIRST_EXTENSION),
          std::string(VELKOR_SAMPLE_EXTENSION)})
        TIniFile(IniPath()).WriteString("autoloadext", name, "1");
    TfrmMain window({});
    EXPECT_EQ(std::getenv("VELKOR_TEST_INIT_ORDER"), nullptr);
    window.show();
    ASSERT_NE(std::getenv("VELKOR_TEST_INIT_ORDER"), nullptr);
    EXPECT_STREQ(std::getenv("VELKOR_TEST_INIT_ORDER"), "second,first");
    EXPECT_EQ(messages_,
              QStringList{QString::fromStdString("Could not load library \"" + missing + "\": not found!")});
    // The IDE went on: the library after the failure is there and works.
    EXPECT_EQ(Run(window, "SampleCountLines"), QStringLiteral("Count Lines: 1 line"));
    // A manual load starts a library again if it was started already and puts none on the start list; the
    // load dialog remembers the folder.
    unsetenv("VELKOR_TEST_EXTENSION_HOST");
    openAnswers_ << QString::fromUtf8(VELKOR_ORDER_FIRST_EXTENSION)
                 << QString::fromUtf8(VELKOR_TEST_EXTENSION);
    window.LoadExtensionDialog();
    window.LoadExtensionDialog();
    EXPECT_STREQ(std::getenv("VELKOR_TEST_INIT_ORDER"), "second,first,first");
    EXPECT_NE(std::getenv("VELKOR_TEST_EXTENSION_HOST"), nullptr);
    EXPECT_EQ(TIniFile(IniPath()).ReadString("main", "DirLoadExt", ""),
              std::filesystem::path(VELKOR_TEST_EXTENSION).parent_path().string());
    EXPECT_EQ(TIniFile(IniPath()).ReadSection("autoloadext").size(), 4u);
    EXPECT_EQ(messages_.size(), 1);
}

TEST_F(SampleExtensionTest, ANameWithoutAFolderIsLookedForBesideTheExecutableAndAStartListEntryThereLoads) {
    // The sample is built beside the velkor executable.
    const std::filesystem::path sample = VELKOR_SAMPLE_EXTENSION;
    SetExecutableFolderForTesting(sample.parent_path().string());
    {
        TfrmMain window({});
        // Written in another letter case, as settings files from Windows are.
        const std::string name = sample.filename().string();
        EXPECT_EQ(LoadExtension(QString::fromStdString(name).toUpper().toStdString()), "");
        EXPECT_NE(Item(window, "SampleCountLines"), nullptr);
        EXPECT_EQ(LoadExtension("elsewhere_" + name),
                  "Could not load library \"elsewhere_" + name + "\": not found!");
    }
    // On the start list under that folder (as the Plugins tab writes it) it loads when the window shows.
    TIniFile(IniPath()).WriteString("autoloadext", ExecutableFolder() + "sample_extension.so", "1");
    TfrmMain window({});
    EXPECT_EQ(Item(window, "SampleCountLines"), nullptr);
    window.show();
    EXPECT_NE(Item(window, "SampleCountLines"), nullptr);
    EXPECT_TRUE(messages_.isEmpty());
}

TEST_F(SampleExtensionTest, LoaderFailuresAreMessagesNotCrashes) {
    EXPECT_EQ(LoadExtension("/no/such/lib.so"), "Could not load library \"/no/such/lib.so\": not found!");
    WriteFile(Dir() / "garbage.so", "not an ELF file");
    EXPECT_EQ(LoadExtension(Path("garbage.so")),
              "Could not load library \"" + Path("garbage.so") + "\": not found!");
    EXPECT_EQ(LoadExtension(VELKOR_NO_ENTRY_EXTENSION),
              std::string("Library \"") + VELKOR_NO_ENTRY_EXTENSION + "\" has no entry init_ext");
}

} // namespace
} // namespace velkor::test
