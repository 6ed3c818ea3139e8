#include "ide/message_location.h"

#include "ide/ide_ini.h"
#include "platform/path_resolver.h"

#include <filesystem>

namespace velkor {

std::optional<TMessageLocation> ParseMessageLocation(const QString& line) {
    if (!line.startsWith(u'[')) return std::nullopt;
    const qsizetype close = line.indexOf(QStringLiteral("] "));
    if (close < 0) return std::nullopt;
    const qsizetype comma = line.lastIndexOf(QStringLiteral(", "), close);
    if (comma < 2) return std::nullopt; // no unit name
    bool number = false;
    const int at = line.mid(comma + 2, close - comma - 2).toInt(&number);
    if (!number || at < 1) return std::nullopt;
    return TMessageLocation{line.mid(1, comma - 1), at};
}

bool IsRaisedInLine(std::string_view line) {
    constexpr std::string_view kRaisedIn = "  raised in ";
    if (line.starts_with(kRaisedIn)) return true;
    if (!line.starts_with('[')) return false;
    const std::size_t close = line.find("] ");
    return close != std::string_view::npos && line.substr(close + 2).starts_with(kRaisedIn);
}

std::string FindUnitFile(const QString& unitName, const std::vector<std::string>& searchPath) {
    const std::string name = FromQ(unitName).append(".pas");
    if (unitName.isEmpty() || HasFolder(name)) return {};
    for (const std::string& folder : searchPath) {
        if (folder.empty()) continue;
        const auto file = FindExisting(name, ResolvePath(folder));
        std::error_code ec;
        if (file && std::filesystem::is_regular_file(*file, ec)) return file->string();
    }
    return {};
}

} // namespace velkor
