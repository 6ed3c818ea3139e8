#include "platform/text_file.h"

#include "platform/exception.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <fstream>
#else
#include <unistd.h>
#endif

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

std::string Reason(int error) {
    return std::generic_category().message(error);
}

[[noreturn]] void Throw(const char* what, const std::filesystem::path& path, int error) {
    throw EInOutError(std::string(what) + " \"" + path.string() + "\": " + Reason(error));
}

[[noreturn]] void ThrowNotRegular(const std::filesystem::path& path) {
    throw EInOutError("Cannot open file \"" + path.string() + "\": not a regular file");
}

// Reads straight into the container. One byte more than the file's size lets a file that keeps its size
// end in one read; one that grows meanwhile is read on in larger steps.
template <typename Container, typename ReadSome>
Container ReadAllFrom(const std::filesystem::path& path, std::size_t size, bool roomToGrow, ReadSome&& read) {
    constexpr std::size_t kStep = std::size_t{1} << 16;
    std::size_t want = size + 1;
    Container data;
    data.reserve(roomToGrow ? want + want / 2 : want);
    std::size_t got = 0;
    for (;;) {
        data.resize(got + want);
        const long n = read(reinterpret_cast<char*>(data.data()) + got, want);
        if (n < 0) Throw("Cannot read file", path, errno);
        got += static_cast<std::size_t>(n);
        if (n == 0) break;
        if (static_cast<std::size_t>(n) == want)
            want = std::max(got, kStep);
        else
            want -= static_cast<std::size_t>(n);
    }
    data.resize(got);
    return data;
}

#ifdef _WIN32
template <typename Container>
Container ReadAll(const std::filesystem::path& path, bool roomToGrow = false) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) Throw("Cannot open file", path, EISDIR);
    std::ifstream in(path, std::ios::binary);
    if (!in) Throw("Cannot open file", path, ENOENT);
    if (!std::filesystem::is_regular_file(path, ec)) ThrowNotRegular(path);
    const auto size = std::filesystem::file_size(path, ec);
    return ReadAllFrom<Container>(path, ec ? 0 : static_cast<std::size_t>(size), roomToGrow,
                                  [&](char* to, std::size_t count) -> long {
                                      in.read(to, static_cast<std::streamsize>(count));
                                      if (in.bad()) return -1;
                                      return static_cast<long>(in.gcount());
                                  });
}
#else
template <typename Container>
Container ReadAll(const std::filesystem::path& path, bool roomToGrow = false) {
    // Without blocking: opening a FIFO would otherwise wait for a writer before it can be refused.
    int fd;
    do fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) Throw("Cannot open file", path, errno);
    struct Closer {
        int fd;
        ~Closer() { ::close(fd); }
    } closer{fd};
    struct stat st;
    if (::fstat(fd, &st) != 0) Throw("Cannot open file", path, errno);
    if (S_ISDIR(st.st_mode)) Throw("Cannot open file", path, EISDIR);
    if (!S_ISREG(st.st_mode)) ThrowNotRegular(path);
    return ReadAllFrom<Container>(path, static_cast<std::size_t>(st.st_size), roomToGrow,
                                  [fd](char* to, std::size_t count) -> long {
                                      for (;;) {
                                          const auto n = ::read(fd, to, count);
                                          if (n >= 0 || errno != EINTR) return static_cast<long>(n);
                                      }
                                  });
}
#endif

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

} // namespace velkor
