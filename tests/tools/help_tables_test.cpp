// The object and property help pages: the pages the build wrote from the compiler's tables, the template
// filling and the generator program.
#include "codegen/object_tables.h"
#include "tests/support/run_tool.h"
#include "tools/help_tables.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace velkor::test {
namespace {

const std::filesystem::path kBuilt = VELKOR_BUILT_HELP_DIR;
const std::filesystem::path kSource = VELKOR_SOURCE_DIR;
const std::filesystem::path kTemplates = kSource / "docs" / "help";

// The tables as the compiler's own tables give them today, row for row: a change of a table shows here.
TEST(HelpTablesTest, TheTablesListEveryTypeAndPropertyOfTheCompiler) {
    EXPECT_EQ(ObjectTypesTable(), ReadFile(kSource / "tests/cases/tools/objects_table.html"));
    EXPECT_EQ(ObjectPropertiesTable(), ReadFile(kSource / "tests/cases/tools/props_table.html"));
    for (const ObjectType& type : ObjectTypes()) EXPECT_EQ(FindObjectType(type.Word), &type) << type.Word;
}

TEST(HelpTablesTest, TheBuiltPagesAreTheTemplatesWithTodaysTables) {
    EXPECT_EQ(ReadFile(kBuilt / "objects.html"),
              FillHelpTemplate(ReadFile(kTemplates / "objects.html.in"), ObjectTypesTable()));
    EXPECT_EQ(ReadFile(kBuilt / "props.html"),
              FillHelpTemplate(ReadFile(kTemplates / "props.html.in"), ObjectPropertiesTable()));
    // The other pages are copied as they are, the templates are not.
    EXPECT_EQ(ReadFile(kBuilt / "index.html"), ReadFile(kTemplates / "index.html"));
    EXPECT_EQ(ReadFile(kBuilt / "help" / "while.html"), ReadFile(kTemplates / "help" / "while.html"));
    EXPECT_FALSE(std::filesystem::exists(kBuilt / "objects.html.in"));
}

TEST(HelpTablesTest, FillingReplacesTheMarkerLineAndNeedsIt) {
    EXPECT_EQ(FillHelpTemplate("<p>a</p>\r\n<!-- table -->\r\n</body>", "<table/>\r\n"),
              "<p>a</p>\r\n<table/>\r\n</body>");
    EXPECT_EQ(FillHelpTemplate("a\n<!-- table -->\nb\n<!-- table -->\n", "T\n"), "a\nT\nb\n<!-- table -->\n");
    EXPECT_EQ(FillHelpTemplate("<!-- table -->", "T"), "T");
    try {
        FillHelpTemplate("<p>no marker</p>", "T");
        FAIL() << "no exception";
    } catch (const EHelpTemplate& e) {
        EXPECT_STREQ(e.what(), "The help page template has no \"<!-- table -->\" line");
    }
}

TEST(HelpTablesTest, TheGeneratorWritesBothPagesAndFailsClearly) {
    TempDir out;
    ToolResult run = RunProgram(VELKOR_HELPGEN, {kTemplates.string(), (out / "help").string()});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(ReadFile(out / "help" / "objects.html"), ReadFile(kBuilt / "objects.html"));
    EXPECT_EQ(ReadFile(out / "help" / "props.html"), ReadFile(kBuilt / "props.html"));

    run = RunProgram(VELKOR_HELPGEN, {});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "usage: velkor_helpgen TEMPLATE_FOLDER OUTPUT_FOLDER\n");

    WriteFile(out / "objects.html.in", "<p>no marker</p>\n");
    run = RunProgram(VELKOR_HELPGEN, {out.path().string(), (out / "written").string()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "velkor_helpgen: The help page template has no \"<!-- table -->\" line\n");
    EXPECT_FALSE(std::filesystem::exists(out / "written" / "objects.html"));
}

} // namespace
} // namespace velkor::test
