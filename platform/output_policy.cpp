#include "platform/output_policy.h"

#include "platform/exception.h"
#include "platform/named_folders.h"
#include "platform/path_resolver.h"

#include <algorithm>
#include <system_error>

namespace fs = std::filesystem;

namespace velkor {

namespace {

constexpr int kMaxLinks = 40;

fs::path Canonical(const fs::path& path) {
    std::error_code ec;
    fs::path absolute = fs::absolute(path, ec);
    if (ec) absolute = path;
    fs::path canonical = fs::weakly_canonical(absolute, ec);
    return (ec ? absolute : canonical).lexically_normal();
}

// Component by component, so that "/a/bc" is not taken to lie inside "/a/b".
bool IsInside(const fs::path& file, const fs::path& folder) {
    auto f = file.begin();
    for (auto d = folder.begin(); d != folder.end(); ++d, ++f) {
        if (d->empty()) continue; // a trailing separator
        if (f == file.end() || *f != *d) return false;
    }
    return true;
}

} // namespace

fs::path WriteTargetOf(const fs::path& path) {
    fs::path p = path;
    for (int hops = 0; hops < kMaxLinks; ++hops) {
        std::error_code ec;
        if (!fs::is_symlink(fs::symlink_status(p, ec))) break;
        const fs::path to = fs::read_symlink(p, ec);
        if (ec) break;
        p = to.is_absolute() ? to : p.parent_path() / to;
    }
    return Canonical(p);
}

bool IsSameFile(const fs::path& a, const fs::path& b) {
    std::error_code ec;
    return fs::equivalent(a, b, ec) && !ec;
}

void OutputPolicy::AllowFolder(const fs::path& folder) {
    folders_.push_back(Canonical(folder.empty() ? fs::path(".") : folder));
}

void OutputPolicy::AllowNamedFolders() {
    for (const NamedFolder& named : NamedFolders())
        if (!named.folder.empty()) AllowFolder(ResolvePath(named.folder));
}

void OutputPolicy::ProtectInput(const fs::path& file) {
    std::error_code ec;
    if (fs::exists(file, ec)) inputs_.push_back(file);
}

void OutputPolicy::CheckNotInput(const fs::path& path) const {
    for (const fs::path& input : inputs_)
        if (IsSameFile(path, input))
            throw EInOutError("Cannot write file \"" + path.string() + "\": it is an input of this run");
}

void OutputPolicy::Check(const fs::path& path) const {
    CheckNotInput(path);
    if (anywhere_) return;
    const fs::path target = WriteTargetOf(path);
    if (std::any_of(folders_.begin(), folders_.end(),
                    [&](const fs::path& folder) { return IsInside(target, folder); }))
        return;
    throw EInOutError("Cannot write file \"" + target.string() +
                      "\": it lies outside the output folder, the source's folder and the named folders (" +
                      howToAllow_ + ")");
}

} // namespace velkor
