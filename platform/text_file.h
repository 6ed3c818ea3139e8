// Reading and writing whole files. Every source unit, include file and textual-IFF file is read through
// LoadTextFile, so that the scanners always see CR LF line breaks whatever editor wrote the file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// Every line break (CR LF, a lone LF or a lone CR) becomes CR LF; nothing else changes.
std::string NormaliseLineBreaks(std::string_view text);

// The file's bytes with normalised line breaks. Throws EInOutError when the file cannot be read.
std::string LoadTextFile(const std::filesystem::path& path);

// The file's bytes unchanged. Throws EInOutError when the file cannot be read.
std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& path);

// Writes through a temporary file in the same folder and renames it over the target, so a failure part-way
// leaves the old file intact. Throws EInOutError.
void WriteFileAtomic(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);
void WriteFileAtomic(const std::filesystem::path& path, std::string_view text);

} // namespace velkor
