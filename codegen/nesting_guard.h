// Counts how deeply the recursive parsers of the code generator are nested, so that hostile input ends in
// "Expression too complex" instead of a stack overflow.
#pragma once

#include "codegen/codegen.h"

namespace velkor {

class NestingGuard {
public:
    // Reports "Expression too complex" when the nesting limit is passed; Ok() then tells the caller to
    // compile nothing further at this level.
    explicit NestingGuard(TCodeGen& codegen);
    ~NestingGuard() { --codegen_.nesting_; }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;

    bool Ok() const { return ok_; }

private:
    TCodeGen& codegen_; // whose nesting is counted
    bool ok_;           // still within the limit
};

} // namespace velkor
