// Reads binary IFF: one scan indexes the data into a tree of forms and chunks, then a caller steps into
// forms and reads chunks by name, or walks the tree itself.
#pragma once

#include "iff/iff_handles.h"
#include "iff/iff_items.h"
#include "iff/iff_reader_errors.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TIffReader {
public:
    // Scans bytes the caller keeps alive as long as the reader. The source name (empty for data that
    // comes from no file) is part of two scan messages. Throws EIffReader and its subclasses.
    explicit TIffReader(std::span<const std::uint8_t> bytes, std::string sourceName = {});
    // A temporary would be gone before the reader: use FromCopy.
    TIffReader(std::vector<std::uint8_t>&& bytes, std::string sourceName = {}) = delete;
    // Scans bytes the reader then owns.
    static TIffReader FromCopy(std::vector<std::uint8_t> bytes, std::string sourceName = {});
    // Opens the file into a memory copy the reader owns; its name as given is the source name.
    // Throws EInOutError when the file cannot be read.
    static TIffReader FromFile(const std::filesystem::path& path);

    TIffReader(TIffReader&&) noexcept = default;
    TIffReader& operator=(TIffReader&&) noexcept = default;
    TIffReader(const TIffReader&) = delete;
    TIffReader& operator=(const TIffReader&) = delete;
    ~TIffReader() = default;

    // Steps into the first child form of the current form with this type.
    void OpenForm(std::string_view type);
    void CloseForm();
    // Makes the first chunk of the current form with this id current; reading starts at its data.
    // Opening another chunk while one is open replaces it.
    void OpenChunk(std::string_view id);
    // Makes one chunk of this reader's tree current, wherever it lies (for walks in file order, where
    // several chunks of a form may share an id); its form becomes the current form.
    void OpenChunk(const TChunk& chunk);
    void CloseChunk();

    void Read(std::span<std::uint8_t> out);
    std::int32_t ReadLong(); // little-endian
    float ReadFloat();       // little-endian IEEE single
    // The bytes up to the next zero byte, which is consumed but not returned.
    std::string ReadString();
    // Read position counted from the open chunk's header: its first data byte is at 8.
    std::int64_t Position() const;
    // The open chunk's size, else the current form's.
    std::int64_t Size() const;

    // The chunk's data with its pad byte (Size bytes). Throws EIffReader when they run past the data.
    std::span<const std::uint8_t> ChunkData(const TChunk& chunk) const;

    const TForm& Root() const { return *root_; }
    const TForm& CurrentForm() const { return *current_; }
    const TChunk* CurrentChunk() const { return chunk_; } // null when no chunk is open
    const std::string& SourceName() const { return sourceName_; }
    std::span<const std::uint8_t> Bytes() const { return bytes_; }

private:
    TIffReader(SharedBytes owned, std::string sourceName, int handle);
    void Scan(int handle);
    void CheckInside(const TChunk& chunk, std::int64_t end) const;

    SharedBytes owned_;                   // the bytes when the reader owns them
    std::span<const std::uint8_t> bytes_; // the data read
    std::string sourceName_;              // file name for messages, empty for plain data
    std::unique_ptr<TForm> root_;         // the first item of the data and everything inside it
    TForm* current_ = nullptr;            // the form OpenForm and OpenChunk look in
    const TChunk* chunk_ = nullptr;       // the open chunk, or null
    std::int64_t position_ = 0;           // absolute read position in bytes_
};

} // namespace velkor
