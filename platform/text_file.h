// Reading and writing whole files. Every source unit, include file and textual-IFF file is read through
// LoadTextFile, so that the scanners always see CR LF line breaks whatever editor wrote the file.
#pragma once

#include "platform/atomic_file_writer.h"

#include <cstdint>
#include <filesystem>
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

// The file's bytes with normalised line breaks. Throws EInOutError when the file cannot be read, with the
// system's reason, or is not a regular file: a device such as /dev/zero never ends and a FIFO may block
// for ever, so neither is read.
std::string LoadTextFile(const std::filesystem::path& path);

// The file's bytes unchanged. Throws EInOutError as LoadTextFile does.
std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& path);

} // namespace velkor
