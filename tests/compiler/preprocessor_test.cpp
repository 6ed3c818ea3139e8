#include "compiler/defines.h"
#include "platform/named_folders.h"
#include "platform/strings.h"
#include "scanner/scanner.h"
#include "tests/compiler/compile_run.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

namespace velkor {
namespace {

using test::CompileRun;

TEST(Conditionals, DefinesCountDefinitionsWhateverTheCase) {
    TDefines defines{"VER122"};
    defines.Remove("never");
    defines.Add("Debug");
    defines.Add("DEBUG");
    defines.Add("trace");
    EXPECT_EQ(defines.Names(), (StringList{"VER122", "Debug", "Debug", "trace"}));
    defines.Remove("debug");
    EXPECT_TRUE(defines.Contains("dEbUg"));
    defines.Remove("Debug");
    EXPECT_FALSE(defines.Contains("DEBUG"));
    defines.Remove("DEBUG"); // no count below nothing: a later define stands again
    defines.Add("debug");
    EXPECT_TRUE(defines.Contains("Debug"));
    EXPECT_EQ(defines.Names(), (StringList{"VER122", "Debug", "trace"}));
}

TEST(Conditionals, UnterminatedBlockEndsAtTheEndOfText) {
    for (bool fast : {false, true}) {
        SetScannerClass(fast ? ScannerClass::Fast : ScannerClass::Standard);
        CompileRun r("unit U;\r\n#IFDEF NOPE\r\nvar a;\r\n", false);
        CompileRun e("unit U;\r\n#ELSE\r\nvar a;", false);
        EXPECT_FALSE(r.Symbol("a"));
        EXPECT_FALSE(e.Symbol("a"));
    }
    SetScannerClass(ScannerClass::Standard);
}

TEST(Commands, SearchPathOutputPathAndPathConstants) {
    test::TempDir dir;
    std::filesystem::create_directories(dir / "Sub");
    const std::string root = dir.path().string();
    const std::string src = "unit U;\r\n#ADDTOSEARCHPATH(\"" + root + "/nowhere\");\r\n#SETOUTPUTPATH(\"" +
                            root + "/Out\");\r\n#ADDPATHCONSTANT(\"Mine\", \"" + root +
                            "\");\r\n#ADDTOSEARCHPATH(\"$MINE$/sub\");\r\n" +
                            "#ADDPATHCONSTANT(\"gone\", \"" + root + "/gone\");\r\n";
    CompileRun r(src, false);
    const std::string lower = LowerCase(root);
    EXPECT_TRUE(r.Has("[U, 2] HINT: " + lower + "/nowhere\\ doesn't exist")) << r.All();
    EXPECT_TRUE(r.Has("[U, 2] " + lower + "/nowhere\\ added to searchpath"));
    EXPECT_TRUE(r.Has("[U, 3] output path set to " + lower + "/out\\"));
    EXPECT_EQ(r.compiler->OutputPath, lower + "/out\\");
    EXPECT_TRUE(r.Has("[U, 5] " + lower + "/sub\\ added to searchpath"));
    EXPECT_FALSE(r.Has("[U, 5] HINT: " + lower + "/sub\\ doesn't exist"));
    EXPECT_TRUE(r.Has("[U, 6] ERROR: Path to add does not exists (" + root + "/gone)"));
    EXPECT_EQ(r.compiler->SearchPath, (StringList{lower + "/nowhere\\", lower + "/sub\\"}));

    // A folder already in the list is announced again but not added twice.
    r.compiler->AddToSearchPath(root + "/SUB");
    EXPECT_EQ(r.compiler->SearchPath.size(), 2u);
    EXPECT_EQ(r.Count("/sub\\ added to searchpath"), 2);
    ResetNamedFoldersForTesting();
}

} // namespace
} // namespace velkor
