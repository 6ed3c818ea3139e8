#include "ide/iff_decode.h"

#include "codegen/decoder_names.h"
#include "ide/ide_ini.h"
#include "iff/decoder_settings.h"
#include "iff/iff_decoder.h"
#include "iff/special_decoders.h"
#include "platform/exception.h"

#include <mutex>

namespace velkor {

namespace {

std::mutex& DecodeLock() {
    static std::mutex lock;
    return lock;
}

TDecodeFunction& Override() {
    static TDecodeFunction decode;
    return decode;
}

// Floats are written losslessly when the settings ask for it ("iffd"/"exact_floats"); function records are
// listings unless "iffd"/"disassemble" is off.
std::vector<std::string> RealDecode(const std::string& input, const std::string& output, std::int32_t limit) {
    DecodeOptions options;
    const TIniFile ini = IdeIni();
    options.exactFloats = ini.ReadBool(kDecoderSection, kExactFloatsKey, false);
    options.disassemble = ini.ReadBool(kDecoderSection, kDisassembleKey, true);
    if (options.disassemble) options.names = SystemDecoderNames();
    return Decode(input, output, limit, options);
}

} // namespace

std::vector<std::string> DecodeIffFile(const std::string& input, const std::string& output,
                                       std::int32_t limit) {
    TDecodeFunction decode;
    {
        const std::lock_guard<std::mutex> guard(DecodeLock());
        decode = Override();
    }
    if (!decode) return RealDecode(input, output, limit);
    decode(input, output, limit);
    return {};
}

std::vector<TSpecialDecoderState> SpecialDecoders() {
    std::vector<TSpecialDecoderState> list;
    for (const std::string& name : SpecialDecoderNames()) list.push_back({name, SpecialDecoderEnabled(name)});
    return list;
}

void EnableSpecialDecoder(std::string_view name, bool enabled) {
    SetSpecialDecoderEnabled(name, enabled);
}

void LoadSpecialDecoderFlags() {
    const TIniFile ini = IdeIni();
    for (const std::string& name : SpecialDecoderNames())
        SetSpecialDecoderEnabled(name, ini.ReadInteger(kDecoderSection, name, -1) != 0);
}

void SetDecodeFunctionForTesting(TDecodeFunction decode) {
    const std::lock_guard<std::mutex> guard(DecodeLock());
    Override() = std::move(decode);
}

TIffDThread::TIffDThread(std::string fileName, std::int32_t limit, QObject* parent)
    : QThread(parent), fileName_(std::move(fileName)), limit_(limit) {
    connect(this, &QThread::finished, this, &QObject::deleteLater);
}

void TIffDThread::run() {
    const std::string textFile = fileName_ + ".pas";
    QString error;
    QStringList notes;
    try {
        for (const std::string& note : DecodeIffFile(fileName_, textFile, limit_)) notes << ToQ(note);
    } catch (const std::exception& e) {
        error = ToQ(fileName_ + ": " + e.what());
    }
    emit Decoded(ToQ(textFile), error, notes);
}

} // namespace velkor
