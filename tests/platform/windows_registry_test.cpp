// The Windows registry behind MachineRegistry(), on Windows (or Wine): keys and values round trip
// through the system's registry API under a key of the test's own, removed afterwards.
#include "platform/named_folders.h"
#include "platform/registry.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace velkor {
namespace {

using Names = std::vector<std::string>;

Names Sorted(Names names) {
    std::sort(names.begin(), names.end());
    return names;
}

class WindowsRegistryTest : public ::testing::Test {
protected:
    WindowsRegistryTest() : key("\\Software\\velkor-test-" + std::to_string(std::random_device()())) {}
    ~WindowsRegistryTest() override { MachineRegistry().DeleteKey(key); }

    const std::string key; // this test's key; nothing else uses it
};

TEST_F(WindowsRegistryTest, ValuesRoundTripInTheSystemsRegistry) {
    Registry& registry = MachineRegistry();
    EXPECT_FALSE(registry.KeyExists(key));
    EXPECT_FALSE(registry.OpenKey(key, false));
    EXPECT_EQ(registry.ReadString(key, "Missions"), std::nullopt);
    EXPECT_TRUE(registry.ValueNames(key).empty());

    EXPECT_TRUE(registry.OpenKey(key + "\\mru", true));
    EXPECT_TRUE(registry.KeyExists(key));
    registry.WriteString(key, "Missions", "C:\\Games\\Missions\\");
    registry.WriteString(key, "Empty", "");
    registry.WriteString(key + "\\mru", "Count", "2");
    EXPECT_EQ(registry.ReadString(key, "Missions"), "C:\\Games\\Missions\\");
    EXPECT_EQ(registry.ReadString(key, "MISSIONS"), "C:\\Games\\Missions\\");
    EXPECT_EQ(registry.ReadString(key, "Empty"), "");
    EXPECT_EQ(registry.ReadString(key + "\\MRU", "count"), "2");
    // The system decides the order of the names.
    EXPECT_EQ(Sorted(registry.ValueNames(key)), (Names{"Empty", "Missions"}));

    registry.WriteString(key, "missions", "D:\\Other");
    EXPECT_EQ(registry.ReadString(key, "Missions"), "D:\\Other");
    EXPECT_EQ(Sorted(registry.ValueNames(key)), (Names{"Empty", "Missions"}));

    EXPECT_TRUE(registry.DeleteValue(key, "Empty"));
    EXPECT_FALSE(registry.DeleteValue(key, "Empty"));
    EXPECT_EQ(registry.ValueNames(key), (Names{"Missions"}));

    EXPECT_TRUE(registry.DeleteKey(key));
    EXPECT_FALSE(registry.KeyExists(key + "\\mru"));
    EXPECT_FALSE(registry.KeyExists(key));
    EXPECT_FALSE(registry.DeleteKey(key));
}

TEST(WindowsNamedFolders, CompilerIsTheExecutablesFolderWithBackslashes) {
    ResetNamedFoldersForTesting();
    const std::string expanded = ExpandPath("$COMPILER$\\Lib");
    EXPECT_EQ(expanded.substr(expanded.size() - 4), "\\lib");
    EXPECT_EQ(expanded[1], ':') << expanded;
    EXPECT_EQ(expanded.find('/'), std::string::npos) << expanded;
}

} // namespace
} // namespace velkor
