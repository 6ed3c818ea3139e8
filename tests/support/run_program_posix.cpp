// Child processes on POSIX systems: posix_spawn with stdout and stderr sent to files.
#include "tests/support/run_tool.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

extern char** environ;

namespace velkor::test {

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
    r.out = ReadFile(outPath);
    r.err = ReadFile(errPath);
    return r;
}

} // namespace velkor::test
