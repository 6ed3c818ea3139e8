#include "platform/named_folders.h"
#include "platform/registry.h"
#include "platform/wine_registry.h"
#include "tests/platform/isolated_settings.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace velkor {
namespace {

using test::WriteFile;
using Names = std::vector<std::string>;

constexpr const char* kProphecy = "\\Software\\Origin Systems\\Wing Commander Prophecy";
constexpr const char* kSecretOps = "\\Software\\Origin Systems\\Wing Commander Secret Ops";

class WineRegistryTest : public test::IsolatedSettings {
protected:
    WineRegistryTest() {
        fs::create_directories(prefix / "drive_c" / "Games" / "WCP");
        WriteFile(prefix / "system.reg",
                  "WINE REGISTRY Version 2\n"
                  ";; All keys relative to \\\\Machine\n\n#arch=win64\n\n"
                  "[Software\\\\Origin Systems\\\\Wing Commander Prophecy] 1700000000\n"
                  "#time=1d9b0c0c0c0c0c0\n"
                  "\"Installed To:\"=\"C:\\\\GAMES\\\\wcp\\\\\"\n"
                  "\"Version\"=dword:00000001\n\n"
                  "[Software\\\\Wow6432Node\\\\Origin Systems\\\\Wing Commander Prophecy] 1700000000\n"
                  "\"Installed To:\"=\"C:\\\\Elsewhere\\\\\"\n"
                  "\"Patch\"=\"1.1\"\n\n"
                  "[Software\\\\Wow6432Node\\\\Origin Systems\\\\Wing Commander Secret Ops] 1700000000\n"
                  "\"Installed To:\"=\"C:\\\\Program Files (x86)\\\\Secret Ops\\\\\"\n\n"
                  "[Software\\\\velkor] 1700000000\n"
                  "\"wine\"=\"not served\"\n");
    }
    fs::path prefix = dir.path() / "wine";
    WineRegistry wine;
};

TEST_F(WineRegistryTest, FindsTheGamesUnderBothLayoutsAndTranslatesTheirFolders) {
    // The plain layout comes first; the folder that exists is found whatever its case.
    EXPECT_EQ(wine.ReadString(kProphecy, "installed to:"), (prefix / "drive_c" / "Games" / "WCP").string());
    EXPECT_EQ(wine.ValueNames(kProphecy), (Names{"Installed To:", "Patch"}));
    EXPECT_EQ(wine.ReadString(kProphecy, "Patch"), "1.1");
    EXPECT_EQ(wine.ReadString(kProphecy, "Version"), std::nullopt) << "not a string";
    // Only the 64-bit prefix's layout holds Secret Ops; its folder does not exist and is mapped as written.
    EXPECT_EQ(wine.ReadString(kSecretOps, "Installed To:"),
              (prefix / "drive_c" / "Program Files (x86)" / "Secret Ops").string());
    EXPECT_TRUE(wine.KeyExists(kSecretOps));
    EXPECT_TRUE(wine.KeyExists("\\Software\\Origin Systems"));
    EXPECT_FALSE(wine.KeyExists("\\Software\\Origin Systems\\Privateer"));
    EXPECT_FALSE(wine.KeyExists("\\Software\\velkor")) << "only the games' keys are looked up";
    EXPECT_THROW(wine.WriteString(kSecretOps, "x", "y"), ERegistry);

    EXPECT_EQ(GameFolderProphecy(), (prefix / "drive_c" / "Games" / "WCP").string());
    EXPECT_EQ(GameFolderSecretOps(), (prefix / "drive_c" / "Program Files (x86)" / "Secret Ops").string());
}

TEST_F(WineRegistryTest, TheOwnStoreWins) {
    Registry& machine = MachineRegistry();
    machine.WriteString(kSecretOps, "Installed To:", "/opt/secret ops\\");
    EXPECT_EQ(GameFolderSecretOps(), "/opt/secret ops");
    EXPECT_EQ(GameFolderProphecy(), (prefix / "drive_c" / "Games" / "WCP").string());
    machine.WriteString(kProphecy, "Extra", "own");
    EXPECT_EQ(machine.ValueNames(kProphecy), (Names{"Extra", "Installed To:", "Patch"}));
    EXPECT_TRUE(machine.DeleteKey(kSecretOps));
    EXPECT_EQ(GameFolderSecretOps(), (prefix / "drive_c" / "Program Files (x86)" / "Secret Ops").string());
    EXPECT_FALSE(machine.KeyExists("\\Software\\velkor"));
}

TEST_F(WineRegistryTest, NoPrefixMeansNoGames) {
    test::ScopedEnv elsewhere("WINEPREFIX", (dir.path() / "no prefix").string());
    EXPECT_EQ(GameFolderProphecy(), "");
    EXPECT_EQ(GameFolderSecretOps(), "");
    EXPECT_FALSE(MachineRegistry().KeyExists(kProphecy));
}

TEST(WineRegistryText, GarbageParsesToNothing) {
    std::string huge = "[" + std::string(1 << 20, '\\') + "\n\"" + std::string(1 << 20, 'x') + "\n";
    EXPECT_EQ(WineKeyValues(huge, "Software"), std::nullopt);
    EXPECT_FALSE(WineKeyExists(huge, "Software"));
}

} // namespace
} // namespace velkor
