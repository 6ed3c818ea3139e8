#include "platform/path_resolver.h"

#include "platform/strings.h"
#include "platform/user_folders.h"

#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace velkor {

namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

bool HasDriveLetter(std::string_view p) {
    return p.size() >= 2 && p[1] == ':' && ((p[0] >= 'A' && p[0] <= 'Z') || (p[0] >= 'a' && p[0] <= 'z'));
}

fs::path DriveRoot(char letter) {
#ifdef _WIN32
    // The drives are the system's own.
    return fs::path(std::string(1, letter) + ":\\");
#else
    const char lower = static_cast<char>(letter | 0x20);
    const fs::path prefix = WinePrefix();
    if (prefix.empty()) return {};
    std::error_code ec;
    fs::path device = prefix / "dosdevices" / (std::string(1, lower) + ":");
    if (fs::exists(device, ec)) return device;
    if (lower == 'c' && fs::exists(prefix / "drive_c", ec)) return prefix / "drive_c";
    return device;
#endif
}

std::vector<std::string> Components(std::string_view p) {
    std::vector<std::string> parts;
    std::string cur;
    for (char c : p) {
        if (IsSeparator(c)) {
            if (!cur.empty()) parts.push_back(std::move(cur));
            cur.clear();
        } else {
            cur += c;
        }
    }
    if (!cur.empty()) parts.push_back(std::move(cur));
    return parts;
}

// The start folder and the components below it.
fs::path Anchor(std::string_view path, const fs::path& base, std::vector<std::string>& parts) {
    if (HasDriveLetter(path)) {
        parts = Components(path.substr(2));
        return DriveRoot(path[0]);
    }
    parts = Components(path);
    if (!path.empty() && IsSeparator(path[0])) return fs::path("/");
    return base.empty() ? fs::path(".") : base;
}

// The entry of `dir` named `name` ignoring case, if any.
std::optional<fs::path> MatchInFolder(const fs::path& dir, const std::string& name) {
    std::error_code ec;
    fs::path exact = dir / name;
    if (fs::exists(exact, ec)) return exact;
    if (name == "." || name == "..") return std::nullopt;
    fs::directory_iterator it(dir, ec);
    if (ec) return std::nullopt;
    for (; it != fs::directory_iterator(); it.increment(ec)) {
        if (ec) break;
        if (SameText(it->path().filename().string(), name)) return it->path();
    }
    return std::nullopt;
}

// Walks the components; returns the matched path and how many components matched.
fs::path Walk(const fs::path& anchor, const std::vector<std::string>& parts, size_t& matched) {
    fs::path cur = anchor;
    matched = 0;
    std::error_code ec;
    if (cur.empty() || !fs::exists(cur, ec)) return cur;
    for (const auto& part : parts) {
        auto next = MatchInFolder(cur, part);
        if (!next) break;
        cur = *next;
        ++matched;
    }
    return cur;
}

fs::path Tidy(const fs::path& p) {
    std::string s = p.lexically_normal().string();
    if (s.size() > 2 && s[0] == '.' &&
        (s[1] == '/' || s[1] == static_cast<char>(fs::path::preferred_separator)))
        s.erase(0, 2);
    return s;
}

} // namespace

bool HasFolder(std::string_view path) {
    return HasDriveLetter(path) || path.find_first_of("\\/") != std::string_view::npos;
}

std::string FileNamePart(std::string_view path) {
    size_t cut = path.find_last_of("\\/:");
    return std::string(cut == std::string_view::npos ? path : path.substr(cut + 1));
}

std::string FolderPart(std::string_view path) {
    size_t cut = path.find_last_of("\\/:");
    return cut == std::string_view::npos ? std::string() : std::string(path.substr(0, cut + 1));
}

bool IsAbsoluteGamePath(std::string_view path) {
    return HasDriveLetter(path) || (!path.empty() && IsSeparator(path[0]));
}

fs::path ToNativePath(std::string_view path) {
    std::vector<std::string> parts;
    fs::path anchor = Anchor(path, {}, parts);
    fs::path out = (HasDriveLetter(path) || (!path.empty() && IsSeparator(path[0]))) ? anchor : fs::path();
    for (const auto& p : parts) out /= p;
    return out;
}

std::optional<fs::path> FindExisting(std::string_view path, const fs::path& base) {
    if (path.empty()) return std::nullopt;
    std::vector<std::string> parts;
    fs::path anchor = Anchor(path, base, parts);
    size_t matched = 0;
    fs::path found = Walk(anchor, parts, matched);
    std::error_code ec;
    if (matched != parts.size() || !fs::exists(found, ec)) return std::nullopt;
    return Tidy(found);
}

bool IsRegularFile(const fs::path& path) {
    std::error_code ec;
    return fs::is_regular_file(path, ec);
}

std::optional<fs::path> FindExistingFile(std::string_view path, const fs::path& base) {
    auto found = FindExisting(path, base);
    if (!found || !IsRegularFile(*found)) return std::nullopt;
    return found;
}

fs::path ResolvePath(std::string_view path, const fs::path& base) {
    std::vector<std::string> parts;
    fs::path anchor = Anchor(path, base, parts);
    size_t matched = 0;
    fs::path out = Walk(anchor, parts, matched);
    for (size_t i = matched; i < parts.size(); ++i) out /= parts[i];
    return Tidy(out);
}

} // namespace velkor
