#include "iff/plain_rows_assembler.h"

#include "platform/numbers.h"

#include <array>
#include <cstring>
#include <span>

namespace velkor {

namespace {

// Thrown where the text leaves the shape this reader takes.
struct NotPlain {};

// No token this reader takes is longer than this: whatever it looks at lies in the window.
constexpr std::ptrdiff_t kLookahead = 512;
constexpr std::size_t kMaxName = 256;
constexpr std::size_t kBlockSize = std::size_t{1} << 20;
// Deeper nesting is left to the general path, which refuses it with its message.
constexpr int kMaxDepth = 256;
// Items gathered before they go to the writer in one piece, and the most items read in one go.
constexpr std::size_t kFlushSize = std::size_t{64} << 10;
constexpr std::uint32_t kBatch = 4096;

bool IsBlank(char c) {
    return c == ' ' || c == '\r' || c == '\n';
}
bool IsAsciiLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsWordChar(char c) {
    return IsAsciiLetter(c) || IsAsciiDigit(c) || c == '_';
}

class PlainRowsReader {
public:
    explicit PlainRowsReader(std::string_view text)
        : p_(text.data()), end_(text.data() + text.size()), atEnd_(true), bytesRead_(text.size()) {}
    explicit PlainRowsReader(std::FILE* file) : file_(file), buffer_(kBlockSize) {
        p_ = end_ = buffer_.data();
        Fill();
    }

    std::vector<PlainRowsBlock> Run(std::uint64_t sizeHint) {
        std::vector<PlainRowsBlock> blocks;
        for (;;) {
            SkipBlanks();
            if (p_ == end_) return blocks;
            if (Word() != "IFF") throw NotPlain{};
            PlainRowsBlock block;
            block.fileName = Name(1);
            Punctuation('{');
            block.writer = std::make_unique<TIffWriter>("_velkor.iff", TIffWriter::InMemory);
            // Two characters are the least a byte of the text left takes; room that stays unwritten costs
            // address space only.
            const std::uint64_t read = bytesRead_ - static_cast<std::uint64_t>(end_ - p_);
            const std::uint64_t left = sizeHint > read ? sizeHint - read : 0;
            constexpr std::uint64_t kMaxReserve = std::uint64_t{256} << 20;
            block.writer->Reserve(std::min(left / 2 + 64, kMaxReserve));
            writer_ = block.writer.get();
            for (;;) {
                SkipBlanks();
                if (p_ < end_ && *p_ == '}') {
                    ++p_;
                    break;
                }
                if (Word() != "FORM") throw NotPlain{};
                Form();
            }
            blocks.push_back(std::move(block));
        }
    }

private:
    // Moves what is left of the window to its front and reads on behind it.
    void Fill() {
        const auto kept = static_cast<std::size_t>(end_ - p_);
        std::memmove(buffer_.data(), p_, kept);
        const std::size_t room = buffer_.size() - kept;
        const std::size_t got = std::fread(buffer_.data() + kept, 1, room, file_);
        if (got < room) {
            if (std::ferror(file_)) throw NotPlain{}; // the general path reads it again and names the fault
            atEnd_ = true;
        }
        p_ = buffer_.data();
        end_ = p_ + kept + got;
        bytesRead_ += got;
    }

    void SkipBlanks() {
        for (;;) {
            while (p_ < end_ && IsBlank(*p_)) ++p_;
            if (p_ < end_ || atEnd_) break;
            Fill();
        }
        if (end_ - p_ < kLookahead && !atEnd_) Fill();
    }

    // A keyword, upper-cased; the character behind it must end it for both scanners alike.
    std::string_view Word() {
        const char* q = p_;
        if (q == end_ || !(IsAsciiLetter(*q) || *q == '_')) throw NotPlain{};
        std::size_t n = 0;
        for (; q < end_ && IsWordChar(*q) && n < word_.size(); ++q, ++n)
            word_[n] = *q >= 'a' && *q <= 'z' ? static_cast<char>(*q - 'a' + 'A') : *q;
        if (q == end_ || !(IsBlank(*q) || *q == '[' || *q == '"' || *q == '$')) throw NotPlain{};
        p_ = q;
        return {word_.data(), n};
    }

    // A quoted name on one line, of printable characters that no scanner reads as anything else.
    std::string Name(std::size_t minSize) {
        SkipBlanks();
        if (p_ == end_ || *p_ != '"') throw NotPlain{};
        const char* const from = p_ + 1;
        const char* q = from;
        while (q < end_ && *q != '"') {
            const char c = *q;
            if (c < 0x20 || c > 0x7E || c == '/' || c == '#' ||
                static_cast<std::size_t>(q - from) >= kMaxName)
                throw NotPlain{};
            ++q;
        }
        if (q == end_ || static_cast<std::size_t>(q - from) < minSize) throw NotPlain{};
        p_ = q + 1;
        return std::string(from, q);
    }

    void Punctuation(char c) {
        SkipBlanks();
        if (p_ == end_ || *p_ != c) throw NotPlain{};
        ++p_;
    }

    // "$" and one to eight hexadecimal digits, or one to nine decimal digits, no greater than max, ended by a
    // blank, "," or `close`.
    std::uint32_t Number(std::uint32_t max, char close) {
        const char* q = p_;
        std::uint32_t v = 0;
        if (q < end_ && *q == '$') {
            const char* const digits = ++q;
            while (q < end_ && q - digits < 9) {
                const std::uint8_t d = kHexDigitValues[static_cast<unsigned char>(*q)];
                if (d > 15) break;
                v = v << 4 | d;
                ++q;
            }
            if (q == digits || q - digits > 8) throw NotPlain{};
        } else {
            while (q < end_ && IsAsciiDigit(*q) && q - p_ < 10) {
                v = v * 10 + static_cast<std::uint32_t>(*q - '0');
                ++q;
            }
            if (q == p_ || q - p_ > 9) throw NotPlain{};
        }
        if (q == end_ || !(IsBlank(*q) || *q == ',' || *q == close)) throw NotPlain{};
        if (v > max || v == static_cast<std::uint32_t>(kNoValue)) throw NotPlain{};
        p_ = q;
        return v;
    }

    void Form() {
        FormHeader();
        int depth = 1;
        while (depth > 0) {
            SkipBlanks();
            if (p_ < end_ && *p_ == '}') {
                ++p_;
                writer_->CloseForm();
                --depth;
                continue;
            }
            const std::string_view word = Word();
            if (word == "FORM") {
                if (depth >= kMaxDepth) throw NotPlain{};
                FormHeader();
                ++depth;
            } else if (word == "CHUNK") {
                Chunk();
            } else {
                throw NotPlain{};
            }
        }
    }

    void FormHeader() {
        const std::string name = Name(4);
        writer_->OpenForm(std::string_view(name).substr(0, 4));
        Punctuation('{');
    }

    void Chunk() {
        const std::string id = Name(4);
        Punctuation('{');
        writer_->OpenChunk(std::string_view(id).substr(0, 4));
        for (;;) {
            SkipBlanks();
            if (p_ < end_ && *p_ == '}') {
                ++p_;
                break;
            }
            Value();
        }
        Flush();
        writer_->CloseChunk();
    }

    void Value() {
        const std::string_view type = Word();
        int width = 0;
        std::uint32_t max = 0;
        if (type == "BYTE") {
            width = 1;
            max = 0xFF;
        } else if (type == "WORD") {
            width = 2;
            max = 0xFFFF;
        } else if (type == "LONG") {
            width = 4;
            max = 0xFFFFFFFF;
        } else {
            throw NotPlain{};
        }
        std::uint32_t count = 1;
        SkipBlanks();
        if (p_ < end_ && *p_ == '[') {
            ++p_;
            SkipBlanks();
            count = Number(0x7FFFFFFF, ']');
            // A count of none leaves the items to be read as types: the general path's to refuse.
            if (count == 0) throw NotPlain{};
            Punctuation(']');
        }
        while (count > 0) {
            const std::uint32_t n = std::min<std::uint32_t>(count, kBatch);
            if (pendingUsed_ + n * static_cast<std::size_t>(width) > pending_.size()) Flush();
            std::uint8_t* out = pending_.data() + pendingUsed_;
            for (std::uint32_t k = 0; k < n;) {
                if (width == 1) {
                    // The usual row: each byte "$" and two digits behind one blank, the last one ending the
                    // line. Anything else, and the end of the window, is left to the general reading below.
                    const char* p = p_;
                    const std::uint32_t before = k;
                    while (k < n && end_ - p > 8 && p[0] == ' ' && p[1] == '$') {
                        const std::uint32_t high = kHexDigitValues[static_cast<unsigned char>(p[2])];
                        const std::uint32_t low = kHexDigitValues[static_cast<unsigned char>(p[3])];
                        if ((high | low) > 15 || (p[4] != ' ' && p[4] != '\r')) break;
                        *out++ = static_cast<std::uint8_t>(high << 4 | low);
                        p += 4;
                        ++k;
                    }
                    p_ = p;
                    if (k != before) {
                        // The "," that may follow the last of them.
                        SkipBlanks();
                        if (p_ < end_ && *p_ == ',') ++p_;
                    }
                    if (k == n) break;
                }
                SkipBlanks();
                const std::uint32_t v = Number(max, '}');
                for (int b = 0; b < width; ++b) *out++ = static_cast<std::uint8_t>(v >> (8 * b));
                SkipBlanks();
                if (p_ < end_ && *p_ == ',') ++p_;
                ++k;
            }
            pendingUsed_ += n * static_cast<std::size_t>(width);
            count -= n;
            if (pendingUsed_ >= kFlushSize) Flush();
        }
    }

    void Flush() {
        if (pendingUsed_ == 0) return;
        writer_->Write(std::span(pending_).first(pendingUsed_));
        pendingUsed_ = 0;
    }

    const char* p_ = nullptr;      // the next character
    const char* end_ = nullptr;    // behind the last character read so far
    bool atEnd_ = false;           // end_ is the text's end
    std::uint64_t bytesRead_ = 0;  // of the text so far
    std::FILE* file_ = nullptr;    // where the window is read from, or null for a text in memory
    std::vector<char> buffer_;     // the window
    TIffWriter* writer_ = nullptr; // the block being assembled
    std::array<char, 15> word_{};  // the last keyword read, upper-cased
    std::vector<std::uint8_t> pending_ = std::vector<std::uint8_t>(kFlushSize + 4 * kBatch); // items gathered
    std::size_t pendingUsed_ = 0; // how many bytes of pending_ they fill
};

template <class Source>
std::optional<std::vector<PlainRowsBlock>> Assemble(Source source, std::uint64_t sizeHint) {
    try {
        PlainRowsReader reader(source);
        return reader.Run(sizeHint);
    } catch (const NotPlain&) {
        return std::nullopt;
    } catch (const Exception&) {
        // The writer's refusals: the general path reports them with their line.
        return std::nullopt;
    }
}

} // namespace

std::optional<std::vector<PlainRowsBlock>> AssemblePlainRows(std::string_view text) {
    return Assemble(text, text.size());
}

std::optional<std::vector<PlainRowsBlock>> AssemblePlainRows(std::FILE* file, std::uint64_t sizeHint) {
    return Assemble(file, sizeHint);
}

} // namespace velkor
