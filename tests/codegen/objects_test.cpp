// Game objects, objectives and the NAME command: the object form line by line, the fixed texts and
// values, the shared chunk ids, objective numbering and the errors with their exact texts.
#include "tests/codegen/compile_run.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

StringList PropForm(const std::string& chunk, const StringList& values) {
    StringList lines{"    FORM \"PROP\"", "    {", "      CHUNK $" + chunk, "      {"};
    for (const auto& v : values) lines.push_back("        " + v);
    lines.push_back("      }");
    lines.push_back("    }");
    return lines;
}

StringList ObjectForm(const std::string& typeText, const std::string& gameName, const StringList& position,
                      int typeNumber, const std::vector<StringList>& properties) {
    StringList lines{"FORM \"OBJ_\"",
                     "{",
                     "  CHUNK \"TYPE\"",
                     "  {",
                     "    cstring \"" + typeText + "\"",
                     "  }",
                     "  CHUNK \"COMN\"",
                     "  {",
                     "    crc32 \"" + gameName + "\""};
    for (const auto& p : position) lines.push_back("    float " + p);
    for (const std::string line : {"  }", "  FORM \"PLST\"", "  {"}) lines.push_back(line);
    for (const auto& line : PropForm("56A0F92F // OBJ_PROP_TYPE", {"long " + std::to_string(typeNumber)}))
        lines.push_back(line);
    for (const auto& p : properties) lines.insert(lines.end(), p.begin(), p.end());
    lines.push_back("  }");
    lines.push_back("}");
    return lines;
}

TEST(Objects, ShipFormWithProperties) {
    CompileRun r({"mission M;", "const Dia = 5000;", "object Alpha (Alpha1) AS ship", "  OBJ: \"Hornet\";",
                  "  x: 100; y: - 5.5; z: 0;", "  main: AlphaMain;", "  NAVDATA: 3, Dia;",
                  "  COLOR: 1, 0.5, 0.25, 1;", "  Direction: 1, -2, $10;", "  RADIUS: 2.5;", "end;"});
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(r.Objects(),
              ObjectForm("Hornet", "Alpha1", {"100", "-5.5", "0"}, 20,
                         {PropForm("164A8982 // OBJ_PROP_PROG_MAIN", {"cstring \"AlphaMain\""}),
                          PropForm("7CEB526F // OBJ_PROP_NAV_DATA",
                                   {"long 3 // number", "long 0", "long 5000 // diameter", "long 60"}),
                          PropForm("7CD3CF30 // OBJ_PROP_BRIEF_COLOR",
                                   {"long 1", "float 0.5", "float 0.25", "float 1"}),
                          PropForm("DB9BFB6D // OBJ_PROP_DIRECTION", {"long 1", "long -2", "long 16"}),
                          PropForm("8D12CACF // OBJ_PROP_RADIUS", {"float 2.5"})}));
    ASSERT_TRUE(r.Symbol("alpha"));
    EXPECT_EQ(r.Symbol("alpha")->Kind, skObject);
    EXPECT_NE(r.Symbol("alpha")->Value, 0);
    EXPECT_TRUE(r.compiler->Data().CodeList.empty());
}

TEST(Objects, FixedTypeTextsOverrideTheObjValue) {
    CompileRun camera({"mission M;", "object Cam (Cam) AS CAMERA OBJ: \"x\"; x: 0; y: 0; z: 0; end;"});
    EXPECT_EQ(camera.failure, "");
    EXPECT_EQ(camera.Objects(), ObjectForm("PROGCAM", "Cam", {"0", "0", "0"}, 25, {}));
}

TEST(Objectives, NumberedInDeclarationOrder) {
    CompileRun r({"mission M;", "const Shown = 0;",
                  "objective First hidden: Shown; type: 1; text: 7; status: 0; counter: $10; end;",
                  "objective Second", "  hidden: 1;", "  type: 2;", "  text: 8;", "  status: First;",
                  "  counter: 0;", "end;", "function f;", "var a;", "begin a := Second end;"});
    EXPECT_EQ(r.failure, "");
    EXPECT_EQ(r.Objectives(), (StringList{"CHUNK \"MOBJ\"",
                                          "{",
                                          "  long 0 // hidden",
                                          "  long 1 // type",
                                          "  long 7 // string1",
                                          "  long 7 // string2",
                                          "  long 0 // status",
                                          "  long 16 // counter",
                                          "  long 0",
                                          "  long 0",
                                          "  long 0",
                                          "}",
                                          "CHUNK \"MOBJ\"",
                                          "{",
                                          "  long 1 // hidden",
                                          "  long 2 // type",
                                          "  long 8 // string1",
                                          "  long 8 // string2",
                                          "  long 0 // status",
                                          "  long 0 // counter",
                                          "  long 0",
                                          "  long 0",
                                          "  long 0",
                                          "}"}));
    ASSERT_TRUE(r.Symbol("second"));
    EXPECT_EQ(r.Symbol("second")->Kind, skNumber);
    EXPECT_EQ(r.Symbol("second")->Text, "1");
    const StringList code = r.Code();
    EXPECT_NE(std::find(code.begin(), code.end(), "  movc v8 1;"), code.end());
}

} // namespace
} // namespace velkor::test
