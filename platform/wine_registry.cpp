#include "platform/wine_registry.h"

#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"
#include "platform/user_folders.h"

#include <cstdint>
#include <filesystem>
#include <system_error>
#include <unordered_set>

namespace fs = std::filesystem;

namespace velkor {

namespace {

constexpr std::string_view kSoftware = "Software\\";
constexpr std::string_view kWow64Software = "Software\\Wow6432Node\\";
constexpr std::string_view kInstalledTo = "Installed To:";
// A real system.reg is a few megabytes; anything far beyond that is not one.
constexpr std::uintmax_t kMaxRegistryFileSize = 256u << 20;

void AppendUtf8(std::string& out, std::uint32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

// Collects UTF-16 code units from escapes and raw bytes from the text, pairing surrogates; a surrogate
// without its partner becomes U+FFFD.
class Utf16Decoder {
public:
    explicit Utf16Decoder(std::string& out) : out_(out) {}
    ~Utf16Decoder() { Flush(); }
    Utf16Decoder(const Utf16Decoder&) = delete;
    Utf16Decoder& operator=(const Utf16Decoder&) = delete;

    void Unit(std::uint32_t unit) {
        if (unit >= 0xDC00 && unit <= 0xDFFF && high_) {
            AppendUtf8(out_, 0x10000 + ((high_ - 0xD800) << 10) + (unit - 0xDC00));
            high_ = 0;
            return;
        }
        Flush();
        if (unit >= 0xD800 && unit <= 0xDBFF)
            high_ = unit;
        else if (unit >= 0xDC00 && unit <= 0xDFFF)
            AppendUtf8(out_, 0xFFFD);
        else
            AppendUtf8(out_, unit);
    }
    void Byte(char c) {
        Flush();
        out_ += c;
    }

private:
    void Flush() {
        if (high_) AppendUtf8(out_, 0xFFFD);
        high_ = 0;
    }
    std::string& out_;       // where the decoded text goes
    std::uint32_t high_ = 0; // a high surrogate waiting for its low half, or 0
};

int DigitValue(char c, int base) {
    int v = -1;
    if (c >= '0' && c <= '9')
        v = c - '0';
    else if (c >= 'a' && c <= 'f')
        v = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F')
        v = c - 'A' + 10;
    return v < base ? v : -1;
}

// Decodes the escaped text from `pos` up to the unescaped `close` into `out`; returns the position after
// `close`, or npos when the text ends first.
size_t DecodeRegString(std::string_view text, size_t pos, char close, std::string& out) {
    Utf16Decoder decoder(out);
    while (pos < text.size()) {
        char c = text[pos++];
        if (c == close) return pos;
        if (c != '\\') {
            decoder.Byte(c);
            continue;
        }
        if (pos >= text.size()) return std::string_view::npos;
        char e = text[pos++];
        switch (e) {
        case 'a': decoder.Unit(7); break;
        case 'b': decoder.Unit(8); break;
        case 't': decoder.Unit(9); break;
        case 'n': decoder.Unit(10); break;
        case 'v': decoder.Unit(11); break;
        case 'f': decoder.Unit(12); break;
        case 'r': decoder.Unit(13); break;
        case 'e': decoder.Unit(27); break;
        case 'x': {
            std::uint32_t unit = 0;
            int digits = 0;
            for (; digits < 4 && pos < text.size() && DigitValue(text[pos], 16) >= 0; ++digits, ++pos)
                unit = unit * 16 + static_cast<std::uint32_t>(DigitValue(text[pos], 16));
            if (digits == 0)
                decoder.Byte('x');
            else
                decoder.Unit(unit);
            break;
        }
        default:
            if (DigitValue(e, 8) >= 0) {
                std::uint32_t unit = static_cast<std::uint32_t>(DigitValue(e, 8));
                for (int digits = 1; digits < 3 && pos < text.size() && DigitValue(text[pos], 8) >= 0;
                     ++digits, ++pos)
                    unit = unit * 8 + static_cast<std::uint32_t>(DigitValue(text[pos], 8));
                decoder.Unit(unit);
            } else {
                decoder.Byte(e);
            }
        }
    }
    return std::string_view::npos;
}

// Calls `onLine` for every line of the text, without its line break.
template <typename OnLine>
void ForEachLine(std::string_view text, OnLine&& onLine) {
    size_t pos = 0;
    while (pos < text.size()) {
        size_t eol = text.find('\n', pos);
        if (eol == std::string_view::npos) eol = text.size();
        std::string_view line = text.substr(pos, eol - pos);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        onLine(line);
        pos = eol + 1;
    }
}

// The key path of a "[...]" header line, normalised; nothing when the line is no header.
std::optional<std::string> HeaderKey(std::string_view line) {
    if (line.empty() || line.front() != '[') return std::nullopt;
    std::string name;
    if (DecodeRegString(line, 1, ']', name) == std::string_view::npos) return std::string();
    return NormaliseKeyPath(name);
}

// A string value line ("name"="text", @="text" or "name"=str(N):"text").
std::optional<RegistryValue> ValueLine(std::string_view line) {
    RegistryValue value;
    size_t pos = 0;
    if (line.starts_with('@')) {
        pos = 1;
    } else if (line.starts_with('"')) {
        pos = DecodeRegString(line, 1, '"', value.name);
        if (pos == std::string_view::npos) return std::nullopt;
    } else {
        return std::nullopt;
    }
    if (pos >= line.size() || line[pos] != '=') return std::nullopt;
    std::string_view data = line.substr(pos + 1);
    if (data.starts_with("str(")) {
        size_t colon = data.find("):");
        if (colon == std::string_view::npos) return std::nullopt;
        data.remove_prefix(colon + 2);
    }
    if (!data.starts_with('"')) return std::nullopt;
    if (DecodeRegString(data, 1, '"', value.data) == std::string_view::npos) return std::nullopt;
    return value;
}

std::string SystemRegText() {
    fs::path prefix = WinePrefix();
    if (prefix.empty()) return {};
    fs::path file = prefix / "system.reg";
    std::error_code ec;
    if (!fs::is_regular_file(file, ec) || fs::file_size(file, ec) > kMaxRegistryFileSize || ec) return {};
    try {
        return LoadTextFile(file);
    } catch (const EInOutError&) {
        return {};
    }
}

// The key paths that may hold `key` in the prefix; none for keys this registry does not serve.
std::vector<std::string> Layouts(std::string_view key) {
    if (!IsKeyAtOrBelow(key, WineRegistry::kServedKey)) return {};
    std::string path = NormaliseKeyPath(key);
    return {path, std::string(kWow64Software) + path.substr(kSoftware.size())};
}

// A Windows path with a drive letter, as the folder it names in the prefix.
std::string PathInPrefix(const std::string& windowsPath) {
    char drive = windowsPath.empty() ? '\0' : static_cast<char>(windowsPath[0] | 0x20);
    if (windowsPath.size() < 2 || windowsPath[1] != ':' || drive < 'a' || drive > 'z') return windowsPath;
    if (auto found = FindExisting(windowsPath)) return found->string();
    return ToNativePath(windowsPath).string();
}

} // namespace

std::optional<std::vector<RegistryValue>> WineKeyValues(std::string_view regText, std::string_view key) {
    std::string target = NormaliseKeyPath(key);
    std::vector<RegistryValue> values;
    std::unordered_set<std::string> seen;
    bool found = false;
    bool inKey = false;
    ForEachLine(regText, [&](std::string_view line) {
        if (auto header = HeaderKey(line)) {
            inKey = SameText(*header, target);
            found = found || inKey;
        } else if (inKey) {
            if (auto value = ValueLine(line); value && seen.insert(UpperCase(value->name)).second)
                values.push_back(std::move(*value));
        }
    });
    if (!found) return std::nullopt;
    return values;
}

bool WineKeyExists(std::string_view regText, std::string_view key) {
    bool found = false;
    ForEachLine(regText, [&](std::string_view line) {
        if (found) return;
        if (auto header = HeaderKey(line); header && IsKeyAtOrBelow(*header, key)) found = true;
    });
    return found;
}

std::vector<RegistryValue> WineRegistry::Values(std::string_view key) const {
    std::vector<RegistryValue> values;
    auto layouts = Layouts(key);
    if (layouts.empty()) return values;
    std::string text = SystemRegText();
    std::unordered_set<std::string> seen;
    for (const auto& layout : layouts) {
        auto found = WineKeyValues(text, layout);
        if (!found) continue;
        for (auto& value : *found)
            if (seen.insert(UpperCase(value.name)).second) values.push_back(std::move(value));
    }
    return values;
}

bool WineRegistry::KeyExists(std::string_view key) const {
    auto layouts = Layouts(key);
    if (layouts.empty()) return false;
    std::string text = SystemRegText();
    for (const auto& layout : layouts)
        if (WineKeyExists(text, layout)) return true;
    return false;
}

bool WineRegistry::OpenKey(std::string_view key, bool /*canCreate*/) {
    return KeyExists(key);
}

std::vector<std::string> WineRegistry::ValueNames(std::string_view key) const {
    std::vector<std::string> names;
    for (auto& value : Values(key)) names.push_back(std::move(value.name));
    return names;
}

std::optional<std::string> WineRegistry::ReadString(std::string_view key, std::string_view name) const {
    for (auto& value : Values(key)) {
        if (!SameText(value.name, name)) continue;
        return SameText(name, kInstalledTo) ? PathInPrefix(value.data) : std::move(value.data);
    }
    return std::nullopt;
}

void WineRegistry::WriteString(std::string_view key, std::string_view, std::string_view) {
    throw ERegistry("Registry: The Wine registry is read-only: " + std::string(key));
}

bool WineRegistry::DeleteValue(std::string_view key, std::string_view) {
    throw ERegistry("Registry: The Wine registry is read-only: " + std::string(key));
}

bool WineRegistry::DeleteKey(std::string_view key) {
    throw ERegistry("Registry: The Wine registry is read-only: " + std::string(key));
}

} // namespace velkor
