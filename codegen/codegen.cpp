// The listing writer, and placeholders for the code generator's entry points until it lands.
#include "codegen/codegen.h"

#include "compiler/compiler.h"

namespace velkor {

TCodeGen::TCodeGen(TCompiler& compiler) : compiler_(compiler) {}

void TCodeGen::EmitLine(const std::string& line) {
    if (line == "}" && indent_.size() >= 2) indent_.resize(indent_.size() - 2);
    compiler_.Data().CodeList.push_back(indent_ + line);
    if (line == "{") indent_ += "  ";
}

void TCodeGen::InsertLine(std::size_t index, const std::string& line) {
    auto& code = compiler_.Data().CodeList;
    code.insert(code.begin() + static_cast<std::ptrdiff_t>(std::min(index, code.size())), line);
}

void TCodeGen::CompileFunctionDeclaration() { compiler_.Error("function is not available yet"); }
void TCodeGen::CompileObject() { compiler_.Error("object is not available yet"); }
void TCodeGen::CompileObjective() { compiler_.Error("objective is not available yet"); }
void TCodeGen::CompileNameCommand() { compiler_.Error("NAME is not available yet"); }

} // namespace velkor
