// Builds the demo campaign of examples/campaign through velkorc, as scripts/demo.sh does: the string file
// first, then every unit, all into one folder.
#pragma once

#include "tests/support/run_tool.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace velkor::test {

// The campaign's sources and the bytes its build is held to.
std::filesystem::path CampaignSources();
std::filesystem::path CampaignGolden();

// The units built one by one after the string file, in build order.
const std::vector<std::string>& CampaignUnits();
// Every file the build writes, in the order written.
const std::vector<std::string>& CampaignFiles();

struct CampaignBuild {
    std::vector<ToolResult> runs;             // one velkorc run per step, in order
    std::map<std::string, std::string> files; // every file in the output folder: name -> bytes
    std::vector<std::string> writtenLines;    // the "** <file> ** (<size> bytes)" lines on stdout
};

// Assembles the string file, then builds each unit with `velkorc build -v 0 -I <out> --out-dir <out>`
// and any further options (such as --fast-scanner or -O).
CampaignBuild BuildCampaign(const std::filesystem::path& out, const std::vector<std::string>& options = {});

// Builds everything at once through the project unit build_all.pas and its #FILE list.
CampaignBuild BuildCampaignProject(const std::filesystem::path& out);

// The files of a folder, name -> bytes.
std::map<std::string, std::string> FilesIn(const std::filesystem::path& folder);

} // namespace velkor::test
