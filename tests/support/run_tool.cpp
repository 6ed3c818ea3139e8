#include "tests/support/run_tool.h"

#include "tests/support/environment.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace velkor::test {

namespace {
std::string Slurp(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

// The variable the system's temporary folder is read from.
#ifdef _WIN32
constexpr const char* kTempVariable = "TMP";
#else
constexpr const char* kTempVariable = "TMPDIR";
#endif
} // namespace

ToolResult RunVelkorc(const std::vector<std::string>& args, const std::filesystem::path& cwd) {
    return RunProgram(VELKORC_PATH, args, cwd);
}

TempDir::TempDir() {
    std::random_device rd;
    for (;;) {
        path_ = std::filesystem::temp_directory_path() / ("velkor-test-" + std::to_string(rd()));
        std::error_code ec;
        if (std::filesystem::create_directory(path_, ec)) break;
    }
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

std::string ReadFile(const std::filesystem::path& path) {
    return Slurp(path);
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

PrivateTempFolder::PrivateTempFolder(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    if (const char* old = std::getenv(kTempVariable)) {
        had_ = true;
        old_ = old;
    }
    SetEnvironment(kTempVariable, folder.string());
}

PrivateTempFolder::~PrivateTempFolder() {
    SetEnvironment(kTempVariable, had_ ? std::optional<std::string>(old_) : std::nullopt);
}

} // namespace velkor::test
