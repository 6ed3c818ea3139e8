// The recent-files list in the registry: the load rules, what is written, and clearing.
#include "ide/reg_mru.h"
#include "platform/registry.h"
#include "platform/strings.h"
#include "tests/ide/ide_test_support.h"

#include <QAction>
#include <QMenu>

#include <map>

namespace velkor::test {
namespace {

// A registry in memory that keeps value names exactly as given (the file store folds "h3" into "H3").
class MemoryRegistry : public Registry {
public:
    std::vector<std::pair<std::string, std::string>> values; // the one key's values in order
    bool exists = false;                                     // the key exists

    bool KeyExists(std::string_view) const override { return exists; }
    bool OpenKey(std::string_view, bool canCreate) override {
        if (canCreate) exists = true;
        return exists;
    }
    std::vector<std::string> ValueNames(std::string_view) const override {
        std::vector<std::string> names;
        for (const auto& value : values) names.push_back(value.first);
        return names;
    }
    std::optional<std::string> ReadString(std::string_view, std::string_view name) const override {
        for (const auto& value : values) {
            if (value.first == name) return value.second;
        }
        return std::nullopt;
    }
    void WriteString(std::string_view, std::string_view name, std::string_view data) override {
        exists = true;
        for (auto& value : values) {
            if (SameText(value.first, name)) {
                value.second = data;
                return;
            }
        }
        values.emplace_back(name, data);
    }
    bool DeleteValue(std::string_view, std::string_view name) override {
        const auto before = values.size();
        std::erase_if(values, [&](const auto& value) { return value.first == name; });
        return values.size() != before;
    }
    bool DeleteKey(std::string_view) override {
        values.clear();
        exists = false;
        return true;
    }
};

std::vector<std::string> Paths(const TRegMru& mru) {
    std::vector<std::string> paths;
    for (const auto& entry : mru.Items()) paths.push_back(entry.Path);
    return paths;
}

// A list on a store of its own that holds its key.
class RegMruTest : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        registry.exists = true;
        mru.ActiveRegistry = &registry;
    }
    MemoryRegistry registry; // the list's store
    TRegMru mru;             // the list under test
};

TEST_F(RegMruTest, LoadReadsEveryOtherValueAsAnEntryWhateverItsName) {
    registry.values = {{"H3", "/a/one.pas"},      {"count", "3"},         {"DEFAULT", "/never.pas"},
                       {"h3", "/a/two.pas|7"},    {"MAXFILES", "5"},      {"x", "/A/ONE.PAS"},
                       {"H9", "/a/three.pas|no"}, {"H10", "/a/four.pas"}, {"H11", "/a/five.pas"},
                       {"H12", "/a/six.pas"}};
    mru.Load();
    EXPECT_EQ(mru.MaxItems, 5);
    EXPECT_EQ(Paths(mru), (std::vector<std::string>{"/a/one.pas", "/a/two.pas", "/a/three.pas", "/a/four.pas",
                                                    "/a/five.pas"}));
    EXPECT_EQ(mru.Items()[1].Tag, 7);
    EXPECT_EQ(mru.Items()[2].Tag, 0);
}

TEST_F(RegMruTest, AddWritesTheWholeListNewestFirstAndKeepsDefault) {
    registry.values = {{"DEFAULT", "keep"}, {"H7", "/stale.pas"}};
    mru.MaxItems = 3;
    mru.Add("/x/a.pas");
    mru.Add("/x/b.pas");
    mru.Add("/x/c.pas", 4);
    mru.Add("/X/A.PAS");
    mru.Add("/x/d.pas");
    EXPECT_EQ(Paths(mru), (std::vector<std::string>{"/x/d.pas", "/X/A.PAS", "/x/c.pas"}));
    EXPECT_EQ(registry.values, (std::vector<std::pair<std::string, std::string>>{{"DEFAULT", "keep"},
                                                                                 {"Count", "3"},
                                                                                 {"MaxFiles", "3"},
                                                                                 {"H0", "/x/d.pas"},
                                                                                 {"H1", "/X/A.PAS"},
                                                                                 {"H2", "/x/c.pas|4"}}));
    mru.Clear();
    EXPECT_TRUE(mru.Items().empty());
    EXPECT_EQ(registry.values, (std::vector<std::pair<std::string, std::string>>{{"DEFAULT", "keep"}}));
}

TEST_F(RegMruTest, TheMachineRegistryStoreRoundTripsAndTheMenuOpensEntries) {
    {
        TRegMru writer;
        writer.Add("/one.pas");
        writer.Add("/two&three.pas");
    }
    const std::string store = ReadFile(RegistryPath());
    EXPECT_NE(store.find("[Software\\velkor\\mru]"), std::string::npos);
    EXPECT_NE(store.find("H0=/two&three.pas"), std::string::npos);
    TRegMru reader;
    QMenu menu;
    reader.AttachMenu(&menu);
    reader.Load();
    EXPECT_EQ(Paths(reader), (std::vector<std::string>{"/two&three.pas", "/one.pas"}));
    ASSERT_EQ(menu.actions().size(), 2);
    EXPECT_EQ(menu.actions()[0]->text(), QStringLiteral("&1 /two&&three.pas"));
    std::string clicked;
    reader.OnItemClick = [&](const std::string& path) { clicked = path; };
    menu.actions()[1]->trigger();
    EXPECT_EQ(clicked, "/one.pas");
}

} // namespace
} // namespace velkor::test
