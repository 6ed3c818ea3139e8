#include "platform/path_resolver.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace fs = std::filesystem;

namespace velkor {
namespace {

class PathResolverTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(dir.path() / "Missions" / "Lib");
        test::WriteFile(dir.path() / "Missions" / "Lib" / "Common.PAS", "x");
    }
    test::TempDir dir;
};

#ifdef _WIN32
// The system ignores case itself; what matters is that the drive is not looked for in a Wine prefix.
TEST_F(PathResolverTest, DriveLettersAreTheSystemsOwn) {
    const fs::path want = dir.path() / "Missions" / "Lib" / "Common.PAS";
    std::string upper = dir.path().string() + "\\MISSIONS\\LIB\\COMMON.PAS";
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const std::string& path : {upper, dir.path().string() + "/Missions/Lib/Common.PAS"}) {
        auto found = FindExisting(path);
        ASSERT_TRUE(found) << path;
        EXPECT_TRUE(fs::equivalent(*found, want)) << *found;
    }
    EXPECT_EQ(FindExisting("Q:\\no\\such\\drive"), std::nullopt);
}
#endif

} // namespace
} // namespace velkor
