#include "cli/output_files.h"

#include "platform/numbers.h"
#include "platform/path_resolver.h"

namespace velkor::cli {

std::filesystem::path PlaceOutputFile(std::string_view name, const std::string& outDir) {
    if (HasFolder(name) || outDir.empty()) return ResolvePath(name);
    std::filesystem::path folder = ResolvePath(outDir);
    std::error_code ec;
    if (!std::filesystem::exists(folder, ec)) std::filesystem::create_directories(folder, ec);
    return ResolvePath(name, folder);
}

std::string WrittenFileLine(const std::filesystem::path& path, std::size_t size) {
    return "** " + path.string() + " ** (" + FormatThousands(static_cast<std::int64_t>(size)) + " bytes)";
}

} // namespace velkor::cli
