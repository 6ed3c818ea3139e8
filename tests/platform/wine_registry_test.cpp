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

TEST(WineRegistryText, StringEscapes) {
    const std::string reg = "[Software\\\\Test\\[1\\]] 1\n"
                            "\"Quote\\\"d\"=\"a\\\\b\\\"c\\td\\x00e9\\xd83d\\xde00\\101\\x41z\"\n"
                            "@=\"default\"\r\n"
                            "\"Exp\"=str(2):\"%SystemRoot%\\\\x\"\n"
                            "\"Multi\"=hex(7):41,00,00,00,\\\n  00,00\n"
                            "\"Dangling\"=\"no end\n"
                            "\"Lone\"=\"\\xdc00x\\xd800\"\n"
                            "\"Raw\"=\"\xC3\xA9\\q\\e\"\n";
    auto values = WineKeyValues(reg, "software\\test[1]");
    ASSERT_TRUE(values);
    ASSERT_EQ(values->size(), 5u);
    EXPECT_EQ((*values)[0].name, "Quote\"d");
    EXPECT_EQ((*values)[0].data, "a\\b\"c\td\xC3\xA9\xF0\x9F\x98\x80"
                                 "AAz");
    EXPECT_EQ((*values)[1].name, "");
    EXPECT_EQ((*values)[1].data, "default");
    EXPECT_EQ((*values)[2].data, "%SystemRoot%\\x");
    EXPECT_EQ((*values)[3].name, "Lone");
    EXPECT_EQ((*values)[3].data, "\xEF\xBF\xBDx\xEF\xBF\xBD");
    EXPECT_EQ((*values)[4].data, "\xC3\xA9q\x1B");
    EXPECT_EQ(WineKeyValues(reg, "Software\\Test"), std::nullopt);
    EXPECT_TRUE(WineKeyExists(reg, "\\SOFTWARE"));
    EXPECT_FALSE(WineKeyExists(reg, "Software\\Test")) << "\"Test[1]\" is no key below \"Test\"";
}

TEST(WineRegistryText, GarbageParsesToNothing) {
    std::string huge = "[" + std::string(1 << 20, '\\') + "\n\"" + std::string(1 << 20, 'x') + "\n";
    EXPECT_EQ(WineKeyValues(huge, "Software"), std::nullopt);
    EXPECT_FALSE(WineKeyExists(huge, "Software"));
    for (std::string_view bad :
         {"", "[", "[\\", "[a]\n\"", "[a]\n\"n\"", "[a]\n\"n\"=", "[a]\n\"n\"=str(", "[a]\n@=\"\\x",
          "[a]\n\"\\", "[a]\n\"n\"=str(1)\"x\"", "[a]\n\"n\"=hex:00"}) {
        auto values = WineKeyValues(bad, "a");
        EXPECT_TRUE(!values || values->empty()) << bad;
    }
    auto nul = WineKeyValues(std::string("[a]\0\n\"\0\"=\"\0\"", 12), "a");
    ASSERT_TRUE(nul && nul->size() == 1);
    EXPECT_EQ(nul->front().name, std::string(1, '\0'));
    EXPECT_EQ(nul->front().data, std::string(1, '\0'));
}

} // namespace
} // namespace velkor
