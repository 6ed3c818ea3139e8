#include "platform/ini_file.h"
#include "platform/registry_file_store.h"
#include "platform/text_file.h"
#include "tests/platform/isolated_settings.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace velkor {
namespace {

using test::ReadFile;
using test::WriteFile;

class SettingsLocationTest : public test::IsolatedSettings {};

TEST_F(SettingsLocationTest, TheEnvironmentNamesTheIniFile) {
    EXPECT_EQ(IniFilePath(), dir.path() / "velkor.ini") << "VELKOR_INI names the file";

    test::ScopedEnv noIni("VELKOR_INI", std::nullopt);
    fs::create_directories(dir.path() / "bin");
    SetExecutableFolderForTesting((dir.path() / "bin").string());
    EXPECT_EQ(IniFilePath(), dir.path() / "bin" / "velkor.ini") << "beside a writable executable";

    SetExecutableFolderForTesting((dir.path() / "no such folder").string());
    EXPECT_EQ(IniFilePath(), dir.path() / "config" / "velkor" / "velkor.ini");
    test::ScopedEnv noConfig("XDG_CONFIG_HOME", std::nullopt);
#ifdef _WIN32
    // Windows keeps a user's settings under the roaming application data folder.
    test::ScopedEnv appData("APPDATA", (dir.path() / "appdata").string());
    const fs::path expected = dir.path() / "appdata" / "velkor" / "velkor.ini";
#else
    test::ScopedEnv home("HOME", (dir.path() / "home").string());
    const fs::path expected = dir.path() / "home" / ".config" / "velkor" / "velkor.ini";
#endif
    EXPECT_EQ(IniFilePath(), expected);
    TIniFile created(IniFilePath());
    created.WriteBool("compiler", "fast_scanner", true);
    EXPECT_EQ(ReadFile(expected), "[compiler]\r\nfast_scanner=1\r\n");
}

TEST_F(SettingsLocationTest, TheEnvironmentNamesTheRegistryStore) {
    RegistryFileStore store;
    EXPECT_EQ(store.FileName(), dir.path() / "registry.ini");
    test::ScopedEnv none("VELKOR_REGISTRY", std::nullopt);
    EXPECT_EQ(store.FileName(), dir.path() / "config" / "velkor" / "registry.ini");
    store.WriteString("\\Software\\velkor\\mru", "Count", "0");
    EXPECT_TRUE(fs::exists(dir.path() / "config" / "velkor" / "registry.ini"));
}

// Binary garbage in the store keeps every byte but its line breaks, which become CR LF.
TEST_F(SettingsLocationTest, AChangeKeepsTheGarbageOfAStore) {
    RegistryFileStore store;
    std::string garbage;
    for (int i = 0; i < 65536; ++i) garbage += static_cast<char>((i * 131 + 7) % 256);
    const std::string kept = NormaliseLineBreaks(garbage);
    WriteFile(store.FileName(), garbage);
    store.WriteString("\\Software\\velkor\\mru", "Count", "1");
    const std::string after = ReadFile(store.FileName());
    EXPECT_TRUE(after.starts_with(kept));
    EXPECT_TRUE(after.ends_with("\r\n[Software\\velkor\\mru]\r\nCount=1\r\n"));
    EXPECT_LT(after.size(), kept.size() + 40);
    EXPECT_EQ(store.ReadString("\\Software\\velkor\\mru", "Count"), "1");
}

} // namespace
} // namespace velkor
