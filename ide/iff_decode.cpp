#include "ide/iff_decode.h"

#include "ide/ide_ini.h"
#include "platform/exception.h"

#include <mutex>

namespace velkor {

namespace {

// The decoders the decoder registry knows, in its order. Kept here until the decoder joins the build.
std::vector<TSpecialDecoderState>& Registry() {
    static std::vector<TSpecialDecoderState> list = {
        {"SHIP, CAPS, CMIS", true},
        {"TIME/TIME", true},
        {"DATA/LANG/TEXT", true},
        {"LOUT/LIST", true},
        {"VERT", true},
        {"VTNM", true},
        {"NORM", true},
        {"FVRT", true},
        {"FACE", true},
        {"RADI", true},
        {"HARD", true},
        {"STRU", true},
        {"BULL/DATA", true},
        {"MISS/DATA", true},
    };
    return list;
}

std::mutex& DecodeLock() {
    static std::mutex lock;
    return lock;
}

TDecodeFunction& Decoder() {
    static TDecodeFunction decode = [](const std::string&, const std::string&, std::int32_t) {
        throw Exception("The IFF decoder is not part of this build");
    };
    return decode;
}

} // namespace

void DecodeIffFile(const std::string& input, const std::string& output, std::int32_t limit) {
    TDecodeFunction decode;
    {
        const std::lock_guard<std::mutex> guard(DecodeLock());
        decode = Decoder();
    }
    decode(input, output, limit);
}

std::vector<TSpecialDecoderState> SpecialDecoders() {
    return Registry();
}

void EnableSpecialDecoder(std::string_view name, bool enabled) {
    for (TSpecialDecoderState& decoder : Registry()) {
        if (decoder.Name == name) decoder.Enabled = enabled;
    }
}

void LoadSpecialDecoderFlags() {
    const TIniFile ini = IdeIni();
    for (TSpecialDecoderState& decoder : Registry())
        decoder.Enabled = ini.ReadInteger("iffd", decoder.Name, -1) != 0;
}

void SetDecodeFunctionForTesting(TDecodeFunction decode) {
    const std::lock_guard<std::mutex> guard(DecodeLock());
    Decoder() = std::move(decode);
}

TIffDThread::TIffDThread(std::string fileName, std::int32_t limit, QObject* parent)
    : QThread(parent), fileName_(std::move(fileName)), limit_(limit) {
    connect(this, &QThread::finished, this, &QObject::deleteLater);
}

void TIffDThread::run() {
    const std::string textFile = fileName_ + ".pas";
    QString error;
    try {
        DecodeIffFile(fileName_, textFile, limit_);
    } catch (const std::exception& e) {
        error = ToQ(e.what());
    }
    emit Decoded(ToQ(textFile), error);
}

} // namespace velkor
