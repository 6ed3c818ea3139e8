#include "lsp/unit_analysis.h"

#include "compiler/source_host.h"
#include "compiler/symbol_table.h"
#include "iff/iff_strings.h"
#include "platform/text_file.h"

#include <charconv>
#include <string_view>

namespace velkor::lsp {

namespace {

constexpr std::string_view kPrefixes[] = {"ERROR: ", "WARNING: ", "HINT: "};
constexpr TSeverity kSeverities[] = {TSeverity::Error, TSeverity::Warning, TSeverity::Information};

// Follows the nested compiles, so that each message is put in the file it came from.
class TAnalysisHost : public TSourceHost {
public:
    TAnalysisHost(TUnitAnalysis& result, const TOpenText& openText, std::filesystem::path unit)
        : result_(result), openText_(openText), unit_(std::move(unit)) {}

    std::optional<std::string> SourceText(const std::filesystem::path& file) override {
        return openText_ ? openText_(CleanPath(file)) : std::nullopt;
    }
    void Entered(const std::filesystem::path& file, const std::string& fileName) override {
        const std::filesystem::path clean = CleanPath(file);
        stack_.push_back(clean);
        result_.FileOfName.emplace(fileName, clean);
        bool known = false;
        for (const auto& f : result_.Files) known = known || f == clean;
        if (!known) result_.Files.push_back(clean);
    }
    void Left() override {
        if (!stack_.empty()) stack_.pop_back();
    }
    const std::filesystem::path& Current() const { return stack_.empty() ? unit_ : stack_.back(); }

    // "[<unit>, <line>] <text>": the errors, warnings and hints become diagnostics.
    void Message(const std::string& line) {
        if (line.empty() || line[0] != '[') return;
        const std::size_t close = line.find("] ");
        if (close == std::string::npos) return;
        const std::size_t comma = line.rfind(", ", close);
        if (comma == std::string::npos) return;
        int number = 0;
        const char* from = line.data() + comma + 2;
        const char* to = line.data() + close;
        if (std::from_chars(from, to, number).ptr != to) return;
        const std::string_view text = std::string_view(line).substr(close + 2);
        for (std::size_t k = 0; k < std::size(kPrefixes); ++k) {
            if (text.substr(0, kPrefixes[k].size()) != kPrefixes[k]) continue;
            result_.Diagnostics.push_back(
                {Current(), number, kSeverities[k], std::string(text.substr(kPrefixes[k].size()))});
            return;
        }
    }

private:
    TUnitAnalysis& result_;
    const TOpenText& openText_;
    std::filesystem::path unit_;
    std::vector<std::filesystem::path> stack_; // the files of the nested compiles now running
};

} // namespace

std::filesystem::path CleanPath(const std::filesystem::path& path) {
    if (path.empty()) return path;
    std::error_code ec;
    std::filesystem::path clean = std::filesystem::weakly_canonical(std::filesystem::absolute(path, ec), ec);
    return ec ? std::filesystem::absolute(path, ec).lexically_normal() : clean;
}

std::filesystem::path TUnitAnalysis::FileOf(const TSymbol& symbol) const {
    const auto it = FileOfName.find(FileNameOf(symbol.FileNumber));
    return it == FileOfName.end() ? std::filesystem::path() : it->second;
}

const std::vector<std::string>* TUnitAnalysis::StringTable(const TSymbol& symbol) const {
    if (symbol.Kind != skStringTable || !Included) return nullptr;
    for (const auto& f : *Included)
        if (f.Strings && ShortString(f.Name) == symbol.Name) return &f.Strings->Lines;
    return nullptr;
}

TUnitAnalysis AnalyseUnit(const TAnalysisInput& input) {
    TUnitAnalysis result;
    const std::filesystem::path unit = CleanPath(input.File);
    if (!unit.empty()) result.Files.push_back(unit);
    result.FileOfName.emplace(input.Name, unit);
    TAnalysisHost host(result, input.OpenText, unit);

    TCompiler c;
    c.OnOutput = [&host](const std::string& line) { host.Message(line); };
    c.Verbosity = 0;
    c.HaltOnError = false;
    c.Optimize = false;
    c.CheckOnly = true;
    c.SourceHost = &host;
    try {
        c.SetSource(NormaliseLineBreaks(input.Text));
        if (!unit.empty()) c.AddToSearchPath(unit.parent_path().string());
        for (const auto& folder : input.SearchPaths) c.AddToSearchPath(folder);
        c.AddToSearchPath("$compiler$\\lib");
        c.SetFileName(input.Name);
        c.Compile();
        c.Finish();
    } catch (const ECompiler&) {
        // Reported through the messages already.
    } catch (const std::exception& e) {
        result.Diagnostics.push_back({unit, c.ErrorLine > 0 ? c.ErrorLine : 1, TSeverity::Error, e.what()});
    }
    result.ErrorCount = c.ErrorCount;
    result.Symbols = std::make_shared<const TSymbolTable>(c.Symbols());
    result.Included = c.IncludedFiles;
    return result;
}

} // namespace velkor::lsp
