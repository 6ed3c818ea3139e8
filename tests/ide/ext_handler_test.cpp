// Extension libraries: loading by path, the entry call and the failure messages.
#include "ide/ext_handler.h"
#include "ide/main_window.h"
#include "platform/ini_file.h"
#include "tests/ide/ide_test_support.h"

#include <cstdlib>

namespace velkor::test {
namespace {

class ExtHandlerTest : public IdeTest {};

TEST_F(ExtHandlerTest, LoadsTheLibraryAndCallsInitExtWithTheHostModule) {
    unsetenv("VELKOR_TEST_EXTENSION_HOST");
    EXPECT_EQ(LoadExtension(VELKOR_TEST_EXTENSION), "");
    const char* host = std::getenv("VELKOR_TEST_EXTENSION_HOST");
    ASSERT_NE(host, nullptr);
    EXPECT_STRNE(host, "(nil)");
    // Loading again calls the entry again.
    unsetenv("VELKOR_TEST_EXTENSION_HOST");
    EXPECT_EQ(LoadExtension(VELKOR_TEST_EXTENSION), "");
    EXPECT_NE(std::getenv("VELKOR_TEST_EXTENSION_HOST"), nullptr);
}

TEST_F(ExtHandlerTest, FailuresAreMessagesNotCrashes) {
    EXPECT_EQ(LoadExtension("/no/such/lib.so"), "Could not load library \"/no/such/lib.so\": not found!");
    WriteFile(Dir() / "garbage.so", "not an ELF file");
    EXPECT_EQ(LoadExtension(Path("garbage.so")),
              "Could not load library \"" + Path("garbage.so") + "\": not found!");
    EXPECT_EQ(LoadExtension(VELKOR_NO_ENTRY_EXTENSION),
              std::string("Library \"") + VELKOR_NO_ENTRY_EXTENSION + "\" has no entry init_ext");
}

TEST_F(ExtHandlerTest, TheLoadDialogLoadsAndRemembersTheFolder) {
    TIniFile(IniPath()).WriteString("main", "sopath", "/so");
    TfrmMain window({});
    unsetenv("VELKOR_TEST_EXTENSION_HOST");
    openAnswers_ << QString::fromUtf8(VELKOR_TEST_EXTENSION);
    window.LoadExtensionDialog();
    EXPECT_NE(std::getenv("VELKOR_TEST_EXTENSION_HOST"), nullptr);
    EXPECT_TRUE(messages_.isEmpty());
    EXPECT_EQ(TIniFile(IniPath()).ReadString("main", "DirLoadExt", ""),
              std::filesystem::path(VELKOR_TEST_EXTENSION).parent_path().string());
    // A manual load does not put the library on the start list.
    EXPECT_FALSE(TIniFile(IniPath()).SectionExists("autoloadext"));
}

} // namespace
} // namespace velkor::test
