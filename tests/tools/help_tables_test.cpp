// The object and property help pages against the compiler's own tables: the pages the build wrote, the
// template filling and the generator program.
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
const std::filesystem::path kTemplates = std::filesystem::path(VELKOR_SOURCE_DIR) / "docs" / "help";

// The text of an HTML fragment: tags dropped, the entities the pages use turned back.
std::string PlainText(std::string_view html) {
    std::string out;
    bool inTag = false;
    for (char c : html) {
        if (c == '<')
            inTag = true;
        else if (c == '>')
            inTag = false;
        else if (!inTag)
            out += c;
    }
    for (const auto& [entity, c] :
         {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}}) {
        for (std::size_t at = out.find(entity); at != std::string::npos; at = out.find(entity, at + 1))
            out.replace(at, std::string_view(entity).size(), c);
    }
    return out;
}

// The cells of every data row of the page's one table, as plain text.
std::vector<std::vector<std::string>> TableRows(const std::string& page) {
    std::vector<std::vector<std::string>> rows;
    std::size_t at = 0;
    while ((at = page.find("<tr><td>", at)) != std::string::npos) {
        const std::size_t end = page.find("</tr>", at);
        EXPECT_NE(end, std::string::npos);
        if (end == std::string::npos) break;
        std::vector<std::string> cells;
        std::size_t cell = at + 4;
        while (cell < end) {
            const std::size_t open = page.find("<td>", cell);
            if (open == std::string::npos || open > end) break;
            const std::size_t close = page.find("</td>", open);
            cells.push_back(PlainText(page.substr(open + 4, close - open - 4)));
            cell = close + 5;
        }
        rows.push_back(std::move(cells));
        at = end;
    }
    return rows;
}

std::vector<std::string> Split(const std::string& text, std::string_view separator) {
    std::vector<std::string> parts;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(separator, from)) != std::string::npos; from = at + separator.size())
        parts.push_back(text.substr(from, at - from));
    parts.push_back(text.substr(from));
    return parts;
}

TEST(HelpTablesTest, TheBuiltObjectsPageListsEveryTypeOfTheCompiler) {
    const std::string page = ReadFile(kBuilt / "objects.html");
    EXPECT_EQ(page.find(kHelpTableMarker), std::string::npos);
    const auto rows = TableRows(page);
    const auto types = ObjectTypes();
    ASSERT_EQ(rows.size(), types.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(std::string(types[i].Word));
        ASSERT_EQ(rows[i].size(), 3u);
        EXPECT_EQ(rows[i][0], types[i].Word);
        EXPECT_EQ(rows[i][1], std::to_string(types[i].Number));
        EXPECT_EQ(rows[i][2], types[i].TypeText.empty() ? "the OBJ value" : std::string(types[i].TypeText));
        EXPECT_EQ(FindObjectType(rows[i][0]), &types[i]);
    }
    // The camera row says what the compiler writes for it.
    EXPECT_NE(page.find("<tr><td><code>CAMERA</code></td><td>25</td><td><code>PROGCAM</code></td></tr>"),
              std::string::npos);
}

TEST(HelpTablesTest, TheBuiltPropertiesPageListsEveryPropertyOfTheCompiler) {
    const std::string page = ReadFile(kBuilt / "props.html");
    EXPECT_EQ(page.find(kHelpTableMarker), std::string::npos);
    const auto rows = TableRows(page);
    const auto properties = ObjectProperties();
    ASSERT_EQ(rows.size(), properties.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const ObjectProperty& property = properties[i];
        SCOPED_TRACE(std::string(property.Keyword));
        ASSERT_EQ(rows[i].size(), 4u);
        EXPECT_EQ(rows[i][0], property.Keyword);
        EXPECT_EQ(rows[i][1], "$" + std::string(property.ChunkId));
        EXPECT_TRUE(rows[i][2].starts_with(property.Comment)) << rows[i][2];
        const std::vector<std::string> values = Split(rows[i][3], ", ");
        ASSERT_EQ(values.size(), property.ValueCount);
        for (std::size_t v = 0; v < values.size(); ++v) {
            const PropertyValue& value = property.Values[v];
            const std::string type = value.Type == 'c' ? "cstring" : value.Type == 'f' ? "float" : "long";
            EXPECT_TRUE(values[v].starts_with(type)) << values[v];
            if (!value.Fixed.empty()) {
                EXPECT_EQ(values[v], type + " " + std::string(value.Fixed) + " (fixed)");
            }
        }
    }
    // The two pairs that share a chunk id say so, and WING, which the compiler refuses, is no row.
    const auto row = [&](std::string_view keyword) {
        for (const auto& r : rows)
            if (r[0] == keyword) return r;
        return std::vector<std::string>{};
    };
    EXPECT_EQ(row("EVENT_4").at(2), "OBJ_PROP_EVENT4 (same chunk id as EVENT_H)");
    EXPECT_EQ(row("BRIEF_NAME").at(2), "OBJ_PROP_BRIEF_NAME (same chunk id as COLOR)");
    EXPECT_EQ(row("EVENT_H").at(2), "OBJ_PROP_EVENTH");
    EXPECT_TRUE(row("WING").empty());
    EXPECT_EQ(row("NAVDATA").at(3), "long (number), long 0 (fixed), long (diameter), long 60 (fixed)");
    EXPECT_NE(page.find("OBJ_PROP_TYPE (chunk id <code>$56A0F92F</code>)"), std::string::npos);
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
