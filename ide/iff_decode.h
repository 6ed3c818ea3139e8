// The IFF decoder as the IDE uses it: decoding one file into a text file, and the special decoders'
// enabled flags that the settings dialog shows.
#pragma once

#include <QStringList>
#include <QThread>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

struct TSpecialDecoderState {
    std::string Name; // as the decoder registry names it, e.g. "VERT" or "BULL/DATA"
    bool Enabled;     // used for matching chunks
};

// Decodes `input` (binary IFF) into the text file `output`; chunks above `limit` bytes go to side files.
// Returns the notes on why the text is not exact. Throws the reader's and decoder's exceptions.
std::vector<std::string> DecodeIffFile(const std::string& input, const std::string& output,
                                       std::int32_t limit);

std::vector<TSpecialDecoderState> SpecialDecoders();
void EnableSpecialDecoder(std::string_view name, bool enabled);
// Sets every flag from the settings: a decoder's key under "iffd", absent (-1) or non-zero, enables it.
void LoadSpecialDecoderFlags();

// Replaces the decoder; an empty function brings the real one back. For tests.
using TDecodeFunction = std::function<void(const std::string&, const std::string&, std::int32_t)>;
void SetDecodeFunctionForTesting(TDecodeFunction decode);

// Decodes one file beside the user-interface thread, at lower priority, and deletes itself when done.
class TIffDThread : public QThread {
    Q_OBJECT

public:
    TIffDThread(std::string fileName, std::int32_t limit, QObject* parent = nullptr);

signals:
    // Delivered to the user-interface thread, which finishes while the decode thread waits: the text
    // file to open, or an error text when decoding failed, and the notes on why the text is not exact.
    void Decoded(const QString& textFile, const QString& error, const QStringList& notes);

protected:
    void run() override;

private:
    std::string fileName_; // the binary IFF file
    std::int32_t limit_;   // decode limit in bytes
};

} // namespace velkor
