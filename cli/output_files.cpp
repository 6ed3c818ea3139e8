#include "cli/output_files.h"

#include "iff/build_chain.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"

#include <iostream>

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

int AssembleFiles(TIffCompiler& assembler, const Options& options) {
    bool writeFailed = false;
    BuildOutputs outputs;
    outputs.Place = [&options](const std::string& name) { return PlaceOutputFile(name, options.outDir); };
    outputs.Report = [](const std::string&, const std::filesystem::path& path, std::size_t size) {
        std::cout << WrittenFileLine(path, size) << std::endl;
    };
    outputs.Failed = [&writeFailed](const std::string& message) {
        PrintMessage(message);
        writeFailed = true;
    };
    const bool assemblerError = AssembleToFiles(assembler, outputs).has_value();
    if (writeFailed) return kExitUsage;
    return assemblerError ? kExitReported : kExitOk;
}

} // namespace velkor::cli
