#include "cli/output_files.h"

#include "iff/build_chain.h"
#include "platform/exception.h"
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

OutputPolicy MakeOutputPolicy(const Options& options, const std::filesystem::path& source) {
    OutputPolicy policy;
    policy.AllowFolder(options.outDir.empty() ? std::filesystem::current_path()
                                              : ResolvePath(options.outDir));
    policy.AllowFolder(std::filesystem::absolute(source).parent_path());
    policy.AllowNamedFolders();
    policy.AllowAnywhere(options.allowOutputAnywhere);
    policy.ProtectInput(source);
    return policy;
}

std::string WrittenFileLine(const std::filesystem::path& path, std::size_t size) {
    return "** " + path.string() + " ** (" + FormatThousands(static_cast<std::int64_t>(size)) + " bytes)";
}

int AssembleFiles(TIffCompiler& assembler, const Options& options, const OutputPolicy& policy) {
    BuildOutputs outputs;
    outputs.Place = [&](const std::string& name) {
        std::filesystem::path path = PlaceOutputFile(name, options.outDir);
        policy.Check(path);
        return path;
    };
    outputs.Report = [](const std::string&, const std::filesystem::path& path, std::size_t size) {
        std::cout << WrittenFileLine(path, size) << std::endl;
    };
    try {
        return AssembleToFiles(assembler, outputs) ? kExitReported : kExitOk;
    } catch (const EInOutError& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }
}

} // namespace velkor::cli
