// Reading and writing whole files. Every source unit, include file and textual-IFF file is read through
// LoadTextFile, so that the scanners always see CR LF line breaks whatever editor wrote the file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// Every line break (CR LF, a lone LF or a lone CR) becomes CR LF; nothing else changes.
std::string NormaliseLineBreaks(std::string_view text);
// The same in place: a text whose breaks all are CR LF already, as the compiler's own output is, is left
// as it is without being copied.
void NormaliseLineBreaksInPlace(std::string& text);

// The file's bytes with normalised line breaks. Throws EInOutError when the file cannot be read.
std::string LoadTextFile(const std::filesystem::path& path);

// The file's bytes unchanged. Throws EInOutError when the file cannot be read.
std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& path);

// Writes a file piece by piece through a temporary file in the same folder, renamed over the target by
// Commit, so that a failure part-way leaves the old file intact; without Commit the temporary file is
// removed. Throws EInOutError.
class AtomicFileWriter {
public:
    explicit AtomicFileWriter(std::filesystem::path path);
    ~AtomicFileWriter();
    AtomicFileWriter(const AtomicFileWriter&) = delete;
    AtomicFileWriter& operator=(const AtomicFileWriter&) = delete;

    void Write(std::span<const std::uint8_t> bytes);
    void Write(std::string_view text);
    void Commit();

private:
    [[noreturn]] void Fail();

    std::filesystem::path path_; // the target
    std::filesystem::path tmp_;  // the temporary file beside it
    std::ofstream out_;          // the temporary file while it is open
};

// Writes through a temporary file in the same folder and renames it over the target, so a failure part-way
// leaves the old file intact. Throws EInOutError.
void WriteFileAtomic(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);
void WriteFileAtomic(const std::filesystem::path& path, std::string_view text);

} // namespace velkor
