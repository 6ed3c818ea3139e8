// The seekable byte sinks the IFF writer writes into: a growing memory buffer, or a file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <span>
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

} // namespace velkor
