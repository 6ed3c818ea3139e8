// The decoder's settings in section "iffd" of the settings file.
#pragma once

#include "iff/iff_decoder.h"

#include <cstdint>

namespace velkor {

class TIniFile;

inline constexpr const char* kDecoderSection = "iffd";
inline constexpr const char* kMaxDecodeSizeKey = "maxdecodesize";
inline constexpr const char* kExactFloatsKey = "exact_floats";
inline constexpr const char* kDisassembleKey = "disassemble"; // function records as listings
inline constexpr std::int32_t kDefaultMaxDecodeSize = 1024;

struct DecoderSettings {
    std::int32_t maxDecodeSize = kDefaultMaxDecodeSize; // the decode limit in bytes
    DecodeOptions options;                              // how values are written
};

// Reads the decode limit, "exact_floats" and "disassemble" (absent: on), and sets every special decoder's
// flag from its key (named by the decoder; absent or not 0 means enabled).
DecoderSettings ApplyDecoderSettings(const TIniFile& ini);
// Writes each special decoder's flag as 1 or 0.
void SaveSpecialDecoderFlags(TIniFile& ini);

} // namespace velkor
