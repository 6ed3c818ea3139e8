// The one way Velkor writes a file: what stood at the path before is either kept whole or replaced whole.
//
// - A regular file is written into a temporary file beside it, which is synced and renamed over the target
//   by Commit; the folder is synced after the rename. Without Commit nothing changes and the temporary file
//   is removed. The replacement keeps the mode (and, where the process may, the owner) of the file it
//   replaces. A hard-linked target is replaced by a new file: its other names keep the old bytes.
// - A symbolic link is followed: its target is written, the link stays.
// - A file the user may not write (mode 0444) is refused with the system's reason, as the shell refuses it,
//   although the folder would allow the rename.
// - Anything else that is not a folder (a device such as /dev/null, a FIFO) is written in place: no
//   temporary file, no rename.
// - The temporary file is named "<name>.velkor-tmp-<process>-<n>". One left behind by a process that no
//   longer runs (it was killed while writing) is removed by the next write into the same folder.
//
// Every failure is an EInOutError naming the file and giving the system's reason, such as
// `Cannot write file "x": No space left on device`.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace velkor {

class AtomicFileWriter {
public:
    explicit AtomicFileWriter(std::filesystem::path path);
    ~AtomicFileWriter();
    AtomicFileWriter(const AtomicFileWriter&) = delete;
    AtomicFileWriter& operator=(const AtomicFileWriter&) = delete;

    void Write(std::span<const std::uint8_t> bytes);
    void Write(std::string_view text);
    // Writes over bytes written before, from `at` on; all of them must have been written. Only a writer
    // that Replaces may: a device or a FIFO cannot go back.
    void Overwrite(std::uint64_t at, std::span<const std::uint8_t> bytes);
    // Writes a temporary file that Commit renames over the target, rather than the target in place.
    bool Replaces() const { return !tmp_.empty(); }
    // Puts everything written on the disk and closes the file without replacing the target yet, so that
    // many files can be made ready and then committed together without holding a handle each.
    void Close();
    // Closes (when not closed yet) and replaces the target.
    void Commit();
    // Close for several files at the same time: each waits for the disk on a thread of its own.
    static void CloseTogether(std::span<AtomicFileWriter* const> writers);
    // Commit for several files: all are closed together before the first replaces its target, and each
    // folder is synced once, after the last rename in it. A failure leaves the targets not yet replaced as
    // they were.
    static void CommitTogether(std::span<AtomicFileWriter* const> writers);

    // The file that Commit replaces: the path given, or the file its links lead to.
    const std::filesystem::path& Target() const { return target_; }

private:
    void Flush();
    void WriteOut(std::string_view bytes);
    // Renames the closed temporary file over the target; the folder is the caller's to sync.
    void Replace();
    [[noreturn]] void Fail(const char* what, int error);
    void Discard() noexcept;

    std::filesystem::path path_;    // as given, for messages
    std::filesystem::path target_;  // the file replaced
    std::filesystem::path tmp_;     // the temporary file; empty when writing in place
    int fd_ = -1;                   // the open file, -1 once closed
    std::string buffer_;            // written bytes not yet handed to the system
    std::uint64_t written_ = 0;     // bytes handed to the system
    std::uint64_t writtenBack_ = 0; // of those, the ones the disk was set going on
    bool committed_ = false;
};

// Writes the bytes through an AtomicFileWriter.
void WriteFileAtomic(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);
void WriteFileAtomic(const std::filesystem::path& path, std::string_view text);

} // namespace velkor
