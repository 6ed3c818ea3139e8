#include "iff/checksum.h"
#include "iff/iff_strings.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "tests/compiler/compile_run.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace velkor {
namespace {

using test::CompileRun;
using test::TempDir;
namespace fs = std::filesystem;

// A unit in a folder of its own, compiled with that folder as its search path; #FILE outputs go to out/.
struct FileRun : CompileRun {
    TempDir dir;

    void Add(const std::string& name, const std::string& text) {
        fs::create_directories((dir / name).parent_path());
        test::WriteFile(dir / name, text);
    }
    void AddStrings(const std::string& name, const StringList& lines) {
        TIffStringList table;
        table.Lines = lines;
        // Odd lengths: the INFO texts then carry their terminating zero.
        table.InfoText1 = "English";
        table.InfoText2 = "Default";
        table.SaveToFile(dir / name);
    }
    void Compile(const std::string& name, bool halt = true) {
        compiler->HaltOnError = halt;
        compiler->Verbosity = 3;
        fs::create_directories(dir / "out");
        if (!compiler->PlaceOutputFile)
            compiler->PlaceOutputFile = [this](const std::string& file) {
                return dir / "out" / FileNamePart(file);
            };
        compiler->AddToSearchPath(dir.path().string());
        compiler->SetFileName((dir / name).string());
        Run(test::ReadFile(dir / name));
    }
    // The name the search path gives a file of the unit's folder.
    std::string Path(const std::string& name) const { return LowerCase(dir.path().string()) + "\\" + name; }
};

TEST(Includes, ChildDeclaresIntoTheSharedTableWithItsOwnFileAndLines) {
    FileRun r;
    r.Add("main.pas", "mission Main;\r\nvar first;\r\ninclude \"Lib\\helpers\";\r\nvar last;\r\n");
    r.Add("HELPERS.PAS", "unit Helpers;\r\n\r\nvar shared = 5;\r\n#DEFINE FROM_LIB\r\n");
    r.Compile("main.pas");
    ASSERT_FALSE(r.threw) << r.All();
    const std::string path = r.Path("helpers.pas");
    EXPECT_TRUE(r.Has("[Main, 3] Including file " + path)) << r.All();
    EXPECT_TRUE(
        r.Has("[Helpers, 3] adding global variable: shared, CRC: " + IntToHex(NameHash("shared"), 8)));
    const TSymbol* shared = r.Symbol("SHARED");
    ASSERT_TRUE(shared);
    EXPECT_EQ(shared->Line, 3);
    EXPECT_EQ(shared->Value, 5);
    EXPECT_EQ(FileNameOf(shared->FileNumber), path);
    EXPECT_EQ(r.Symbol("first")->Line, 2);
    EXPECT_EQ(r.Symbol("last")->Line, 4);
    EXPECT_EQ(r.compiler->Data().Globals, (StringList{"first", "shared", "last"}));
    EXPECT_EQ(r.compiler->Data().CrcNames,
              (StringList{"_ObjType_DO_NOT_MODIFY", "FLO_Main", "first", "shared", "last"}));
    EXPECT_EQ(r.compiler->Defines->Names(), (StringList{"VER122", "FROM_LIB"}));
}

// Only included files are in the shared list, not the unit itself: an include naming the unit back
// compiles it once more, as a child of the include, and every file after that only once.
TEST(Includes, EachFileOnceAndTheUnitOnceMoreWhenNamedBack) {
    FileRun r;
    r.Add("a.pas", "unit A;\r\ninclude b, b;\r\n#INCLUDE c;\r\n");
    r.Add("b.pas", "unit B;\r\ninclude A;\r\nvar inB;\r\n");
    r.Add("c.pas", "unit C;\r\ninclude b;\r\n");
    r.Compile("a.pas");
    ASSERT_FALSE(r.threw) << r.All();
    const StringList includes = {
        "[A, 2] Including file " + r.Path("b.pas"),        "[B, 2] Including file " + r.Path("A.pas"),
        "[A, 2] " + r.Path("b.pas") + " already included", "[A, 2] " + r.Path("b.pas") + " already included",
        "[A, 3] Including file " + r.Path("c.pas"),        "[C, 2] " + r.Path("b.pas") + " already included",
        "[A, 2] " + r.Path("b.pas") + " already included", "[A, 3] " + r.Path("c.pas") + " already included",
    };
    StringList seen;
    for (const auto& m : r.messages)
        if (m.find("Includ") != std::string::npos || m.find("already included") != std::string::npos)
            seen.push_back(m);
    EXPECT_EQ(seen, includes) << r.All();
    EXPECT_EQ(r.compiler->ErrorCount, 0);

    // The unit's own file is compiled again by a self-include, so its declarations stand twice.
    FileRun self;
    self.Add("s.pas", "unit S;\r\ninclude s;\r\nvar x;\r\n");
    self.Compile("s.pas", false);
    EXPECT_TRUE(self.Has("[S, 2] Including file " + self.Path("s.pas"))) << self.All();
    EXPECT_TRUE(self.Has("[S, 2] " + self.Path("s.pas") + " already included"));
    EXPECT_TRUE(self.Has("[S, 3] ERROR: identifier \"X\" redeclared"));
    EXPECT_EQ(self.compiler->ErrorCount, 1);
}

TEST(Includes, MissingFileAndTheRestOfTheList) {
    FileRun r;
    r.Add("a.pas", "unit A;\r\ninclude \"sub\\nope\", b;\r\nvar after;\r\n");
    r.Add("b.pas", "unit B;\r\nvar inB;\r\n");
    r.Compile("a.pas", false);
    EXPECT_TRUE(r.Has("[A, 2] Including file nope.pas")) << r.All();
    EXPECT_TRUE(r.Has("[A, 2] ERROR: could not include file nope.pas - was not found!"));
    EXPECT_TRUE(r.Symbol("inB"));
    EXPECT_TRUE(r.Symbol("after"));
    EXPECT_EQ(r.compiler->ErrorCount, 1);
}

TEST(Includes, ErrorsOfChildrenCountAndHalt) {
    FileRun r;
    r.Add("a.pas", "unit A;\r\ninclude b;\r\nvar after;\r\n");
    r.Add("b.pas", "unit B;\r\nvar x, x;\r\n1;\r\n");
    r.Compile("a.pas", false);
    EXPECT_TRUE(r.Has("[B, 2] ERROR: identifier \"X\" redeclared")) << "\n" << r.All();
    EXPECT_TRUE(r.Has("[B, 3] ERROR: expected \"<Declaration>\" but found \"1\""));
    EXPECT_TRUE(r.Symbol("after"));
    EXPECT_EQ(r.compiler->ErrorCount, 2);

    FileRun h;
    h.Add("a.pas", "unit A;\r\ninclude b;\r\nvar after;\r\n");
    h.Add("b.pas", "unit B;\r\n1;\r\n");
    h.Compile("a.pas");
    EXPECT_TRUE(h.threw);
    EXPECT_FALSE(h.Symbol("after"));
    EXPECT_EQ(h.compiler->ErrorCount, 1);
}

TEST(Includes, DeepChainsEndInAnError) {
    FileRun r;
    const int files = TCompiler::kMaxIncludeDepth + 5;
    for (int i = 0; i < files; ++i)
        r.Add("u" + std::to_string(i) + ".pas",
              "unit U" + std::to_string(i) + ";\r\ninclude u" + std::to_string(i + 1) + ";\r\n");
    r.Add("u" + std::to_string(files) + ".pas", "unit Last;\r\n");
    r.Compile("u0.pas", false);
    EXPECT_EQ(r.Count("includes nest deeper than 64 files"), 1) << r.All();
    EXPECT_EQ(r.compiler->ErrorCount, 1);
}

TEST(StringFiles, TableSymbolAndStringNumbers) {
    FileRun r;
    r.AddStrings("Texts.ENG", {"Hello pilot", "Second line", "Say hello there", "unused tail text"});
    r.Add("m.pas", "unit M;\r\n#STRINGS texts;\r\n#BACKGROUND: TEXTS[\"second LINE\"];\r\n"
                   "#SETKILLBOARD(texts[\"THERE*\"], Texts[\"Hello pilot\"]);\r\n");
    r.Compile("m.pas");
    ASSERT_FALSE(r.threw) << r.All();
    const std::string path = r.Path("texts.eng");
    EXPECT_TRUE(r.Has("[M, 2] Including string file " + path));
    const TSymbol* table = r.Symbol("texts");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->Kind, skStringTable);
    EXPECT_EQ(table->Name, "TEXTS");
    EXPECT_EQ(table->Text, path.substr(0, 64));
    EXPECT_EQ(table->Line, 2);
    EXPECT_EQ(r.compiler->Background, 1);
    EXPECT_EQ(*r.compiler->KillBoard, (StringList{"2", "0"}));
    EXPECT_TRUE(r.Has("[M, 3] loading string \"second LINE\" from TEXTS: string #1"));
    EXPECT_TRUE(r.Has("[M, 4] loading substring \"THERE\" from TEXTS: string #2"));
}

TEST(StringFiles, MissingStringsAndFiles) {
    FileRun r;
    r.AddStrings("texts.eng", {"Hello pilot", "Second line", "padding padding"});
    r.Add("m.pas",
          "unit M;\r\n#STRINGS texts, nope;\r\n#BACKGROUND: texts[\"absent\"];\r\n#STRINGS Texts;\r\n");
    r.Compile("m.pas", false);
    EXPECT_TRUE(r.Has("[M, 2] ERROR: could not include string file nope.eng - was not found!")) << "\n"
                                                                                                << r.All();
    EXPECT_TRUE(
        r.Has("[M, 3] ERROR: absent was not found in \"TEXTS\" and adding strings is not supported and "
              "this message is pretty long"));
    EXPECT_TRUE(r.Has("[M, 4] " + r.Path("Texts.eng") + " already included")) << r.All();
    EXPECT_EQ(r.compiler->ErrorCount, 2);
}

// A string that is not found is an error like any other: recovery skips the rest of the reference, and the
// statement after it compiles without a further error.
TEST(StringFiles, MissingStringInAnExpressionRecoversAtTheSemicolon) {
    FileRun r;
    r.AddStrings("texts.eng", {"Hello pilot", "Second line", "padding padding"});
    r.Add("m.pas", "mission M;\r\n#STRINGS texts;\r\nvar g;\r\nfunction main;\r\nbegin\r\n"
                   "  g := texts[\"absent\"];\r\n  g := texts[\"Second line\"];\r\nend;\r\n");
    r.Compile("m.pas", false);
    const int error = r.IndexOf("[M, 6] ERROR: absent was not found in \"TEXTS\" and adding strings is not "
                                "supported and this message is pretty long");
    ASSERT_GE(error, 0) << r.All();
    EXPECT_EQ(r.messages.at(static_cast<size_t>(error) + 2), "[M, 6] recovering from error...");
    EXPECT_EQ(r.compiler->ErrorCount, 1) << r.All();
    const StringList code = r.compiler->Data().CodeList.Lines();
    EXPECT_NE(std::find(code.begin(), code.end(), "  movc v8 1;"), code.end());
}

// Source and string files share the list of included names, which leaves out the extension the compiler
// appends: a source file and a string file of the same name block each other, either way round. The unit's
// own file is not in that list, so a string file of the unit's name is included.
TEST(StringFiles, SourceAndStringFileOfOneNameBlockEachOther) {
    FileRun r;
    r.AddStrings("common.eng", {"Hello pilot", "Second line", "padding padding"});
    r.AddStrings("texts.eng", {"Hello pilot", "Second line", "padding padding"});
    r.AddStrings("m.eng", {"Hello pilot", "Second line", "padding padding"});
    r.Add("common.pas", "unit Common;\r\nvar shared;\r\n");
    r.Add("texts.pas", "unit Texts;\r\nvar never;\r\n");
    r.Add("m.pas",
          "unit M;\r\ninclude common;\r\n#STRINGS common, texts;\r\ninclude texts;\r\n#STRINGS m;\r\n");
    r.Compile("m.pas");
    ASSERT_FALSE(r.threw) << r.All();
    EXPECT_TRUE(r.Has("[M, 2] Including file " + r.Path("common.pas"))) << r.All();
    EXPECT_TRUE(r.Has("[M, 3] " + r.Path("common.eng") + " already included"));
    EXPECT_TRUE(r.Has("[M, 3] Including string file " + r.Path("texts.eng")));
    EXPECT_TRUE(r.Has("[M, 4] " + r.Path("texts.pas") + " already included"));
    EXPECT_TRUE(r.Has("[M, 5] Including string file " + r.Path("m.eng")));
    EXPECT_TRUE(r.Symbol("shared"));
    EXPECT_FALSE(r.Symbol("never"));
    ASSERT_TRUE(r.Symbol("TEXTS"));
    EXPECT_EQ(r.Symbol("TEXTS")->Kind, skStringTable);
    EXPECT_EQ(r.Symbol("COMMON"), nullptr);
    EXPECT_EQ(r.Symbol("M")->Kind, skStringTable);
    EXPECT_EQ(r.Count("Including"), 3);
}

TEST(StringFiles, BrokenStringFileIsAnErrorNotACrash) {
    FileRun r;
    r.Add("bad.eng", std::string("FORM\x10\0\0\0garbage", 15));
    r.Add("m.pas", "unit M;\r\n#STRINGS bad;\r\nvar after;\r\n");
    r.Compile("m.pas", false);
    EXPECT_EQ(r.compiler->ErrorCount, 1) << r.All();
    EXPECT_TRUE(r.Symbol("after"));
    EXPECT_FALSE(r.Symbol("bad"));
}

TEST(FileCommand, CompilesAndAssemblesEachUnit) {
    FileRun r;
    // The linked text of every #FILE unit lands in the temporary folder; keep this test's to itself.
    const test::PrivateTempFolder tmp(r.dir / "tmp");
    r.Add("campaign.pas",
          "series Campaign;\r\n#FILE \"missions\\M1.PAS\", \"nope.pas\", \"sec.pas\";\r\nvar after;\r\n");
    r.Add("Missions/m1.pas", "mission M1;\r\nvar done;\r\n");
    r.Add("sec.pas", "sector S1;\r\n#BACKGROUND: 3;\r\n");
    std::vector<std::pair<fs::path, size_t>> written;
    r.compiler->OnFileWritten = [&](const fs::path& p, size_t n) { written.emplace_back(p, n); };
    r.Compile("campaign.pas", false);
    EXPECT_TRUE(r.Has("[Campaign, 2] compiling file " + r.Path("missions\\M1.PAS"))) << r.All();
    EXPECT_TRUE(r.Has("[Campaign, 2] ERROR: could not compile file nope.pas - was not found!"));
    EXPECT_TRUE(r.Has("[Campaign, 2] compiling file " + r.Path("sec.pas")));
    EXPECT_TRUE(r.Has("[M1, 2] adding global variable: done, CRC: " + IntToHex(NameHash("done"), 8)));
    const std::string mis = test::ReadFile(r.dir / "out" / "M1.mis");
    const std::string sec = test::ReadFile(r.dir / "out" / "S1.sec");
    EXPECT_EQ(mis.substr(0, 4), "FORM");
    EXPECT_EQ(sec.substr(0, 4), "FORM");
    EXPECT_TRUE(r.Has("[Campaign, 2] ** M1.mis ** (" +
                      FormatThousands(static_cast<std::int64_t>(mis.size())) + " bytes)"));
    EXPECT_TRUE(r.Has("[Campaign, 2] ** S1.sec ** (" +
                      FormatThousands(static_cast<std::int64_t>(sec.size())) + " bytes)"));
    ASSERT_EQ(written.size(), 3u);
    EXPECT_EQ(written[0].first, r.dir / "out" / "M1.mis");
    EXPECT_EQ(written[0].second, mis.size());
    EXPECT_TRUE(r.Symbol("after"));
    EXPECT_FALSE(r.Symbol("done"));
    EXPECT_EQ(r.compiler->ErrorCount, 1);
    EXPECT_NE(test::ReadFile(r.dir / "tmp" / "_velkor.txt").find("IFF \"S1.sec\""), std::string::npos);
}

TEST(FileCommand, ChildErrorsCountAndCyclesStop) {
    FileRun r;
    r.Add("a.pas", "series A;\r\n#FILE \"b.pas\";\r\n");
    r.Add("b.pas", "series B;\r\n#FILE \"A.PAS\";\r\nbroken;\r\n");
    r.Compile("a.pas", false);
    EXPECT_TRUE(r.Has("[B, 2] ERROR: could not compile file " + r.Path("A.PAS") +
                      " - it is already being compiled (#FILE cycle)"))
        << r.All();
    EXPECT_TRUE(r.Has("[B, 3] ERROR: expected \"<Declaration>\" but found \"broken\""));
    EXPECT_EQ(r.compiler->ErrorCount, 2);
}

TEST(FileCommand, AssemblerErrorsAreCompileErrors) {
    FileRun r;
    r.Add("a.pas", "series A;\r\n#FILE \"raw.pas\";\r\nvar after;\r\n");
    r.Add("raw.pas", "iff \"raw.bin\"\r\nform \"AB\" { }\r\n");
    r.Compile("a.pas", false);
    EXPECT_EQ(r.compiler->ErrorCount, 1) << r.All();
    EXPECT_EQ(r.Count("[error] line"), 1);
    EXPECT_TRUE(r.Symbol("after"));
    EXPECT_FALSE(fs::exists(r.dir / "out" / "raw.bin"));

    FileRun h;
    h.Add("a.pas", "series A;\r\n#FILE \"raw.pas\";\r\nvar after;\r\n");
    h.Add("raw.pas", "iff \"raw.bin\"\r\nform \"AB\" { }\r\n");
    h.Compile("a.pas");
    EXPECT_TRUE(h.threw);
    EXPECT_FALSE(h.Symbol("after"));
}

TEST(FileCommand, SymbolsOnlyReadsTheListButCompilesNothing) {
    FileRun r;
    r.compiler->SymbolsOnly = true;
    r.Add("a.pas", "series A;\r\n#FILE \"m.pas\";\r\nvar after;\r\n");
    r.Add("m.pas", "mission M;\r\n");
    r.Compile("a.pas");
    EXPECT_FALSE(r.threw);
    EXPECT_TRUE(r.messages.empty()) << r.All();
    EXPECT_TRUE(r.Symbol("after"));
    EXPECT_FALSE(fs::exists(r.dir / "out" / "M.mis"));
}

TEST(FileCommand, OutputPathIsPassedOn) {
    FileRun r;
    r.Add("a.pas", "series A;\r\n#SETOUTPUTPATH(\"game\\data\");\r\n#FILE \"m.pas\";\r\n");
    r.Add("m.pas", "mission M;\r\n");
    std::vector<std::string> names;
    r.compiler->PlaceOutputFile = [&](const std::string& file) {
        names.push_back(file);
        return r.dir / "out" / FileNamePart(file);
    };
    r.Compile("a.pas");
    EXPECT_EQ(names, (StringList{"game\\data\\M.mis", "game\\data\\M.iff"})) << r.All();
}

// The unit gets its own folder and the output path before it is given the message sink: only the parent's
// "output path set to" line is shown, and the unit's first line is its own compilation's.
TEST(FileCommand, UnitSetUpBeforeItsMessagesAreShown) {
    FileRun r;
    r.Add("a.pas", "series A;\r\n#SETOUTPUTPATH(\"game\");\r\n#FILE \"sub\\m.pas\";\r\n");
    r.Add("sub/m.pas", "mission M;\r\nvar done;\r\n");
    r.Compile("a.pas");
    ASSERT_FALSE(r.threw) << r.All();
    EXPECT_EQ(r.Count("added to searchpath"), 1) << r.All(); // the parent's own folder, by the test
    EXPECT_EQ(r.Count("output path set to"), 1);
    const int compiling = r.IndexOf("[A, 3] compiling file " + r.Path("sub\\m.pas"));
    ASSERT_GE(compiling, 0);
    EXPECT_EQ(
        r.messages.at(static_cast<size_t>(compiling) + 1).rfind("[M, 2] adding global variable: done", 0),
        0u);
}

} // namespace
} // namespace velkor
