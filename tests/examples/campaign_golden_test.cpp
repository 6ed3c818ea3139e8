// The demo campaign built through velkorc, byte for byte against the files reviewed by hand and kept under
// tests/golden/campaign. VELKOR_WRITE_GOLDEN=1 rewrites them after a deliberate change: review the new
// bytes (decode them, read the linked text) before committing them.
#include "platform/strings.h"
#include "tests/examples/campaign_build.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <regex>

namespace velkor::test {
namespace {

namespace fs = std::filesystem;

// Where two files first differ, for a readable failure; empty when they are equal.
std::string FirstDifference(const std::string& expected, const std::string& actual) {
    if (expected == actual) return "";
    const auto at = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    return "sizes " + std::to_string(expected.size()) + " and " + std::to_string(actual.size()) +
           ", first difference at byte " + std::to_string(at.first - expected.begin());
}

void ExpectGoldenFiles(const CampaignBuild& build) {
    std::vector<std::string> names;
    for (const auto& [name, bytes] : build.files) names.push_back(name);
    std::vector<std::string> expected = CampaignFiles();
    std::sort(expected.begin(), expected.end());
    ASSERT_EQ(names, expected);

    if (std::getenv("VELKOR_WRITE_GOLDEN")) {
        fs::create_directories(CampaignGolden());
        for (const auto& [name, bytes] : build.files) WriteFile(CampaignGolden() / name, bytes);
    }
    for (const auto& [name, bytes] : build.files) {
        const fs::path golden = CampaignGolden() / name;
        ASSERT_TRUE(fs::exists(golden)) << golden;
        EXPECT_EQ(FirstDifference(ReadFile(golden), bytes), "") << name;
    }
}

// Every run succeeded, and at verbosity 0 said nothing but the hints the missions ask for with #MAINPROC
// and #GFPROC: no error, no warning.
void ExpectCleanRuns(const CampaignBuild& build) {
    static const std::regex hint(R"(\[(patrol|escort), \d+\] HINT: (Patrol|Escort)(Main|Flow))");
    for (const auto& run : build.runs) {
        EXPECT_EQ(run.exitCode, 0) << run.err;
        for (const auto& line : SplitLines(run.err)) {
            if (line.empty()) continue;
            // #FILE compilations also announce the files they wrote.
            if (line.find("] ** ") != std::string::npos) continue;
            EXPECT_TRUE(std::regex_match(line, hint)) << line;
        }
    }
}

TEST(Campaign, BuildMatchesGoldenFiles) {
    TempDir dir;
    const CampaignBuild build = BuildCampaign(dir / "out");
    ExpectCleanRuns(build);
    ExpectGoldenFiles(build);

    // One line per file written, in build order, with its size.
    ASSERT_EQ(build.writtenLines.size(), CampaignFiles().size());
    for (std::size_t i = 0; i < CampaignFiles().size(); ++i) {
        const std::string& name = CampaignFiles()[i];
        const std::string size = std::to_string(build.files.at(name).size());
        EXPECT_TRUE(build.writtenLines[i].starts_with("** ")) << build.writtenLines[i];
        EXPECT_TRUE(build.writtenLines[i].find(name + " ** (") != std::string::npos) << build.writtenLines[i];
        EXPECT_TRUE(build.writtenLines[i].ends_with(" bytes)")) << build.writtenLines[i];
    }
}

// The fast scanner reads the same units into the same bytes: labels carry source line numbers, so a line
// counted wrongly would show in the function chunks.
TEST(Campaign, FastScannerBuildsTheSameBytes) {
    TempDir dir;
    const CampaignBuild build = BuildCampaign(dir / "out", {"--fast-scanner"});
    ExpectCleanRuns(build);
    for (const auto& [name, bytes] : build.files)
        EXPECT_EQ(FirstDifference(ReadFile(CampaignGolden() / name), bytes), "") << name;
}

// The project unit compiles every unit through #FILE, each as if it had been built on its own.
TEST(Campaign, ProjectUnitBuildsTheSameBytes) {
    TempDir dir;
    const CampaignBuild build = BuildCampaignProject(dir / "out");
    ExpectCleanRuns(build);
    ExpectGoldenFiles(build);
}

// Units written on Windows: CR LF line ends and names in other letter cases than the files on disk.
TEST(Campaign, UnitsWithCrLfAndOtherLetterCasesBuildTheSameBytes) {
    TempDir dir;
    const fs::path src = dir / "SRC";
    fs::create_directories(src);
    for (const auto& entry : fs::directory_iterator(CampaignSources())) {
        std::string text = ReadFile(entry.path());
        std::string crlf;
        for (char c : text) {
            if (c == '\n') crlf += '\r';
            crlf += c;
        }
        WriteFile(src / UpperCase(entry.path().filename().string()), crlf);
    }
    const fs::path out = dir / "out";
    fs::create_directories(out);
    auto strings = RunVelkorc({"asm", "--out-dir", out.string(), (src / "CAMPAIGN_ENG.TXT").string()});
    ASSERT_EQ(strings.exitCode, 0) << strings.err;
    for (const auto& unit : CampaignUnits()) {
        auto run = RunVelkorc({"build", "-v", "0", "-I", out.string(), "--out-dir", out.string(),
                               (src / (UpperCase(unit) + ".PAS")).string()});
        ASSERT_EQ(run.exitCode, 0) << unit << "\n" << run.err;
    }
    for (const auto& [name, bytes] : FilesIn(out))
        EXPECT_EQ(FirstDifference(ReadFile(CampaignGolden() / name), bytes), "") << name;
}

// With -O the listings shrink and still assemble; the other files stay as they were.
TEST(Campaign, OptimisedBuildIsSmallerAndLeavesTheRestAlone) {
    TempDir dir;
    const CampaignBuild build = BuildCampaign(dir / "out", {"-O"});
    ExpectCleanRuns(build);
    for (const auto& [name, bytes] : build.files) {
        const std::string golden = ReadFile(CampaignGolden() / name);
        if (name.ends_with(".mis") || name.ends_with(".srs"))
            EXPECT_LT(bytes.size(), golden.size()) << name;
        else
            EXPECT_EQ(bytes, golden) << name;
    }
}

// Every built file decodes into the text kept beside the golden files (the campaign's layout as a reader
// sees it: forms, chunks, labelled values and function listings), and that text assembles back into the
// same bytes, the editor form behind the game's form included.
TEST(Campaign, DecodedFilesMatchTheirTextsAndAssembleToTheSameBytes) {
    TempDir dir;
    for (const auto& name : CampaignFiles()) {
        SCOPED_TRACE(name);
        const std::string original = ReadFile(CampaignGolden() / name);
        WriteFile(dir / name, original);
        auto decoded = RunVelkorc({"decode", "--exact-floats", name}, dir.path());
        ASSERT_EQ(decoded.exitCode, 0) << decoded.err;
        const fs::path text = CampaignGolden() / "decoded" / (name + ".pas");
        if (std::getenv("VELKOR_WRITE_GOLDEN")) {
            fs::create_directories(text.parent_path());
            WriteFile(text, ReadFile(dir / (name + ".pas")));
        }
        EXPECT_EQ(ReadFile(dir / (name + ".pas")), ReadFile(text));
        fs::remove(dir / name);
        auto again = RunVelkorc({"asm", name + ".pas"}, dir.path());
        ASSERT_EQ(again.exitCode, 0) << again.err;
        EXPECT_EQ(FirstDifference(original, ReadFile(dir / name)), "");
    }
}

// Library units compile on their own, silently.
TEST(Campaign, LibraryUnitsCompileCleanly) {
    for (const char* unit : {"gamefuncs.pas", "constants.pas"}) {
        auto run = RunVelkorc({"compile", "-v", "0", (fs::path(VELKOR_SOURCE_DIR) / "lib" / unit).string()});
        EXPECT_EQ(run.exitCode, 0) << unit << "\n" << run.err;
        EXPECT_EQ(run.err, "") << unit;
        EXPECT_EQ(run.out, "") << unit;
    }
}

} // namespace
} // namespace velkor::test
