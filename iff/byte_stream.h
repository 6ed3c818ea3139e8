// The seekable byte sinks the IFF writer writes into: a growing memory buffer, a file, or a file replaced
// atomically once written.
#pragma once

#include "platform/atomic_file_writer.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace velkor {

class ByteStream {
public:
    virtual ~ByteStream() = default;
    virtual void Write(std::span<const std::uint8_t> bytes) = 0;
    virtual void Seek(std::uint64_t position) = 0;
    virtual std::uint64_t Position() const = 0;
};

class MemoryStream final : public ByteStream {
public:
    void Write(std::span<const std::uint8_t> bytes) override;
    void Seek(std::uint64_t position) override { pos_ = position; }
    std::uint64_t Position() const override { return pos_; }
    const std::vector<std::uint8_t>& Bytes() const { return data_; }
    // Room for that many bytes in all, so that a content whose size is roughly known is not copied again
    // and again as it grows.
    void Reserve(std::uint64_t bytes) { data_.reserve(static_cast<std::size_t>(bytes)); }

private:
    std::vector<std::uint8_t> data_; // the whole content
    std::uint64_t pos_ = 0;          // next write position; writing past the end zero-fills the gap
};

class FileStream final : public ByteStream {
public:
    // Creates or truncates the file. Throws EInOutError.
    explicit FileStream(const std::filesystem::path& path);
    ~FileStream() override;
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;
    void Write(std::span<const std::uint8_t> bytes) override;
    void Seek(std::uint64_t position) override;
    std::uint64_t Position() const override { return pos_; }
    void Close(); // flushes and closes; throws EInOutError when the data could not be written

private:
    std::filesystem::path path_;
    std::FILE* file_ = nullptr;
    std::uint64_t pos_ = 0;
};

// Hands its bytes to an AtomicFileWriter a window at a time: a large output is not held in memory, and it
// reaches the file while it is still in the cache. A size patched behind the window goes to the file.
// A target written in place (a device) cannot be written over, and gets everything at Commit.
class SpoolStream final : public ByteStream {
public:
    static constexpr std::size_t kWindow = std::size_t{256} << 10;

    // Creates the temporary file. Throws EInOutError.
    explicit SpoolStream(const std::filesystem::path& target);
    void Write(std::span<const std::uint8_t> bytes) override;
    void Seek(std::uint64_t position) override { pos_ = position; }
    std::uint64_t Position() const override { return pos_; }
    // Replaces the target. Throws EInOutError, the first write that failed if one did: until then the
    // writer's user goes on as if writing to memory, and learns of the failure where a write from memory
    // would have failed.
    void Commit();

private:
    void Flush();
    // Runs a write to the file unless one failed before; keeps the failure.
    template <class Op>
    void ToFile(Op write);

    AtomicFileWriter file_;
    std::vector<std::uint8_t> window_; // the bytes from flushed_ on
    std::uint64_t flushed_ = 0;        // bytes handed to the file
    std::uint64_t pos_ = 0;            // next write position
    std::string failure_;              // the message of the first failed write
    bool spools_;                      // false for a target written in place
};

} // namespace velkor
