#include "iff/decoder_settings.h"

#include "platform/ini_file.h"

namespace velkor {

DecoderSettings ApplyDecoderSettings(const TIniFile& ini) {
    DecoderSettings settings;
    settings.maxDecodeSize = ini.ReadInteger(kDecoderSection, kMaxDecodeSizeKey, kDefaultMaxDecodeSize);
    settings.options.exactFloats = ini.ReadBool(kDecoderSection, kExactFloatsKey, false);
    settings.options.disassemble = ini.ReadBool(kDecoderSection, kDisassembleKey, true);
    for (const std::string& name : SpecialDecoderNames())
        SetSpecialDecoderEnabled(name, ini.ReadInteger(kDecoderSection, name, -1) != 0);
    return settings;
}

void SaveSpecialDecoderFlags(TIniFile& ini) {
    for (const std::string& name : SpecialDecoderNames())
        ini.WriteInteger(kDecoderSection, name, SpecialDecoderEnabled(name) ? 1 : 0);
}

} // namespace velkor
