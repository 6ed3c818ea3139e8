#include "platform/executable_path.h"
#include "platform/named_folders.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace velkor {
namespace {

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

} // namespace
} // namespace velkor
