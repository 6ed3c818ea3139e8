#include "platform/path_resolver.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <optional>
#include <string>

namespace fs = std::filesystem;

namespace velkor {
namespace {

// The path a lookup gives. Where the system ignores case (Windows) it finds names in any case itself and
// the path keeps the case it was written in; elsewhere the resolver gives the names as stored.
std::string Canon(const std::optional<fs::path>& path) {
    if (!path) return "(none)";
    std::string text = path->string();
#ifdef _WIN32
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
#endif
    return text;
}

class PathResolverTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(dir.path() / "Missions" / "Lib");
        test::WriteFile(dir.path() / "Missions" / "Lib" / "Common.PAS", "x");
    }
    test::TempDir dir;
};

TEST_F(PathResolverTest, MatchesEachComponentWithoutCase) {
    const std::string want = Canon(dir.path() / "Missions" / "Lib" / "Common.PAS");
    EXPECT_EQ(Canon(FindExisting("missions\\lib\\common.pas", dir.path())), want);
    EXPECT_EQ(Canon(FindExisting("MISSIONS/LIB/COMMON.pas", dir.path())), want);
    EXPECT_EQ(Canon(FindExisting((dir.path() / "Missions" / "Lib" / "Common.PAS").string())), want);
    // An absolute path written in lower case, as named-folder expansion leaves it.
    std::string lowered = dir.path().string() + "\\missions\\lib\\common.pas";
    EXPECT_EQ(Canon(FindExisting(lowered)), want);
    EXPECT_EQ(FindExisting("missions\\lib\\other.pas", dir.path()), std::nullopt);
    EXPECT_EQ(FindExisting("", dir.path()), std::nullopt);
}

TEST_F(PathResolverTest, OutputPathsKeepTheMissingRestAsWritten) {
    EXPECT_EQ(Canon(ResolvePath("missions\\New.mis", dir.path())),
              Canon(dir.path() / "Missions" / "New.mis"));
    EXPECT_EQ(ResolvePath("out\\sub\\a.iff", dir.path()), dir.path() / "out" / "sub" / "a.iff");
    EXPECT_EQ(Canon(ResolvePath("missions\\lib\\COMMON.PAS", dir.path())),
              Canon(dir.path() / "Missions" / "Lib" / "Common.PAS"));
}

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
#else
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
#endif

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
