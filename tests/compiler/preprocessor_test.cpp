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

TEST(Conditionals, Ver122IsDefinedAndElseBranchIsSkipped) {
    CompileRun r(
        "unit U;\r\n#IFDEF VER122\r\nconst A = 1;\r\n#ELSE\r\nconst B = 2;\r\n#ENDIF\r\nconst C = 3;\r\n");
    EXPECT_FALSE(r.threw) << r.All();
    EXPECT_TRUE(r.Symbol("A"));
    EXPECT_FALSE(r.Symbol("B"));
    EXPECT_TRUE(r.Symbol("C"));
    EXPECT_TRUE(r.Has("[U, 5] Ifdef_else skipped: \"const\""));
    EXPECT_TRUE(r.Has("[U, 5] Ifdef_else skipped: \";\""));
    EXPECT_EQ(r.compiler->ConditionalState, -1);
    EXPECT_FALSE(r.compiler->InElse);
}

TEST(Conditionals, UndefinedNameSkipsToElse) {
    CompileRun r("unit U;\r\n#ifdef NOPE\r\nvar x;\r\n#else\r\nvar y;\r\n#endif\r\n");
    EXPECT_FALSE(r.threw) << r.All();
    EXPECT_FALSE(r.Symbol("x"));
    EXPECT_TRUE(r.Symbol("y"));
    EXPECT_TRUE(r.Has("[U, 3] Ifdef skipped: \"var\""));
    EXPECT_TRUE(r.Has("[U, 3] Ifdef skipped: \"x\""));
    EXPECT_EQ(r.Count("skipped"), 3);
}

TEST(Conditionals, IfndefDefineAndUndef) {
    CompileRun r("unit U;\r\n#define Debug\r\n#IFNDEF DEBUG\r\nvar a;\r\n#ENDIF\r\n#Undef debug\r\n"
                 "#IfNDef Debug\r\nvar b;\r\n#EndIf\r\n");
    EXPECT_FALSE(r.threw) << r.All();
    EXPECT_FALSE(r.Symbol("a"));
    EXPECT_TRUE(r.Symbol("b"));
    EXPECT_EQ(r.compiler->Defines->Names(), (StringList{"VER122"}));
}

// Defines is a plain list: each #DEFINE appends, each #UNDEF takes out one entry of the name.
TEST(Conditionals, NameDefinedTwiceOutlivesOneUndef) {
    CompileRun r("unit U;\r\n#define A\r\n#DEFINE a\r\n#undef A\r\n#ifdef A\r\nvar x;\r\n#endif\r\n"
                 "#undef A\r\n#ifdef A\r\nvar y;\r\n#endif\r\n");
    EXPECT_FALSE(r.threw) << r.All();
    EXPECT_TRUE(r.Symbol("x"));
    EXPECT_FALSE(r.Symbol("y"));
    EXPECT_EQ(r.compiler->Defines->Names(), (StringList{"VER122"}));
}

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

TEST(Conditionals, SkippedTextOnlyHasToScan) {
    CompileRun r("unit U;\r\n#IFDEF X\r\nthis is ) not ( valid 'at all\r\n#ENDIF\r\nvar z;\r\n");
    EXPECT_FALSE(r.threw) << r.All();
    EXPECT_TRUE(r.Symbol("z"));
    EXPECT_EQ(r.compiler->ErrorCount, 0);
}

TEST(Conditionals, NestingIsReportedAndProcessedAnyway) {
    CompileRun r("unit U;\r\n#IFDEF VER122\r\n#IFDEF NOPE\r\nvar a;\r\n#ENDIF\r\nvar b;\r\n", false);
    EXPECT_TRUE(r.Has("[U, 3] ERROR: Nested #IfDefs aren't allowed"));
    EXPECT_FALSE(r.Symbol("a"));
    EXPECT_TRUE(r.Symbol("b"));
    EXPECT_EQ(r.compiler->ErrorCount, 1);

    CompileRun halted("unit U;\r\n#IFDEF VER122\r\n#IFDEF NOPE\r\n");
    EXPECT_TRUE(halted.threw);
}

TEST(Conditionals, StrayElseReportsBothMessages) {
    CompileRun r("unit U;\r\nvar a;\r\n#ELSE\r\nvar b;\r\n#ENDIF\r\nvar c;\r\n", false);
    const int first = r.IndexOf("[U, 3] ERROR: #Else without #Ifdef");
    const int second = r.IndexOf("[U, 3] ERROR: #Endif without #IfDef/#IfNDef");
    ASSERT_GE(first, 0) << r.All();
    EXPECT_GT(second, first);
    EXPECT_FALSE(r.Symbol("b"));
    EXPECT_TRUE(r.Symbol("c"));
    EXPECT_EQ(r.compiler->ErrorCount, 2);
    EXPECT_FALSE(r.Has("[U, 5] ERROR: #Endif without #Ifdef"));

    CompileRun halted("unit U;\r\n#ELSE\r\n");
    EXPECT_TRUE(halted.threw);
    EXPECT_EQ(halted.Count("ERROR"), 1);
}

TEST(Conditionals, StrayEndif) {
    CompileRun r("unit U;\r\n\r\n#endif\r\nvar a;\r\n", false);
    EXPECT_TRUE(r.Has("[U, 3] ERROR: #Endif without #Ifdef"));
    EXPECT_TRUE(r.Symbol("a"));
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

TEST(Commands, UnknownCommandIsAHintAndSkipsToSemicolon) {
    CompileRun r("unit U;\r\n#foo 1 2\r\n 3;\r\nvar a;\r\n#bar baz");
    EXPECT_FALSE(r.threw);
    EXPECT_TRUE(r.Has("[U, 2] HINT: FOO is not a valid command"));
    EXPECT_TRUE(r.Has("[U, 5] HINT: BAR is not a valid command")) << "\n" << r.All();
    EXPECT_TRUE(r.Symbol("a"));
    EXPECT_EQ(r.compiler->ErrorCount, 0);
}

TEST(Commands, UnitSettings) {
    CompileRun r(
        "mission M;\r\nconst Bg = 4;\r\n#SETROOMS(\"a.rom\", \"b.rom\");\r\n#setkillboard(1, $10, -3);\r\n"
        "#SECTOR: \"x.sec\";\r\n#BACKGROUND: Bg;\r\n#GFPROC: \"GfMain\";\r\n#MAINPROC: \"Main\";\r\n");
    EXPECT_FALSE(r.threw) << r.All();
    auto& c = *r.compiler;
    EXPECT_EQ(*c.Rooms, (StringList{"a.rom", "b.rom"}));
    EXPECT_EQ(*c.KillBoard, (StringList{"1", "16", "-3"}));
    EXPECT_EQ(c.SectorFile, "x.sec");
    EXPECT_EQ(c.Background, 4);
    EXPECT_EQ(c.Data().GfProc, "GfMain");
    EXPECT_EQ(c.Data().MainProc, "Main");
    EXPECT_TRUE(r.Has("[M, 7] HINT: GfMain"));
    EXPECT_TRUE(r.Has("[M, 8] HINT: Main"));
}

// The value reader looks every text up, a string's as well: a text that names a symbol is its value.
TEST(Commands, StringValueNamingASymbolStandsForItsValue) {
    CompileRun r("unit U;\r\nconst Bg = 4, Sec = \"k.sec\";\r\n#HINT(\"bg\");\r\n#SECTOR: \"Sec\";\r\n"
                 "#BACKGROUND: \"BG\";\r\n#HINT(\"plain\");\r\n");
    EXPECT_FALSE(r.threw) << r.All();
    EXPECT_TRUE(r.Has("[U, 3] HINT: 4")) << r.All();
    EXPECT_EQ(r.compiler->SectorFile, "k.sec");
    EXPECT_EQ(r.compiler->Background, 4);
    EXPECT_TRUE(r.Has("[U, 6] HINT: plain"));
}

TEST(Commands, HintAndError) {
    CompileRun r("unit U;\r\n#HINT(\"look here\");\r\n#ERROR(\"stop here\");\r\nvar a;\r\n", false);
    EXPECT_TRUE(r.Has("[U, 2] HINT: look here"));
    EXPECT_TRUE(r.Has("[U, 3] ERROR: stop here"));
    EXPECT_TRUE(r.Symbol("a"));
    EXPECT_EQ(r.compiler->ErrorCount, 1);

    CompileRun halted("unit U;\r\n#ERROR(\"stop here\");\r\nvar a;\r\n");
    EXPECT_TRUE(halted.threw);
    EXPECT_FALSE(halted.Symbol("a"));
}

TEST(Commands, MissingSemicolonAndBadArguments) {
    CompileRun r("unit U;\r\n#SECTOR: \"x.sec\"\r\nvar a;\r\n#BACKGROUND: abc;\r\n", false);
    EXPECT_TRUE(r.Has("[U, 3] ERROR: expected \";\" but found \"var\""));
    EXPECT_TRUE(r.Has("[U, 4] ERROR: \"abc\" is not a valid integer value"));
    EXPECT_EQ(r.compiler->Background, 1);
}

// Every command with a value ends with ";": a declaration straight after the value is what a missing one
// finds, the value is kept all the same and recovery skips that declaration.
TEST(Commands, ValueCommandsWithoutSemicolon) {
    struct Case {
        const char* command;
        std::int32_t TCompiler::*number; // the setting a number command fills, or null
    };
    const Case cases[] = {
        {"#NAME: 5", &TCompiler::NameNumber},
        {"#BACKGROUND: 5", &TCompiler::Background},
        {"#SECTOR: \"x.sec\"", nullptr},
        {"#GFPROC: \"G\"", nullptr},
        {"#HINT(\"h\")", nullptr},
    };
    for (const Case& c : cases) {
        for (const bool halt : {false, true}) {
            CompileRun r("mission M;\r\n" + std::string(c.command) + "\r\nvar a;\r\nvar b;\r\n", halt);
            EXPECT_TRUE(r.Has("[M, 3] ERROR: expected \";\" but found \"var\"")) << c.command << "\n"
                                                                                 << r.All();
            EXPECT_EQ(r.compiler->ErrorCount, 1) << c.command;
            EXPECT_EQ(r.threw, halt) << c.command;
            EXPECT_FALSE(r.Symbol("a")) << c.command;
            EXPECT_EQ(r.Symbol("b") != nullptr, !halt) << c.command;
            if (c.number) EXPECT_EQ((*r.compiler).*c.number, 5) << c.command;
        }
    }
    CompileRun closed("mission M;\r\n#NAME: 5;\r\nvar a;\r\n");
    EXPECT_FALSE(closed.threw) << closed.All();
    EXPECT_EQ(closed.compiler->NameNumber, 5);
    EXPECT_TRUE(closed.Symbol("a"));
}

// The missing ";" is found after the folder has been taken, like the value of any other command.
TEST(Commands, FolderCommandWithoutSemicolonStillTakesEffect) {
    CompileRun r("unit U;\r\n#SETOUTPUTPATH(Out)\r\nvar a;\r\n#ADDTOSEARCHPATH(Lib)\r\nvar b;\r\n", false);
    EXPECT_TRUE(r.Has("[U, 2] output path set to out\\")) << r.All();
    EXPECT_TRUE(r.Has("[U, 3] ERROR: expected \";\" but found \"var\""));
    EXPECT_EQ(r.compiler->OutputPath, "out\\");
    EXPECT_TRUE(r.Has("[U, 4] lib\\ added to searchpath"));
    EXPECT_TRUE(r.Has("[U, 5] ERROR: expected \";\" but found \"var\""));
    EXPECT_EQ(r.compiler->SearchPath, (StringList{"lib\\"}));
    // Recovery skipped to the ";" of the declaration that followed.
    EXPECT_FALSE(r.Symbol("a"));
    EXPECT_FALSE(r.Symbol("b"));
}

TEST(Commands, EmptyRoomListAndBrokenLists) {
    CompileRun r("unit U;\r\n#SETROOMS();\r\n#SETKILLBOARD(1 2);\r\nvar a;\r\n", false);
    EXPECT_TRUE(r.compiler->Rooms->empty()) << "\n" << r.All();
    EXPECT_TRUE(r.Has("[U, 3] ERROR: expected \")\" but found \"2\""));
    EXPECT_TRUE(r.Symbol("a"));
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
