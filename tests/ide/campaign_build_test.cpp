// The demo campaign builds from the IDE as shipped: F9 on its project unit writes every file, byte for byte
// what velkorc writes with --out-dir DIR -I DIR, into the unit's folder or the output folder of the settings.
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>

#include <map>
#include <set>

namespace velkor::test {
namespace {

class CampaignBuildTest : public PageTest {
protected:
    // A copy of the shipped campaign in `folder`.
    void SetUp() override {
        PageTest::SetUp();
        // The library units the campaign includes, where an installation keeps them.
        for (const auto& entry :
             std::filesystem::directory_iterator(std::filesystem::path(VELKOR_SOURCE_DIR) / "lib"))
            std::filesystem::copy_file(entry.path(), Dir() / "lib" / entry.path().filename());
    }
    static void CopyCampaign(const std::filesystem::path& folder) {
        std::filesystem::create_directories(folder);
        for (const auto& entry : std::filesystem::directory_iterator(
                 std::filesystem::path(VELKOR_SOURCE_DIR) / "examples" / "campaign"))
            std::filesystem::copy_file(entry.path(), folder / entry.path().filename());
    }
    // The files of a folder that are not in `before`, with their bytes.
    static std::map<std::string, std::string> NewFiles(const std::filesystem::path& folder,
                                                       const std::set<std::string>& before) {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string name = entry.path().filename().string();
            if (!before.count(name) && entry.is_regular_file()) files[name] = ReadFile(entry.path());
        }
        return files;
    }
    static std::set<std::string> Names(const std::filesystem::path& folder) {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.insert(entry.path().filename().string());
        return names;
    }
    // What velkorc writes for the campaign with one output folder on the search path.
    std::map<std::string, std::string> VelkorcBuild() {
        const std::filesystem::path source = Dir() / "cli_campaign";
        const std::filesystem::path out = Dir() / "cli_out";
        CopyCampaign(source);
        std::filesystem::create_directories(out);
        const ToolResult built = RunVelkorc(
            {"build", "-I", out.string(), "--out-dir", out.string(), (source / "build_all.pas").string()},
            Dir());
        EXPECT_EQ(built.exitCode, 0) << built.err;
        return NewFiles(out, {});
    }
};

// Without an output folder in the settings the files go beside the unit (not beside the executable);
// with one they go there, and it is searched.
TEST_F(CampaignBuildTest, F9OnTheProjectBuildsEveryFileBesideItOrIntoTheOutputFolder) {
    const std::map<std::string, std::string> expected = VelkorcBuild();
    ASSERT_EQ(expected.size(), 7u);
    for (const bool outputFolder : {false, true}) {
        SCOPED_TRACE(outputFolder);
        const std::filesystem::path folder = Dir() / (outputFolder ? "campaign2" : "campaign");
        const std::filesystem::path out = outputFolder ? Dir() / "built" : folder;
        CopyCampaign(folder);
        const std::set<std::string> before = Names(folder);
        TIniFile(IniPath()).WriteString("compiler", "outputdir", outputFolder ? out.string() : "");
        TfrmMain window({});
        ASSERT_NE(window.OpenFile((folder / "build_all.pas").string(), false), nullptr);
        window.MenuItem(QStringLiteral("MenuCompileBuild"))->trigger();
        EXPECT_FALSE(QString::fromStdString(Output(window)).contains(QStringLiteral("ERROR")))
            << Output(window);
        if (outputFolder) {
            EXPECT_TRUE(NewFiles(folder, before).empty());
        }
        const std::map<std::string, std::string> built =
            NewFiles(out, outputFolder ? std::set<std::string>{} : before);
        EXPECT_EQ(built.size(), expected.size()) << Output(window);
        for (const auto& [name, bytes] : expected) {
            ASSERT_TRUE(built.count(name)) << name << "\n" << Output(window);
            EXPECT_TRUE(built.at(name) == bytes) << name;
            EXPECT_FALSE(std::filesystem::exists(Dir() / name)) << name;
        }
    }
}

} // namespace
} // namespace velkor::test
