// Included source and string files, #FILE compilations, the search path and the output path.
// Placeholder until file handling lands.
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"

namespace velkor {

void TCompiler::AddToSearchPath(const std::string& folder) { SearchPath.push_back(folder); }

void TCompiler::SetOutputPath(const std::string& folder) { OutputPath = folder; }

void TCompiler::IncludeSourceFiles() { Error("include is not available yet"); }

void TCompiler::IncludeStringFiles() { Error("#STRINGS is not available yet"); }

void TCompiler::CompileFiles() { Error("#FILE is not available yet"); }

std::int32_t TCompiler::StringNumber(const TSymbol& table, const std::string& text) {
    Error(text + " was not found in \"" + table.Name +
          "\" and adding strings is not supported and this message is pretty long");
    return -1;
}

} // namespace velkor
