#include "platform/executable_path.h"
#include "platform/named_folders.h"
#include "platform/registry.h"
#include "platform/strings.h"
#include "tests/platform/isolated_settings.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace velkor {
namespace {

using test::WriteFile;

class NamedFoldersTest : public test::IsolatedSettings {
protected:
    NamedFoldersTest() { SetExecutableFolderForTesting(exe); }

    void InstallGames() {
        fs::create_directories(dir.path() / "wine");
        WriteFile(dir.path() / "wine" / "system.reg",
                  "WINE REGISTRY Version 2\n"
                  "[Software\\\\Origin Systems\\\\Wing Commander Secret Ops] 1\n"
                  "\"Installed To:\"=\"C:\\\\SO\\\\\"\n"
                  "[Software\\\\Origin Systems\\\\Wing Commander Prophecy] 1\n"
                  "\"Installed To:\"=\"C:\\\\WCP\\\\\"\n");
    }
    std::string Prefixed(const char* folder) {
        return (dir.path() / "wine" / "dosdevices" / "c:" / folder).string();
    }

    std::string exe = (dir.path() / "Velkor Bin").string() + "/";
};

std::vector<std::string> Names(const std::vector<NamedFolder>& table) {
    std::vector<std::string> names;
    for (const auto& pair : table) names.push_back(pair.name + "=" + pair.folder);
    return names;
}

TEST(ExecutableFolder, EndsInASeparatorAndCanBeOverridden) {
    const std::string real = ExecutableFolder();
    EXPECT_EQ(real, fs::canonical("/proc/self/exe").parent_path().string() + "/");
    SetExecutableFolderForTesting("/opt/velkor");
    EXPECT_EQ(ExecutableFolder(), "/opt/velkor/");
    SetExecutableFolderForTesting("/opt/velkor/");
    EXPECT_EQ(ExecutableFolder(), "/opt/velkor/");
    SetExecutableFolderForTesting("");
    EXPECT_EQ(ExecutableFolder(), real);
}

TEST_F(NamedFoldersTest, CompilerIsTheExecutablesFolderAndExpansionLowerCasesEverything) {
    EXPECT_EQ(Names(NamedFolders()), (std::vector<std::string>{"compiler=" + exe.substr(0, exe.size() - 1)}));
    const std::string lowerExe = LowerCase(exe.substr(0, exe.size() - 1));
    EXPECT_EQ(ExpandPath("$COMPILER$\\Lib"), lowerExe + "\\lib");
    EXPECT_EQ(ExpandPath("$compiler$\\A;$Compiler$\\B"), lowerExe + "\\a;" + lowerExe + "\\b");
    EXPECT_EQ(ExpandPath("$Unknown$\\Lib\\$COMPILER"), "$unknown$\\lib\\$compiler");
    EXPECT_EQ(ExpandPath("Plain\\PATH.pas"), "plain\\path.pas");
    EXPECT_EQ(ExpandPath(""), "");
    EXPECT_EQ(GameFolderProphecy(), "");
    EXPECT_EQ(GameFolderSecretOps(), "");
}

TEST_F(NamedFoldersTest, TableOrderAndPrecedence) {
    InstallGames();
    MachineRegistry().WriteString("\\Software\\velkor", "Missions", "/Home/Me/Missions\\\\");
    MachineRegistry().WriteString("\\Software\\velkor", "wcso", "/My/SO/");
    MachineRegistry().WriteString("\\Software\\velkor\\mru", "Count", "0"); // a subkey adds nothing
    ResetNamedFoldersForTesting();
    EXPECT_EQ(
        Names(NamedFolders()),
        (std::vector<std::string>{"Missions=/Home/Me/Missions", "wcso=/My/SO", "wcso=" + Prefixed("SO"),
                                  "wcp=" + Prefixed("WCP"), "compiler=" + exe.substr(0, exe.size() - 1)}));
    // The user's "wcso" stands first and wins.
    EXPECT_EQ(ExpandPath("$WCSO$\\Mission\\A.mis"), "/my/so\\mission\\a.mis");
    EXPECT_EQ(ExpandPath("$wcp$\\Data"), LowerCase(Prefixed("WCP")) + "\\data");
    EXPECT_EQ(ExpandPath("$missions$/x"), "/home/me/missions/x");

    AddNamedFolder("WCSO", "/Added\\");
    EXPECT_EQ(NamedFolders().front().folder, "/Added");
    EXPECT_EQ(ExpandPath("$wcso$\\m"), "/added\\m");
    AddNamedFolder("new", "/N");
    EXPECT_EQ(Names(NamedFolders()).front(), "new=/N");
}

TEST_F(NamedFoldersTest, BuiltOnceUntilReset) {
    EXPECT_EQ(ExpandPath("$wcso$"), "$wcso$");
    InstallGames();
    EXPECT_EQ(ExpandPath("$wcso$"), "$wcso$") << "the table is built on first use only";
    ResetNamedFoldersForTesting();
    EXPECT_EQ(ExpandPath("$wcso$"), LowerCase(Prefixed("SO")));
}

} // namespace
} // namespace velkor
