#include "iff/checksum.h"
#include "platform/numbers.h"
#include "tests/compiler/compile_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velkor {
namespace {

using test::CompileRun;

TEST(CompilerSpine, UnitHeaderAndVariables) {
    CompileRun r("mission Demo;\r\nvar kills = 3, Flag2;\r\nconst Max = $10, Neg = - 5;\r\n");
    EXPECT_FALSE(r.threw);
    EXPECT_EQ(r.compiler->UnitKind, ukMission);
    EXPECT_EQ(r.compiler->UnitName, "Demo");
    EXPECT_EQ(r.compiler->Data().CrcNames,
              (StringList{"_ObjType_DO_NOT_MODIFY", "FLO_Main", "kills", "Flag2"}));
    EXPECT_EQ(r.compiler->Data().Globals, (StringList{"kills", "Flag2"}));
    ASSERT_TRUE(r.Symbol("KILLS"));
    EXPECT_EQ(r.Symbol("kills")->Value, 3);
    EXPECT_EQ(r.Symbol("Max")->Text, "$10");
    EXPECT_EQ(r.Symbol("neg")->Text, "-5");
    EXPECT_TRUE(r.Has("[Demo, 3] adding global const MAX with value $10"));
}

// The table knows a record by its upper-cased name only (a constant's text is its value): that is the
// name the redeclaration names, however the second declaration writes it.
TEST(CompilerSpine, RedeclarationNamesTheUpperCasedName) {
    CompileRun r("unit U;\r\nconst Max = 1;\r\nvar max;\r\nconst mAx = 2;\r\n", false);
    EXPECT_TRUE(r.Has("[U, 3] ERROR: identifier \"MAX\" redeclared")) << r.All();
    EXPECT_TRUE(r.Has("[U, 4] ERROR: identifier \"MAX\" redeclared"));
    EXPECT_EQ(r.compiler->ErrorCount, 2);
}

TEST(CompilerSpine, ErrorsHaltOrRecover) {
    CompileRun halted("unit U;\r\nvar x;\r\nvar X;\r\nvar y;\r\n");
    EXPECT_TRUE(halted.threw);
    EXPECT_TRUE(halted.Has("[U, 3] ERROR: identifier \"X\" redeclared"));
    EXPECT_EQ(halted.compiler->ErrorLine, 3);

    CompileRun recovered("unit U;\r\nwhat is this;\r\nvar y;\r\n", false);
    EXPECT_FALSE(recovered.threw);
    EXPECT_TRUE(recovered.Has("[U, 2] ERROR: expected \"<Declaration>\" but found \"what\""));
    EXPECT_TRUE(recovered.Has("[U, 2] recovering from error..."));
    EXPECT_TRUE(recovered.Symbol("y"));
    EXPECT_EQ(recovered.compiler->ErrorCount, 1);

    CompileRun wrongKind("program P;", false);
    EXPECT_TRUE(wrongKind.Has("[, 1] ERROR: expected \"unit\" but found \"program\""));
}

TEST(CompilerSpine, UnitKindRulesStillDeclare) {
    CompileRun r("sector S;\r\nvar a;\r\n", false);
    const int error = r.IndexOf("[S, 2] ERROR: global vars not allowed in PROJECT and SECTOR");
    ASSERT_GE(error, 0) << r.All();
    EXPECT_TRUE(r.Symbol("a"));
    // Every error that does not halt is followed by its "raised in" line and the recovery line, even where
    // the declaration then goes on without skipping.
    ASSERT_GT(r.messages.size(), static_cast<size_t>(error) + 2);
    EXPECT_EQ(r.messages[static_cast<size_t>(error) + 1].rfind("[S, 2]   raised in ", 0), 0u);
    EXPECT_EQ(r.messages[static_cast<size_t>(error) + 2], "[S, 2] recovering from error...");
    EXPECT_EQ(r.Count("recovering from error..."), 1);
}

TEST(CompilerSpine, NumberConversion) {
    CompileRun r("unit U;", false);
    auto& c = *r.compiler;
    EXPECT_EQ(c.ConvertNumber("%1010"), 10);
    EXPECT_EQ(c.ConvertNumber("$FF"), 255);
    EXPECT_EQ(c.ConvertNumber("-12"), -12);
    EXPECT_EQ(c.ConvertNumber("%102"), std::nullopt);
    EXPECT_TRUE(r.Has("[U, 1] ERROR: 2 in binary constant ?!? What are you smoking?"));
    EXPECT_EQ(c.ConvertNumber("%" + std::string(32, '1')), std::nullopt);
    EXPECT_TRUE(r.Has("[U, 1] ERROR: " + std::string(32, '1') + " doesn't fit into a long"));
    EXPECT_EQ(c.ConvertNumber("1.5"), std::nullopt);
    EXPECT_TRUE(r.Has("[U, 1] ERROR: \"1.5\" is not a valid integer value"));
    EXPECT_THROW(c.ConvertNumber("%1" + std::string(30, '0')), ERangeError);
}

TEST(CompilerSpine, RecoveryTerminatesOnTextsThatEndBadly) {
    for (const char* text : {"unit", "unit U", "unit U; var", "unit U; var a =", "unit U; const c",
                             "unit U; ?", "unit U; var a b c", "unit U; enum"}) {
        CompileRun r(text, false);
        EXPECT_FALSE(r.threw) << text;
    }
}

// One keyword starts one list, and its ";" ends it: a name after the ";" starts no declaration. Recovery
// skips to the next ";", so the whole stray list is left out and what follows it is declared.
TEST(Declarations, AListEndsAtItsSemicolon) {
    struct Case {
        const char* source;
        const char* message; // the error, empty for none
        std::vector<std::string> declared, left;
    };
    const Case cases[] = {
        {"unit U;\r\nvar a;\r\n  b, c;\r\nvar d;\r\n",
         "[U, 3] ERROR: expected \"<Declaration>\" but found \"b\"",
         {"a", "d"},
         {"b", "c"}},
        {"unit U;\r\nvar a = 1;\r\n  b = 2;\r\nvar d;\r\n",
         "[U, 3] ERROR: expected \"<Declaration>\" but found \"b\"",
         {"a", "d"},
         {"b"}},
        {"unit U;\r\nconst a = 1;\r\n  b = 2;\r\nconst d = 3;\r\n",
         "[U, 3] ERROR: expected \"<Declaration>\" but found \"b\"",
         {"a", "d"},
         {"b"}},
        {"series U;\r\nexternal a;\r\n  b;\r\nexternal d;\r\n",
         "[U, 3] ERROR: expected \"<Declaration>\" but found \"b\"",
         {"a", "d"},
         {"b"}},
        // One list over several lines, separated by ",".
        {"unit U;\r\nvar a = 1,\r\n  b = 2,\r\n  c;\r\nconst d = 1,\r\n  e = 2;\r\n",
         "",
         {"a", "b", "c", "d", "e"},
         {}},
        {"unit U;\r\nvar a; var b;\r\nconst c = 1; const d = 2;\r\nenum E; var f;\r\n",
         "",
         {"a", "b", "c", "d", "E", "f"},
         {}},
    };
    for (const Case& c : cases) {
        CompileRun r(c.source, false);
        if (*c.message) {
            EXPECT_TRUE(r.Has(c.message)) << c.source << "\n" << r.All();
            EXPECT_EQ(r.compiler->ErrorCount, 1) << c.source;
        } else {
            EXPECT_EQ(r.compiler->ErrorCount, 0) << c.source << "\n" << r.All();
        }
        for (const std::string& name : c.declared) EXPECT_TRUE(r.Symbol(name)) << c.source << ": " << name;
        for (const std::string& name : c.left) EXPECT_FALSE(r.Symbol(name)) << c.source << ": " << name;
    }
    // Inside a function the locals end at their ";" as well: the stray name is no statement block.
    CompileRun local("mission M;\r\nfunction f;\r\nvar a;\r\n  b;\r\nbegin\r\nend;\r\n", false);
    EXPECT_TRUE(local.Has("[M, 4] ERROR: expected \"begin\" but found \"b\"")) << local.All();
}

// An initial value that is no number is reported once, by the value reader.
TEST(Declarations, BadInitialValueReportedOnce) {
    CompileRun r("unit U;\r\nvar a = xyz;\r\nenum E = %102;\r\nvar b = %101;\r\n", false);
    EXPECT_EQ(r.Count("ERROR: \"xyz\" is not a valid integer value"), 1) << r.All();
    EXPECT_EQ(r.Count("ERROR: 2 in binary constant ?!? What are you smoking?"), 1);
    EXPECT_EQ(r.compiler->ErrorCount, 2);
    ASSERT_TRUE(r.Symbol("a") && r.Symbol("b"));
    EXPECT_EQ(r.Symbol("a")->Value, 0);
    EXPECT_EQ(r.Symbol("b")->Value, 5);
}

TEST(Declarations, CompiledAnywayRules) {
    CompileRun r(
        "series S;\r\nexternal e = 1, f;\r\nstatic s;\r\nenum A, B = 5, C;\r\nproperty p;\r\nvar after;\r\n",
        false);
    EXPECT_TRUE(r.Has("[S, 2] ERROR: external variables cannot be initialized")) << r.All();
    EXPECT_TRUE(r.Has("[S, 3] ERROR: Only local variables can be static!"));
    EXPECT_TRUE(r.Has("[S, 5] ERROR: Property not supported!"));
    ASSERT_TRUE(r.Symbol("e") && r.Symbol("f") && r.Symbol("s"));
    EXPECT_EQ(r.Symbol("e")->Kind, skExternalVar);
    EXPECT_EQ(r.Symbol("s")->Kind, skGlobalVar);
    EXPECT_EQ(r.Symbol("A")->Text, "0");
    EXPECT_EQ(r.Symbol("B")->Text, "5");
    EXPECT_EQ(r.Symbol("C")->Text, "6");
    EXPECT_EQ(r.Symbol("C")->Kind, skEnum);
    EXPECT_TRUE(r.Symbol("after"));
    EXPECT_TRUE(r.Has("[S, 2] adding external variable: e, CRC: " + IntToHex(NameHash("e"), 8)));
    EXPECT_TRUE(r.Has("[S, 2]    don't forget to declare it in series!"));
    EXPECT_EQ(r.compiler->ErrorCount, 3);
}

// Recovery skips up to the next ";" and leaves it unread, also when the token the expectation found was a
// ";" itself: the declaration after it is skipped with it.
TEST(Declarations, RecoveryAfterAFoundSemicolonSkipsToTheNextOne) {
    CompileRun r("unit U;\r\n#SETKILLBOARD(1;\r\nvar a;\r\nvar b;\r\nconst c = 1 d;\r\nvar e;\r\n", false);
    EXPECT_TRUE(r.Has("[U, 2] ERROR: expected \")\" but found \";\"")) << r.All();
    EXPECT_FALSE(r.Symbol("a"));
    EXPECT_TRUE(r.Symbol("b"));
    EXPECT_TRUE(r.Has("[U, 5] ERROR: expected \";\" but found \"d\""));
    EXPECT_TRUE(r.Symbol("e"));
    EXPECT_EQ(r.compiler->ErrorCount, 2);
}

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
