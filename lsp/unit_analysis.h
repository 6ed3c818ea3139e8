// One compile of an open unit for the editor: every error, warning and hint in the file it belongs to,
// and the symbols the unit and its includes declare. The compile recovers from errors, so that a text
// being typed still yields what it declares; #FILE units are checked but nothing is written.
#pragma once

#include "compiler/compiler.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velkor {
class TSymbolTable;
struct TSymbol;
} // namespace velkor

namespace velkor::lsp {

enum class TSeverity { Error = 1, Warning = 2, Information = 3 };

struct TUnitDiagnostic {
    std::filesystem::path File; // where the message belongs
    int Line = 1;               // from 1, as the compiler counts
    TSeverity Severity = TSeverity::Error;
    std::string Message; // the compiler's text, without its "ERROR: " or "HINT: " prefix
};

// The editor's text of a file it holds open, else nothing.
using TOpenText = std::function<std::optional<std::string>(const std::filesystem::path&)>;

struct TAnalysisInput {
    std::filesystem::path File;           // the unit's file; empty for a text with no file
    std::string Name;                     // the name the compile records it under
    std::string Text;                     // the editor's text
    std::vector<std::string> SearchPaths; // after the unit's folder, before "$compiler$\lib"
    TOpenText OpenText;
};

struct TUnitAnalysis {
    std::shared_ptr<const TSymbolTable> Symbols;
    // Every file the compile read (the unit first), and the files behind the names symbols record.
    std::vector<std::filesystem::path> Files;
    std::map<std::string, std::filesystem::path> FileOfName;
    std::vector<TUnitDiagnostic> Diagnostics;
    std::shared_ptr<IncludedFileList> Included; // the string tables among them
    int ErrorCount = 0;

    // The file a symbol was declared in; empty when unknown.
    std::filesystem::path FileOf(const TSymbol& symbol) const;
    // The lines of the string table a kind-10 symbol names; none when it is not one.
    const std::vector<std::string>* StringTable(const TSymbol& symbol) const;
};

TUnitAnalysis AnalyseUnit(const TAnalysisInput& input);

// The path behind a file name the compile read, made absolute and clean, for comparing files.
std::filesystem::path CleanPath(const std::filesystem::path& path);

} // namespace velkor::lsp
