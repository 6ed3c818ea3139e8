// The listing writer and what the parts of the code generator share.
#include "codegen/codegen.h"

#include "codegen/nesting_guard.h"
#include "compiler/compiler.h"

#include <algorithm>

namespace velkor {

TCodeGen::TCodeGen(TCompiler& compiler) : compiler_(compiler) {}

void TCodeGen::EmitLine(std::string_view line) {
    if (line == "}" && indent_.size() >= 2) indent_.resize(indent_.size() - 2);
    compiler_.Data().CodeList.push_back(indent_, line);
    if (line == "{") indent_ += "  ";
}

void TCodeGen::EmitJoined(std::initializer_list<std::string_view> parts) {
    std::size_t size = 0;
    for (std::string_view part : parts) size += part.size();
    if (joined_.size() < size) joined_.resize(std::max(size, 2 * joined_.size()));
    char* at = joined_.data();
    for (std::string_view part : parts) at = std::copy(part.begin(), part.end(), at);
    EmitLine({joined_.data(), size});
}

void TCodeGen::InsertLine(std::size_t index, const std::string& line) {
    compiler_.Data().CodeList.insert(index, {line});
}

void TCodeGen::InsertLines(std::size_t index, const std::vector<std::string>& lines) {
    compiler_.Data().CodeList.insert(index, lines);
}

bool TCodeGen::ErrorSince(int errorCount) const {
    return compiler_.ErrorCount != errorCount;
}

NestingGuard::NestingGuard(TCodeGen& codegen) : codegen_(codegen) {
    // Counted only once within the limit: a constructor that throws has no destructor to undo the count.
    if (codegen.nesting_ >= TCodeGen::kMaxNesting) {
        codegen.compiler_.Error("Expression too complex");
        throw ENestingAbandoned();
    }
    ++codegen_.nesting_;
}

} // namespace velkor
