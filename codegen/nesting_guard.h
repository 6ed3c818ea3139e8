// Counts how deeply the recursive parsers of the code generator are nested, so that hostile input ends in
// "Expression too complex" instead of a stack overflow.
#pragma once

#include "codegen/codegen.h"
#include "platform/exception.h"

namespace velkor {

// Thrown after "Expression too complex" was reported and recovery goes on: it unwinds the whole nesting at
// once, up to the function body's statement list, instead of letting every level report what it misses.
class ENestingAbandoned : public Exception {
public:
    ENestingAbandoned() : Exception("Expression too complex") {}
};

class NestingGuard {
public:
    // Reports "Expression too complex" when the nesting limit is passed (ECompiler when halting, else
    // ENestingAbandoned).
    explicit NestingGuard(TCodeGen& codegen);
    ~NestingGuard() { --codegen_.nesting_; }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;

private:
    TCodeGen& codegen_; // whose nesting is counted
};

} // namespace velkor
