// What a write does to whatever stands at its path, and what a read refuses to read.
#include "platform/atomic_file_writer.h"
#include "platform/exception.h"
#include "platform/text_file.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace velkor::test {
namespace {

std::size_t FilesIn(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

mode_t ModeOf(const fs::path& p) {
    struct stat st {};
    ::lstat(p.c_str(), &st);
    return st.st_mode;
}

// The message of the EInOutError that `run` throws; empty when it throws none.
std::string FailureOf(const std::function<void()>& run) {
    try {
        run();
    } catch (const EInOutError& e) {
        return e.what();
    }
    return {};
}

// Runs `run` in a child process under an ordinary user's ids when this process is root, so that file
// permissions apply as they do for a user; returns the child's exit status.
int AsOrdinaryUser(const std::function<int()>& run) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(100);
        ::_exit(run());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A missing file is created with the umask's mode; what else can stand at the path is in the platform's
// call cases.
TEST(WriteTargets, AMissingFileTakesTheUmasksMode) {
    TempDir dir;
    WriteFileAtomic(dir / "t", std::string_view("new"));
    const mode_t mask = ::umask(022);
    ::umask(mask);
    EXPECT_EQ(ReadFile(dir / "t"), "new");
    EXPECT_EQ(ModeOf(dir / "t") & 0777, 0666 & ~mask);
}

TEST(WriteTargets, AFifoIsWrittenInPlace) {
    TempDir dir;
    const fs::path fifo = dir / "pipe";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    std::string got;
    std::thread reader([&] { got = ReadFile(fifo); });
    WriteFileAtomic(fifo, std::string_view("through the pipe"));
    reader.join();
    EXPECT_EQ(got, "through the pipe");
    EXPECT_TRUE(S_ISFIFO(ModeOf(fifo)));
    EXPECT_EQ(FilesIn(dir.path()), 1u);
}

TEST(WriteTargets, ADeviceIsWrittenInPlace) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root makes device nodes";
    TempDir dir;
    const fs::path null = dir / "null";
    if (::mknod(null.c_str(), S_IFCHR | 0666, makedev(1, 3)) != 0) GTEST_SKIP() << "no device nodes here";
    WriteFileAtomic(null, std::string_view("gone"));
    EXPECT_TRUE(S_ISCHR(ModeOf(null)));
    EXPECT_EQ(FilesIn(dir.path()), 1u);
}

TEST(WriteTargets, FailuresGiveTheSystemsReason) {
    TempDir dir;
    WriteFile(dir / "ro", "old");
    fs::permissions(dir / "ro", fs::perms(0444));
    fs::permissions(dir.path(), fs::perms(0777));
    // As the shell refuses "> ro" for a user, although the folder would allow a rename over it.
    const fs::path readOnly = dir / "ro";
    EXPECT_EQ(AsOrdinaryUser([&] {
                  const std::string failure =
                      FailureOf([&] { WriteFileAtomic(readOnly, std::string_view("new")); });
                  return failure == "Cannot create file \"" + readOnly.string() + "\": Permission denied" ? 0
                                                                                                          : 1;
              }),
              0);
    EXPECT_EQ(ReadFile(readOnly), "old");
    EXPECT_EQ(FilesIn(dir.path()), 1u);
}

// A writer killed part-way leaves the old file whole; the next write of the target replaces it and takes
// the killed writer's temporary file away.
TEST(CrashConsistency, AKilledWriterLeavesTheOldFileAndTheNextWriteCleansUp) {
    TempDir dir;
    const fs::path target = dir / "big.bin";
    const std::string old(3 << 20, 'o');
    WriteFile(target, old);
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        AtomicFileWriter writer(target);
        const std::string piece(1 << 20, 'n');
        for (int i = 0; i < 5; ++i) writer.Write(std::string_view(piece));
        (void)!::write(ready[1], "x", 1);
        for (;;) ::pause(); // killed here, in the middle of the write
    }
    char c;
    ASSERT_EQ(::read(ready[0], &c, 1), 1);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(ready[0]);
    ::close(ready[1]);
    EXPECT_EQ(ReadFile(target), old);
    EXPECT_EQ(FilesIn(dir.path()), 2u); // the target and the killed writer's temporary file

    const std::string fresh(4 << 20, 'f');
    WriteFileAtomic(target, std::string_view(fresh));
    EXPECT_EQ(ReadFile(target), fresh);
    EXPECT_EQ(FilesIn(dir.path()), 1u);
}

} // namespace
} // namespace velkor::test
