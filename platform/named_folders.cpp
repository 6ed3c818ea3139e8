#include "platform/named_folders.h"

#include "platform/executable_path.h"
#include "platform/registry.h"
#include "platform/strings.h"

#include <mutex>
#include <optional>

namespace velkor {

namespace {

constexpr std::string_view kUserFoldersKey = "\\Software\\velkor";
constexpr std::string_view kProphecyKey = "\\Software\\Origin Systems\\Wing Commander Prophecy";
constexpr std::string_view kSecretOpsKey = "\\Software\\Origin Systems\\Wing Commander Secret Ops";
constexpr std::string_view kInstalledTo = "Installed To:";

std::string WithoutTrailingSeparators(std::string_view folder) {
    while (!folder.empty() && (folder.back() == '\\' || folder.back() == '/')) folder.remove_suffix(1);
    return std::string(folder);
}

std::string GameFolder(std::string_view key) {
    auto folder = MachineRegistry().ReadString(key, kInstalledTo);
    return folder ? WithoutTrailingSeparators(*folder) : std::string();
}

std::vector<NamedFolder> BuildTable() {
    std::vector<NamedFolder> table;
    Registry& registry = MachineRegistry();
    if (registry.OpenKey(kUserFoldersKey, false)) {
        for (auto& name : registry.ValueNames(kUserFoldersKey)) {
            std::string folder =
                WithoutTrailingSeparators(registry.ReadString(kUserFoldersKey, name).value_or(""));
            table.push_back({std::move(name), std::move(folder)});
        }
    }
    if (std::string folder = GameFolderSecretOps(); !folder.empty())
        table.push_back({"wcso", std::move(folder)});
    if (std::string folder = GameFolderProphecy(); !folder.empty())
        table.push_back({"wcp", std::move(folder)});
    table.push_back({"compiler", WithoutTrailingSeparators(ExecutableFolder())});
    return table;
}

class NamedFolderTable {
public:
    // Runs `use` on the table under the lock, building the table first when needed.
    template <typename Use>
    auto With(Use&& use) {
        std::lock_guard lock(mutex_);
        if (!table_) table_ = BuildTable();
        return use(*table_);
    }
    void Reset() {
        std::lock_guard lock(mutex_);
        table_.reset();
    }

private:
    std::mutex mutex_;                              // guards the table
    std::optional<std::vector<NamedFolder>> table_; // the pairs in lookup order; empty until first use
};

NamedFolderTable& Table() {
    static NamedFolderTable table;
    return table;
}

} // namespace

std::string GameFolderProphecy() {
    return GameFolder(kProphecyKey);
}

std::string GameFolderSecretOps() {
    return GameFolder(kSecretOpsKey);
}

std::vector<NamedFolder> NamedFolders() {
    return Table().With([](const std::vector<NamedFolder>& table) { return table; });
}

void AddNamedFolder(std::string_view name, std::string_view folder) {
    Table().With([&](std::vector<NamedFolder>& table) {
        table.insert(table.begin(), {std::string(name), WithoutTrailingSeparators(folder)});
    });
}

std::string ExpandPath(std::string_view path) {
    return Table().With([&](const std::vector<NamedFolder>& table) {
        std::string result(path);
        for (const auto& pair : table) {
            std::string token;
            token.reserve(pair.name.size() + 2);
            token += '$';
            token += pair.name;
            token += '$';
            result = ReplaceAllNoCase(result, token, pair.folder);
        }
        return LowerCase(result);
    });
}

void ResetNamedFoldersForTesting() {
    Table().Reset();
}

} // namespace velkor
