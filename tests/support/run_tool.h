// Runs velkorc (or any program) as a child process and captures what it prints, for end-to-end tests.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace velkor::test {

struct ToolResult {
    int exitCode = -1;
    std::string out; // stdout
    std::string err; // stderr
};

// Runs `program` with `args` in folder `cwd` (the current folder when empty).
ToolResult RunProgram(const std::string& program, const std::vector<std::string>& args,
                      const std::filesystem::path& cwd = {});

// Runs the velkorc built beside the tests.
ToolResult RunVelkorc(const std::vector<std::string>& args, const std::filesystem::path& cwd = {});

// A fresh empty folder under the system's temporary folder, removed with the object.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

// Points TMPDIR at a folder of the caller's for the object's life, so a test that reads what the build
// leaves in the temporary folder ("_velkor.txt") does not see a test running beside it.
class PrivateTempFolder {
public:
    explicit PrivateTempFolder(const std::filesystem::path& folder);
    ~PrivateTempFolder();
    PrivateTempFolder(const PrivateTempFolder&) = delete;
    PrivateTempFolder& operator=(const PrivateTempFolder&) = delete;

private:
    bool had_ = false; // TMPDIR was set before
    std::string old_;  // and held this
};

std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& bytes);

} // namespace velkor::test
