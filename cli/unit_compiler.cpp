#include "cli/unit_compiler.h"

#include "cli/output_files.h"
#include "compiler/compiler.h"
#include "platform/exception.h"
#include "platform/path_resolver.h"
#include "platform/text_file.h"
#include "scanner/scanner.h"

namespace velkor::cli {

UnitCompiler PrepareUnitCompiler(const Options& options, bool symbolsOnly) {
    SetScannerClass(options.fastScanner ? ScannerClass::Fast : ScannerClass::Standard);
    const std::string& unit = options.files.front();
    auto found = FindExisting(unit);
    std::string source = LoadTextFile(found ? *found : ToNativePath(unit));

    UnitCompiler run;
    run.folder = std::filesystem::absolute(*found).parent_path();
    run.policy = MakeOutputPolicy(options, *found);
    run.compiler = std::make_unique<TCompiler>();
    TCompiler& c = *run.compiler;
    c.Verbosity = static_cast<std::uint8_t>(options.verbosity);
    c.HaltOnError = !options.noHalt;
    c.Optimize = options.optimize;
    c.SymbolsOnly = symbolsOnly;
    c.OnOutput = PrintMessage;
    const std::string outDir = options.outDir;
    c.PlaceOutputFile = [outDir, policy = run.policy](const std::string& name) {
        std::filesystem::path path = PlaceOutputFile(name, outDir);
        policy.Check(path);
        return path;
    };
    c.SetSource(std::move(source));
    c.AddToSearchPath(run.folder.string());
    for (const auto& folder : options.searchPaths) c.AddToSearchPath(folder);
    c.AddToSearchPath("$compiler$\\lib");
    c.SetFileName(unit);
    return run;
}

namespace {

template <class Linked>
std::optional<Linked> CompileAndLinkWith(TCompiler& compiler, Linked (*link)(TCompiler&)) {
    try {
        compiler.Compile();
        compiler.Finish();
        return link(compiler);
    } catch (const ECompiler&) {
        return std::nullopt;
    } catch (const Exception& e) {
        PrintMessage(e.what());
        return std::nullopt;
    }
}

std::string LinkWhole(TCompiler& compiler) {
    return compiler.Link();
}

} // namespace

std::optional<std::string> CompileAndLink(TCompiler& compiler) {
    return CompileAndLinkWith(compiler, LinkWhole);
}

std::optional<TBuildText> CompileAndLinkForBuild(TCompiler& compiler) {
    return CompileAndLinkWith(compiler, LinkForBuild);
}

} // namespace velkor::cli
