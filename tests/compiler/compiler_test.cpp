#include "iff/checksum.h"
#include "platform/numbers.h"
#include "tests/compiler/compile_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velkor {
namespace {

using test::CompileRun;

TEST(Finish, UnimplementedFunctionsAndObjectsAtTheirDeclarationLine) {
    CompileRun r("mission M;\r\n", false);
    TSymbol f;
    f.Name = "FLY";
    f.Text = "Fly";
    f.Kind = skUserFunction;
    f.Line = 7;
    r.compiler->Symbols().Add(f);
    TSymbol o = f;
    o.Name = "SHIP";
    o.Text = "Ship";
    o.Kind = skObject;
    o.Line = 9;
    r.compiler->Symbols().Add(o);
    r.compiler->Finish();
    EXPECT_TRUE(r.Has("[M, 7] ERROR: user function Fly not implemented")) << r.All();
    EXPECT_TRUE(r.Has("[M, 9] ERROR: object Ship not implemented"));
}

} // namespace
} // namespace velkor
