// Writes binary IFF: nested FORMs holding chunks, sizes big-endian and back-patched when an item closes,
// one zero pad byte behind every odd-sized chunk. Chunk data is written little-endian.
#pragma once

#include "iff/byte_stream.h"
#include "platform/exception.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class EIffWriter : public Exception {
public:
    using Exception::Exception;
};

class TBasicWriter {
public:
    virtual ~TBasicWriter() = default;

    virtual void Save() = 0;
    virtual std::uint64_t GetPosition() const { return stream_->Position(); }
    virtual std::uint64_t OpenChunk(std::string_view id) = 0;
    virtual std::uint64_t CloseChunk() = 0;
    virtual std::uint64_t OpenForm(std::string_view id) = 0;
    virtual std::uint64_t CloseForm() = 0;
    virtual void Write(std::span<const std::uint8_t> bytes) = 0;

    // zlib stream format at the default level, no length in front.
    void WriteCompressed(std::span<const std::uint8_t> bytes);
    void WriteLong(std::int32_t value);
    void WriteFloat(float value);
    void WriteCrc(std::string_view text);     // the name checksum of the text
    void WriteCString(std::string_view text); // the bytes and one zero byte

protected:
    std::unique_ptr<ByteStream> stream_; // the target
};

class TIffWriter final : public TBasicWriter {
public:
    enum Mode : std::uint8_t { InMemory = 0, ToFile = 1, Atomic = 2 };

    // InMemory keeps the bytes until Save writes them to fileName; ToFile creates (or truncates) the
    // file at once and writes straight to it; Atomic writes a temporary file beside it as it goes, and
    // Save replaces the file with it (EInOutError when any write failed). Throws EInOutError when the
    // file cannot be created.
    TIffWriter(std::filesystem::path fileName, Mode mode);
    ~TIffWriter() override = default;

    std::uint64_t OpenForm(std::string_view id) override;
    std::uint64_t CloseForm() override;
    std::uint64_t OpenChunk(std::string_view id) override;
    std::uint64_t CloseChunk() override;
    void Write(std::span<const std::uint8_t> bytes) override;
    void Save() override;

    // The original "Destroy": refuses while a form is open, then saves and closes the stream.
    void Close();
    // The discard destructor: drops the stream and deletes a file of the writer's name if one exists,
    // so a failed output leaves nothing behind. Atomic leaves the file as it was.
    void Discard();

    // The bytes written so far (memory mode).
    const std::vector<std::uint8_t>& Bytes() const;
    // Memory mode: room for about that many bytes, a hint that spares the copies of a growing buffer.
    void Reserve(std::uint64_t bytes);
    const std::filesystem::path& FileName() const { return fileName_; }
    bool FormOpen() const { return !forms_.empty(); }
    bool ChunkOpen() const { return chunk_.has_value(); }
    std::vector<std::string> Strings; // kept for the writer's users

private:
    struct Record {
        std::string id;           // the chunk id or form type
        std::uint64_t header = 0; // stream position of the item's header
        std::uint64_t size = 0;   // bytes counted so far (a form starts with its 4-byte type)
    };
    void AddToForms(std::uint64_t n);
    void PatchSize(std::uint64_t header, std::uint64_t size);
    void WriteId(std::string_view id);

    std::filesystem::path fileName_;
    Mode mode_;
    std::vector<Record> forms_;   // open forms, outermost first
    std::optional<Record> chunk_; // the open chunk
};

} // namespace velkor
