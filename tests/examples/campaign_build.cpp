#include "tests/examples/campaign_build.h"

namespace velkor::test {

namespace fs = std::filesystem;

fs::path CampaignSources() {
    return fs::path(VELKOR_SOURCE_DIR) / "examples" / "campaign";
}

fs::path CampaignGolden() {
    return fs::path(VELKOR_SOURCE_DIR) / "tests" / "golden" / "campaign";
}

const std::vector<std::string>& CampaignUnits() {
    static const std::vector<std::string> units{"frontier", "outpost", "patrol", "escort"};
    return units;
}

const std::vector<std::string>& CampaignFiles() {
    static const std::vector<std::string> files{"campaign.eng", "frontier.srs", "outpost.sec", "patrol.mis",
                                                "patrol.iff",   "escort.mis",   "escort.iff"};
    return files;
}

std::map<std::string, std::string> FilesIn(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file()) files[entry.path().filename().string()] = ReadFile(entry.path());
    return files;
}

namespace {

void Record(CampaignBuild& build, ToolResult run) {
    std::size_t start = 0;
    for (std::size_t end; (end = run.out.find('\n', start)) != std::string::npos; start = end + 1)
        build.writtenLines.push_back(run.out.substr(start, end - start));
    build.runs.push_back(std::move(run));
}

} // namespace

CampaignBuild BuildCampaign(const fs::path& out, const std::vector<std::string>& options) {
    CampaignBuild build;
    fs::create_directories(out);
    Record(build,
           RunVelkorc({"asm", "--out-dir", out.string(), (CampaignSources() / "campaign_eng.txt").string()}));
    for (const auto& unit : CampaignUnits()) {
        std::vector<std::string> args{"build", "-v", "0", "-I", out.string(), "--out-dir", out.string()};
        args.insert(args.end(), options.begin(), options.end());
        args.push_back((CampaignSources() / (unit + ".pas")).string());
        Record(build, RunVelkorc(args));
    }
    build.files = FilesIn(out);
    return build;
}

CampaignBuild BuildCampaignProject(const fs::path& out) {
    CampaignBuild build;
    fs::create_directories(out);
    Record(build, RunVelkorc({"build", "-v", "0", "-I", out.string(), "--out-dir", out.string(),
                              (CampaignSources() / "build_all.pas").string()}));
    build.files = FilesIn(out);
    return build;
}

} // namespace velkor::test
