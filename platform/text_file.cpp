#include "platform/text_file.h"

#include "platform/exception.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <system_error>

namespace velkor {

std::string NormaliseLineBreaks(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 32);
    size_t copied = 0;
    for (size_t i = text.find_first_of("\r\n"); i != std::string_view::npos;
         i = text.find_first_of("\r\n", i)) {
        out.append(text, copied, i - copied);
        out += "\r\n";
        i += (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ? 2 : 1;
        copied = i;
    }
    out.append(text, copied, text.size() - copied);
    return out;
}

namespace {
// True when every line break of the text is a CR LF pair. memchr looks through the text in long strides,
// from one CR to the next.
bool OnlyCrLfBreaks(std::string_view text) {
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p < end) {
        const char* cr = static_cast<const char*>(std::memchr(p, '\r', static_cast<size_t>(end - p)));
        const char* const stop = cr ? cr : end;
        if (std::memchr(p, '\n', static_cast<size_t>(stop - p))) return false; // a LF without its CR
        if (!cr) return true;
        if (cr + 1 == end || cr[1] != '\n') return false; // a CR alone
        p = cr + 2;
    }
    return true;
}
} // namespace

void NormaliseLineBreaksInPlace(std::string& text) {
    if (!OnlyCrLfBreaks(text)) text = NormaliseLineBreaks(text);
}

namespace {
template <typename Container>
Container ReadAll(const std::filesystem::path& path, bool roomToGrow = false) {
    std::ifstream in(path, std::ios::binary);
    std::error_code ec;
    if (!in || std::filesystem::is_directory(path, ec))
        throw EInOutError("Cannot open file \"" + path.string() + "\"");
    // Read straight into the container. One byte more than the file's size lets a file that keeps its size
    // end in one read; one that grows meanwhile is read on in larger steps.
    constexpr std::size_t kStep = std::size_t{1} << 16;
    std::size_t want = kStep;
    if (const auto size = std::filesystem::file_size(path, ec); !ec)
        want = static_cast<std::size_t>(size) + 1;
    Container data;
    data.reserve(roomToGrow ? want + want / 2 : want);
    std::size_t got = 0;
    for (;;) {
        data.resize(got + want);
        in.read(reinterpret_cast<char*>(data.data()) + got, static_cast<std::streamsize>(want));
        got += static_cast<std::size_t>(in.gcount());
        if (!in) break;
        want = std::max(got, kStep);
    }
    if (in.bad()) throw EInOutError("Cannot read file \"" + path.string() + "\"");
    data.resize(got);
    return data;
}
} // namespace

std::string LoadTextFile(const std::filesystem::path& path) {
    // Spare room of half the size: the scanner inserts its line markers in place (seven bytes a line), and
    // pages it never writes are never touched.
    std::string text = ReadAll<std::string>(path, true);
    NormaliseLineBreaksInPlace(text);
    return text;
}

std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& path) {
    return ReadAll<std::vector<std::uint8_t>>(path);
}

namespace {
// Writers of the same target, in this process or another (two builds share the temporary folder's
// "_velkor.txt"), each need a temporary file of their own, or one renames the other's away.
std::string TemporarySuffix() {
    static const std::uint32_t process = std::random_device{}();
    static std::atomic<std::uint32_t> count{0};
    char text[40];
    std::snprintf(text, sizeof text, ".velkor-tmp-%08x-%u", process, count.fetch_add(1) + 1);
    return text;
}
} // namespace

AtomicFileWriter::AtomicFileWriter(std::filesystem::path path) : path_(std::move(path)) {
    tmp_ = path_;
    tmp_ += TemporarySuffix();
    out_.open(tmp_, std::ios::binary | std::ios::trunc);
    if (!out_) throw EInOutError("Cannot create file \"" + path_.string() + "\"");
}

AtomicFileWriter::~AtomicFileWriter() {
    if (!out_.is_open()) return;
    out_.close();
    std::error_code ec;
    std::filesystem::remove(tmp_, ec);
}

void AtomicFileWriter::Fail() {
    out_.close();
    std::error_code ec;
    std::filesystem::remove(tmp_, ec);
    throw EInOutError("Cannot write file \"" + path_.string() + "\"");
}

void AtomicFileWriter::Write(std::span<const std::uint8_t> bytes) {
    Write(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

void AtomicFileWriter::Write(std::string_view text) {
    if (!out_.is_open()) Fail();
    out_.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!out_) Fail();
}

void AtomicFileWriter::Commit() {
    if (!out_.is_open()) Fail();
    out_.close();
    if (!out_) Fail();
    std::error_code ec;
    std::filesystem::rename(tmp_, path_, ec);
    if (ec) Fail();
}

void WriteFileAtomic(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
    AtomicFileWriter writer(path);
    writer.Write(bytes);
    writer.Commit();
}

void WriteFileAtomic(const std::filesystem::path& path, std::string_view text) {
    WriteFileAtomic(path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

} // namespace velkor
