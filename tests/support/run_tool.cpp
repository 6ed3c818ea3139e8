#include "tests/support/run_tool.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

extern char** environ;

namespace velkor::test {

namespace {
std::string Slurp(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}
} // namespace

ToolResult RunProgram(const std::string& program, const std::vector<std::string>& args,
                      const std::filesystem::path& cwd) {
    TempDir io;
    auto outPath = io / "stdout";
    auto errPath = io / "stderr";
    std::vector<std::string> argStore;
    argStore.push_back(program);
    for (const auto& a : args) argStore.push_back(a);
    std::vector<char*> argv;
    for (auto& a : argStore) argv.push_back(a.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::string dir = cwd.empty() ? std::string() : cwd.string();
    if (!dir.empty()) posix_spawn_file_actions_addchdir_np(&actions, dir.c_str());
    pid_t pid = 0;
    int rc = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) throw std::runtime_error("cannot start " + program);
    int status = 0;
    waitpid(pid, &status, 0);
    ToolResult r;
    r.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    r.out = Slurp(outPath);
    r.err = Slurp(errPath);
    return r;
}

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
    if (const char* old = std::getenv("TMPDIR")) {
        had_ = true;
        old_ = old;
    }
    setenv("TMPDIR", folder.c_str(), 1);
}

PrivateTempFolder::~PrivateTempFolder() {
    if (had_)
        setenv("TMPDIR", old_.c_str(), 1);
    else
        unsetenv("TMPDIR");
}

} // namespace velkor::test
