#include "platform/text_file.h"

#include "platform/exception.h"

#include <cstdio>
#include <fstream>
#include <system_error>

namespace velkor {

std::string NormaliseLineBreaks(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 32);
    size_t copied = 0;
    for (size_t i = text.find_first_of("\r\n"); i != std::string_view::npos; i = text.find_first_of("\r\n", i)) {
        out.append(text, copied, i - copied);
        out += "\r\n";
        i += (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ? 2 : 1;
        copied = i;
    }
    out.append(text, copied, text.size() - copied);
    return out;
}

namespace {
template <typename Container>
Container ReadAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::error_code ec;
    if (!in || std::filesystem::is_directory(path, ec))
        throw EInOutError("Cannot open file \"" + path.string() + "\"");
    Container data;
    char buf[65536];
    while (in.read(buf, sizeof buf) || in.gcount() > 0)
        data.insert(data.end(), buf, buf + in.gcount());
    if (in.bad()) throw EInOutError("Cannot read file \"" + path.string() + "\"");
    return data;
}
} // namespace

std::string LoadTextFile(const std::filesystem::path& path) {
    return NormaliseLineBreaks(ReadAll<std::string>(path));
}

std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& path) {
    return ReadAll<std::vector<std::uint8_t>>(path);
}

void WriteFileAtomic(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
    std::filesystem::path tmp = path;
    tmp += ".velkor-tmp";
    {
        std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
        if (!out) throw EInOutError("Cannot create file \"" + path.string() + "\"");
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            out.close();
            std::error_code ec;
            std::filesystem::remove(tmp, ec);
            throw EInOutError("Cannot write file \"" + path.string() + "\"");
        }
    }
    std::error_code ec;
    std::filesystem::rename(tmp, path, ec);
    if (ec) {
        std::filesystem::remove(tmp, ec);
        throw EInOutError("Cannot write file \"" + path.string() + "\"");
    }
}

void WriteFileAtomic(const std::filesystem::path& path, std::string_view text) {
    WriteFileAtomic(path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

} // namespace velkor
