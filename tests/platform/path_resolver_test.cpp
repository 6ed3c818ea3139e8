#include "platform/path_resolver.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>

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

TEST_F(PathResolverTest, MatchesEachComponentWithoutCase) {
    auto want = dir.path() / "Missions" / "Lib" / "Common.PAS";
    EXPECT_EQ(FindExisting("missions\\lib\\common.pas", dir.path()), want);
    EXPECT_EQ(FindExisting("MISSIONS/LIB/COMMON.pas", dir.path()), want);
    EXPECT_EQ(FindExisting((dir.path() / "Missions" / "Lib" / "Common.PAS").string()), want);
    // An absolute path written in lower case, as named-folder expansion leaves it.
    std::string lowered = dir.path().string() + "\\missions\\lib\\common.pas";
    EXPECT_EQ(FindExisting(lowered), want);
    EXPECT_EQ(FindExisting("missions\\lib\\other.pas", dir.path()), std::nullopt);
    EXPECT_EQ(FindExisting("", dir.path()), std::nullopt);
}

TEST_F(PathResolverTest, OutputPathsKeepTheMissingRestAsWritten) {
    EXPECT_EQ(ResolvePath("missions\\New.mis", dir.path()), dir.path() / "Missions" / "New.mis");
    EXPECT_EQ(ResolvePath("out\\sub\\a.iff", dir.path()), dir.path() / "out" / "sub" / "a.iff");
    EXPECT_EQ(ResolvePath("missions\\lib\\COMMON.PAS", dir.path()),
              dir.path() / "Missions" / "Lib" / "Common.PAS");
}

TEST_F(PathResolverTest, DriveLettersMapIntoTheWinePrefix) {
    fs::create_directories(dir.path() / "prefix" / "drive_c" / "Games" / "SO");
    test::WriteFile(dir.path() / "prefix" / "drive_c" / "Games" / "SO" / "e.sec", "x");
    const char* old = std::getenv("WINEPREFIX");
    std::string saved = old ? old : "";
    setenv("WINEPREFIX", (dir.path() / "prefix").c_str(), 1);
    EXPECT_EQ(FindExisting("C:\\games\\so\\E.SEC"),
              dir.path() / "prefix" / "drive_c" / "Games" / "SO" / "e.sec");
    EXPECT_EQ(FindExisting("D:\\games"), std::nullopt);
    if (old)
        setenv("WINEPREFIX", saved.c_str(), 1);
    else
        unsetenv("WINEPREFIX");
}

TEST(PathNames, FolderAndAbsoluteTests) {
    EXPECT_FALSE(HasFolder("a.mis"));
    EXPECT_TRUE(HasFolder("out\\a.mis"));
    EXPECT_TRUE(HasFolder("C:a.mis"));
    EXPECT_TRUE(IsAbsoluteGamePath("\\x"));
    EXPECT_TRUE(IsAbsoluteGamePath("c:\\x"));
    EXPECT_FALSE(IsAbsoluteGamePath("x\\y"));
    EXPECT_EQ(ToNativePath("a\\b/c"), fs::path("a/b/c"));
}

} // namespace
} // namespace velkor
