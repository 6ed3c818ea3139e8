#include "platform/atomic_file_writer.h"

#include "platform/exception.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <exception>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#include <process.h>
#else
#include <dirent.h>
#include <signal.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace velkor {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;
constexpr std::string_view kTemporaryMark = ".velkor-tmp-";
constexpr int kMaxLinks = 40; // as the system's own limit on links followed in one lookup

std::string Reason(int error) {
    return std::generic_category().message(error);
}

[[noreturn]] void Throw(const char* what, const fs::path& path, int error) {
    throw EInOutError(std::string(what) + " \"" + path.string() + "\": " + Reason(error));
}

#ifdef _WIN32
using Stat = struct _stat64;
int StatOf(const fs::path& p, Stat& st) {
    return ::_wstat64(p.c_str(), &st);
}
int ProcessId() {
    return ::_getpid();
}
int OpenFile(const fs::path& p, int flags, int mode) {
    return ::_wopen(p.c_str(), flags | _O_BINARY | _O_NOINHERIT, mode);
}
long WriteSome(int fd, const char* data, std::size_t size) {
    return ::_write(fd, data, static_cast<unsigned>(std::min<std::size_t>(size, 1u << 30)));
}
// Only a temporary file of this process is written at an offset, so moving its file position and back
// races with nothing.
long WriteSomeAt(int fd, const char* data, std::size_t size, std::uint64_t at) {
    const __int64 end = ::_lseeki64(fd, 0, SEEK_END);
    if (end < 0 || ::_lseeki64(fd, static_cast<__int64>(at), SEEK_SET) < 0) return -1;
    const long n = WriteSome(fd, data, size);
    const int error = errno;
    if (::_lseeki64(fd, end, SEEK_SET) < 0) return -1;
    errno = error;
    return n;
}
int SyncFile(int fd) {
    return ::_commit(fd);
}
int CloseFile(int fd) {
    return ::_close(fd);
}
bool IsRegular(const Stat& st) {
    return (st.st_mode & _S_IFMT) == _S_IFREG;
}
bool IsFolder(const Stat& st) {
    return (st.st_mode & _S_IFMT) == _S_IFDIR;
}
bool MayWrite(const fs::path& p) {
    return ::_waccess(p.c_str(), 2) == 0;
}
void KeepOwnerAndMode(int, const Stat&) {}
void SyncFolder(const fs::path&) {}
void StartWriteBack(int, std::uint64_t, std::uint64_t) {}
void RemoveStaleTemporaries(const fs::path&, const fs::path&) {}
fs::path FollowLinks(const fs::path& path, const fs::path&) {
    return path;
}
#else
using Stat = struct stat;
int StatOf(const fs::path& p, Stat& st) {
    return ::stat(p.c_str(), &st);
}
int ProcessId() {
    return static_cast<int>(::getpid());
}
int OpenFile(const fs::path& p, int flags, int mode) {
    int fd;
    do fd = ::open(p.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode);
    while (fd < 0 && errno == EINTR);
    return fd;
}
long WriteSome(int fd, const char* data, std::size_t size) {
    return static_cast<long>(::write(fd, data, size));
}
long WriteSomeAt(int fd, const char* data, std::size_t size, std::uint64_t at) {
    return static_cast<long>(::pwrite(fd, data, size, static_cast<off_t>(at)));
}
int SyncFile(int fd) {
    return ::fsync(fd);
}
// Sets the disk going on bytes already written, without waiting: the sync at the end then finds less to do.
void StartWriteBack(int fd, std::uint64_t from, std::uint64_t count) {
#ifdef __linux__
    ::sync_file_range(fd, static_cast<off_t>(from), static_cast<off_t>(count), SYNC_FILE_RANGE_WRITE);
#else
    (void)fd, (void)from, (void)count;
#endif
}
int CloseFile(int fd) {
    return ::close(fd);
}
bool IsRegular(const Stat& st) {
    return S_ISREG(st.st_mode);
}
bool IsFolder(const Stat& st) {
    return S_ISDIR(st.st_mode);
}
// With the effective ids, as the shell's own check before it writes: root may write a 0444 file.
bool MayWrite(const fs::path& p) {
    return ::faccessat(AT_FDCWD, p.c_str(), W_OK, AT_EACCESS) == 0;
}

void KeepOwnerAndMode(int fd, const Stat& old) {
    mode_t mode = old.st_mode & 07777;
    // Only the owner may give the file away; a group that cannot be kept takes set-id bits with it.
    if (::fchown(fd, old.st_uid, old.st_gid) != 0) mode &= ~mode_t{06000};
    ::fchmod(fd, mode);
}

// A rename is durable only once the folder holding both names is on the disk too.
void SyncFolder(const fs::path& folder) {
    const int fd = OpenFile(folder.empty() ? fs::path(".") : folder, O_RDONLY | O_DIRECTORY, 0);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

// "<name>.velkor-tmp-<process>-<n>" of a process that is gone: it was killed while writing.
void RemoveStaleTemporaries(const fs::path& folder, const fs::path& name) {
    const std::string prefix = name.string() + std::string(kTemporaryMark);
    DIR* dir = ::opendir(folder.empty() ? "." : folder.c_str());
    if (!dir) return;
    const int self = ProcessId();
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view file = entry->d_name;
        if (!file.starts_with(prefix)) continue;
        std::string_view rest = file.substr(prefix.size());
        const std::size_t dash = rest.find('-');
        if (dash == 0 || dash == std::string_view::npos || dash > 9) continue;
        long pid = 0;
        bool digits = true;
        for (char c : rest.substr(0, dash)) {
            if (c < '0' || c > '9') digits = false;
            pid = pid * 10 + (c - '0');
        }
        if (!digits || pid <= 0 || pid == self) continue;
        if (::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
        ::unlinkat(::dirfd(dir), entry->d_name, 0);
    }
    ::closedir(dir);
}

// The file that a write to `path` changes: a link is followed to its target, which need not exist yet.
fs::path FollowLinks(const fs::path& path, const fs::path& shown) {
    fs::path p = path;
    for (int hops = 0; hops <= kMaxLinks; ++hops) {
        struct stat st;
        if (::lstat(p.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return p;
        std::error_code ec;
        const fs::path to = fs::read_symlink(p, ec);
        if (ec) Throw("Cannot create file", shown, ec.value());
        p = to.is_absolute() ? to : p.parent_path() / to;
    }
    Throw("Cannot create file", shown, ELOOP);
}
#endif

// Two writers of one target, in this process or another, each need a temporary file of their own.
fs::path TemporaryBeside(const fs::path& target) {
    static std::atomic<unsigned> count{0};
    fs::path tmp = target;
    tmp += std::string(kTemporaryMark) + std::to_string(ProcessId()) + "-" + std::to_string(++count);
    return tmp;
}

} // namespace

AtomicFileWriter::AtomicFileWriter(fs::path path) : path_(std::move(path)) {
    target_ = FollowLinks(path_, path_);
    Stat st{};
    if (StatOf(target_, st) == 0) {
        if (IsFolder(st)) Throw("Cannot create file", path_, EISDIR);
        if (!MayWrite(target_)) Throw("Cannot create file", path_, errno);
        if (!IsRegular(st)) {
            fd_ = OpenFile(target_, O_WRONLY | O_TRUNC, 0);
            if (fd_ < 0) Throw("Cannot create file", path_, errno);
            buffer_.reserve(kBufferSize);
            return;
        }
    } else if (errno != ENOENT) {
        Throw("Cannot create file", path_, errno);
    } else {
        st.st_mode = 0; // a new file: the mode the user's umask gives
    }
    RemoveStaleTemporaries(target_.parent_path(), target_.filename());
    tmp_ = TemporaryBeside(target_);
    // A file replacing another stays private until it has the old one's mode.
    fd_ = OpenFile(tmp_, O_WRONLY | O_CREAT | O_EXCL, st.st_mode ? 0600 : 0666);
    if (fd_ < 0) {
        const int error = errno;
        tmp_.clear();
        Throw("Cannot create file", path_, error);
    }
    if (st.st_mode) KeepOwnerAndMode(fd_, st);
    buffer_.reserve(kBufferSize);
}

AtomicFileWriter::~AtomicFileWriter() {
    if (!committed_) Discard();
}

void AtomicFileWriter::Discard() noexcept {
    if (fd_ >= 0) CloseFile(fd_);
    fd_ = -1;
    if (!tmp_.empty()) {
        std::error_code ec;
        fs::remove(tmp_, ec);
        tmp_.clear();
    }
}

void AtomicFileWriter::Fail(const char* what, int error) {
    Discard();
    committed_ = true; // nothing is left to clean up, and no later call may write
    Throw(what, path_, error);
}

void AtomicFileWriter::Write(std::span<const std::uint8_t> bytes) {
    Write(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

void AtomicFileWriter::Write(std::string_view text) {
    if (fd_ < 0) Fail("Cannot write file", EBADF);
    if (buffer_.size() + text.size() > kBufferSize) Flush();
    if (text.size() >= kBufferSize)
        WriteOut(text);
    else
        buffer_ += text;
}

void AtomicFileWriter::Overwrite(std::uint64_t at, std::span<const std::uint8_t> bytes) {
    if (fd_ < 0 || !Replaces() || at + bytes.size() > written_ + buffer_.size())
        Fail("Cannot write file", EBADF);
    auto data = std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    while (!data.empty() && at < written_) {
        const std::size_t part =
            static_cast<std::size_t>(std::min<std::uint64_t>(data.size(), written_ - at));
        const long n = WriteSomeAt(fd_, data.data(), part, at);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) Fail("Cannot write file", n < 0 ? errno : ENOSPC);
        data.remove_prefix(static_cast<std::size_t>(n));
        at += static_cast<std::uint64_t>(n);
    }
    if (!data.empty()) buffer_.replace(static_cast<std::size_t>(at - written_), data.size(), data);
}

void AtomicFileWriter::Flush() {
    WriteOut(buffer_);
    buffer_.clear();
}

void AtomicFileWriter::WriteOut(std::string_view bytes) {
    written_ += bytes.size();
    while (!bytes.empty()) {
        const long n = WriteSome(fd_, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) Fail("Cannot write file", n < 0 ? errno : ENOSPC);
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    constexpr std::uint64_t kWriteBehind = std::uint64_t{4} << 20;
    if (!tmp_.empty() && written_ - writtenBack_ >= kWriteBehind) {
        StartWriteBack(fd_, writtenBack_, written_ - writtenBack_);
        writtenBack_ = written_;
    }
}

void AtomicFileWriter::Close() {
    if (committed_) Fail("Cannot write file", EBADF);
    if (fd_ < 0) return;
    Flush();
    // A device or a FIFO may not sync; the bytes went to it all the same.
    if (SyncFile(fd_) != 0 && !tmp_.empty()) Fail("Cannot write file", errno);
    const int fd = fd_;
    fd_ = -1;
    if (CloseFile(fd) != 0) Fail("Cannot write file", errno);
}

void AtomicFileWriter::Commit() {
    Close();
    const bool renamed = !tmp_.empty();
    Replace();
    if (renamed) SyncFolder(target_.parent_path());
}

void AtomicFileWriter::Replace() {
    if (!tmp_.empty()) {
        std::error_code ec;
        fs::rename(tmp_, target_, ec);
        if (ec) Fail("Cannot write file", ec.value());
        tmp_.clear();
    }
    committed_ = true;
}

void AtomicFileWriter::CloseTogether(std::span<AtomicFileWriter* const> writers) {
    // A sync mostly waits for the disk; waiting for all of them at once costs about as much as one.
    std::vector<std::exception_ptr> failures(writers.size());
    {
        std::vector<std::jthread> closing;
        for (std::size_t i = 1; i < writers.size(); ++i)
            closing.emplace_back([&, i] {
                try {
                    writers[i]->Close();
                } catch (...) {
                    failures[i] = std::current_exception();
                }
            });
        if (!writers.empty()) {
            try {
                writers[0]->Close();
            } catch (...) {
                failures[0] = std::current_exception();
            }
        }
    }
    for (const std::exception_ptr& failure : failures)
        if (failure) std::rethrow_exception(failure);
}

void AtomicFileWriter::CommitTogether(std::span<AtomicFileWriter* const> writers) {
    CloseTogether(writers);
    std::vector<fs::path> folders;
    auto syncFolders = [&] {
        for (const fs::path& folder : folders) SyncFolder(folder);
    };
    try {
        for (AtomicFileWriter* writer : writers) {
            fs::path folder = writer->target_.parent_path();
            const bool renamed = !writer->tmp_.empty();
            writer->Replace();
            if (renamed && std::find(folders.begin(), folders.end(), folder) == folders.end())
                folders.push_back(std::move(folder));
        }
    } catch (...) {
        syncFolders(); // the files replaced before the failure stay replaced
        throw;
    }
    syncFolders();
}

void WriteFileAtomic(const fs::path& path, std::span<const std::uint8_t> bytes) {
    AtomicFileWriter writer(path);
    writer.Write(bytes);
    writer.Commit();
}

void WriteFileAtomic(const fs::path& path, std::string_view text) {
    WriteFileAtomic(path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

} // namespace velkor
