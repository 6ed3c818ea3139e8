#include "platform/registry.h"
#include "platform/registry_file_store.h"
#include "tests/platform/isolated_settings.h"

#include "platform/text_file.h"

#include <gtest/gtest.h>

#include <functional>

namespace fs = std::filesystem;

namespace velkor {
namespace {

using test::ReadFile;
using test::WriteFile;

constexpr const char* kMru = "\\Software\\velkor\\mru";

using Names = std::vector<std::string>;
using namespace std::string_literals;

class RegistryStoreTest : public test::IsolatedSettings {
protected:
    fs::path file = dir.path() / "registry.ini";
    RegistryFileStore store;
};

TEST_F(RegistryStoreTest, KeyPaths) {
    EXPECT_EQ(NormaliseKeyPath("\\Software\\velkor\\mru\\"), "Software\\velkor\\mru");
    EXPECT_EQ(NormaliseKeyPath("Software\\\\velkor"), "Software\\velkor");
    EXPECT_EQ(NormaliseKeyPath("\\"), "");
    EXPECT_TRUE(IsKeyAtOrBelow("\\SOFTWARE\\Velkor\\mru", "software\\velkor"));
    EXPECT_TRUE(IsKeyAtOrBelow("Software\\velkor", "\\Software\\velkor\\"));
    EXPECT_FALSE(IsKeyAtOrBelow("Software\\velkorx", "Software\\velkor"));
    EXPECT_FALSE(IsKeyAtOrBelow("Software", "Software\\velkor"));
}

TEST_F(RegistryStoreTest, TheEnvironmentNamesTheStoreFile) {
    EXPECT_EQ(store.FileName(), file);
    test::ScopedEnv none("VELKOR_REGISTRY", std::nullopt);
    EXPECT_EQ(store.FileName(), dir.path() / "config" / "velkor" / "registry.ini");
    store.WriteString(kMru, "Count", "0");
    EXPECT_TRUE(fs::exists(dir.path() / "config" / "velkor" / "registry.ini"));
}

TEST_F(RegistryStoreTest, ValuesRoundTripInStoredOrder) {
    store.WriteString(kMru, "Count", "2");
    store.WriteString(kMru, "MaxFiles", "8");
    store.WriteString(kMru, "H0", "/home/me/m1.pas");
    store.WriteString(kMru, "H1", "/home/me/m2.pas|3");
    store.WriteString("\\Software\\velkor", "missions", "/home/me/missions/");
    store.WriteString(kMru, "Count", "3"); // replaced in place
    EXPECT_EQ(ReadFile(file),
              "[Software\\velkor\\mru]\r\nCount=3\r\nMaxFiles=8\r\nH0=/home/me/m1.pas\r\n"
              "H1=/home/me/m2.pas|3\r\n\r\n[Software\\velkor]\r\nmissions=/home/me/missions/\r\n");
    EXPECT_EQ(store.ValueNames(kMru), (Names{"Count", "MaxFiles", "H0", "H1"}));
    EXPECT_EQ(store.ReadString(kMru, "H1"), "/home/me/m2.pas|3");
    EXPECT_EQ(store.ValueNames("Software\\velkor"), (Names{"missions"}));

    // A second store object over the same file sees everything: nothing is cached.
    RegistryFileStore again(file);
    EXPECT_EQ(again.ReadString("\\software\\VELKOR\\MRU", "maxfiles"), "8");
}

TEST_F(RegistryStoreTest, ValueNamesCompareWithoutCase) {
    store.WriteString(kMru, "H3", "/a.pas");
    EXPECT_EQ(store.ReadString(kMru, "h3"), "/a.pas");
    store.WriteString(kMru, "h3", "/b.pas");
    EXPECT_EQ(store.ValueNames(kMru), (Names{"H3"}));
    EXPECT_EQ(store.ReadString(kMru, "H3"), "/b.pas");
    EXPECT_TRUE(store.DeleteValue(kMru, "h3"));
    EXPECT_TRUE(store.ValueNames(kMru).empty());

    // A hand-edited file holding both spellings: the first counts, the second is dropped on the next write.
    WriteFile(file, "[software\\velkor\\MRU]\nH3=/first.pas\nh3=/second.pas\n");
    EXPECT_EQ(store.ValueNames(kMru), (Names{"H3"}));
    EXPECT_EQ(store.ReadString(kMru, "h3"), "/first.pas");
}

TEST_F(RegistryStoreTest, MissingKeysAndTheirCreation) {
    EXPECT_FALSE(store.KeyExists(kMru));
    EXPECT_FALSE(store.OpenKey(kMru, false));
    EXPECT_TRUE(store.ValueNames(kMru).empty());
    EXPECT_EQ(store.ReadString(kMru, "Count"), std::nullopt);
    EXPECT_FALSE(store.DeleteValue(kMru, "Count"));
    EXPECT_FALSE(store.DeleteKey(kMru));
    EXPECT_FALSE(fs::exists(file)) << "reading and failed deletions must not create the store";

    EXPECT_TRUE(store.OpenKey(kMru, true));
    EXPECT_EQ(ReadFile(file), "[Software\\velkor\\mru]\r\n");
    EXPECT_TRUE(store.KeyExists(kMru));
    EXPECT_TRUE(store.KeyExists("\\Software\\velkor")) << "a parent exists with its child";
    EXPECT_TRUE(store.OpenKey("\\SOFTWARE", false));
    EXPECT_EQ(store.ReadString(kMru, "Count"), std::nullopt);
}

TEST_F(RegistryStoreTest, DeleteKeyTakesTheKeysBelowItAlong) {
    store.WriteString("\\Software\\velkor", "lib", "/lib");
    store.WriteString(kMru, "Count", "0");
    store.WriteString("\\Software\\velkorx", "keep", "1");
    EXPECT_TRUE(store.DeleteKey("\\software\\velkor"));
    EXPECT_FALSE(store.KeyExists(kMru));
    EXPECT_FALSE(store.KeyExists("\\Software\\velkor"));
    EXPECT_EQ(store.ReadString("\\Software\\velkorx", "keep"), "1");
    EXPECT_EQ(ReadFile(file), "[Software\\velkorx]\r\nkeep=1\r\n");
}

TEST_F(RegistryStoreTest, AnyNameAndTextSurvivesTheFile) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "default value"},
        {"@", "at"},
        {"a=b", "x=y"},
        {"100%", "%41 stays %41"},
        {" blank ", "  padded  "},
        {"[x]", "[y]"},
        {";c", ";d"},
        {"line\r\nbreak", "two\r\nlines\n"},
        {"quote", "\"q\""},
        {std::string("n\0l", 3), std::string("\0\x01\x7F", 3)},
        {"utf8 \xC3\xA9", "\xE2\x9C\x93"},
        {"Installed To:", "C:\\Games\\SO\\"},
    };
    const std::string key = "\\Software\\odd]key\\%20";
    for (const auto& [name, value] : cases) store.WriteString(key, name, value);
    Names names;
    for (const auto& [name, value] : cases) {
        EXPECT_EQ(store.ReadString(key, name), value) << name;
        names.push_back(name);
    }
    EXPECT_EQ(store.ValueNames(key), names);
    EXPECT_TRUE(store.KeyExists(key));
    // Every line stays a plain "name=value" line.
    EXPECT_EQ(
        ReadFile(file).find("[Software\\odd%5Dkey\\%2520]\r\n@=default value\r\n%40=at\r\na%3Db=x=y\r\n"),
        0u);
}

TEST_F(RegistryStoreTest, HostileStoreFilesParse) {
    WriteFile(file, "garbage before\n[\\Software\\\\velkor\\]\nx=1\n%zz=%4\n=nameless\n"
                    "[SOFTWARE\\VELKOR]\nx=2\ny=3\n[unclosed\nz\0=\xFF\n"s);
    auto keys = ParseRegistryStore(ReadFile(file));
    ASSERT_EQ(keys.size(), 2u);
    EXPECT_EQ(keys[0].path, "Software\\velkor");
    EXPECT_EQ(store.ValueNames("Software\\velkor"), (Names{"x", "%zz", "y"}));
    EXPECT_EQ(store.ReadString("Software\\velkor", "x"), "1");
    EXPECT_EQ(store.ReadString("Software\\velkor", "%zz"), "%4");
    EXPECT_EQ(keys[1].path, "unclosed");
    EXPECT_EQ(FormatRegistryStore(ParseRegistryStore(FormatRegistryStore(keys))), FormatRegistryStore(keys));
}

TEST_F(RegistryStoreTest, AnUnreadableStoreIsNeverReplaced) {
    fs::create_directories(file);
    EXPECT_FALSE(store.KeyExists(kMru));
    EXPECT_THROW(store.WriteString(kMru, "Count", "1"), EInOutError);
    EXPECT_TRUE(fs::is_directory(file));
}

// A change rewrites only what it changes: every other line stays as the user (or anything else) left it.
TEST_F(RegistryStoreTest, AChangeKeepsEveryOtherLine) {
    std::string garbage;
    for (int i = 0; i < 65536; ++i) garbage += static_cast<char>((i * 131 + 7) % 256);
    const std::string kept = NormaliseLineBreaks(garbage);
    struct Case {
        std::string what;
        std::string before;
        std::function<void(RegistryFileStore&)> change;
        std::string after;
    };
    const std::vector<Case> cases = {
        {"a comment, a line without \"=\" and a second section of the key",
         "; mine\r\n[Software\\velkor\\mru]\r\nnoise\r\nCount=1\r\n[Software\\velkor\\mru]\r\nx=2\r\n",
         [](RegistryFileStore& s) { s.WriteString(kMru, "Count", "2"); },
         "; mine\r\n[Software\\velkor\\mru]\r\nnoise\r\nCount=2\r\n[Software\\velkor\\mru]\r\nx=2\r\n"},
        {"a duplicate value keeps its place; the first one counts",
         "[Software\\velkor\\mru]\r\nA=1\r\nA=old\r\n",
         [](RegistryFileStore& s) { s.WriteString(kMru, "a", "3"); },
         "[Software\\velkor\\mru]\r\nA=3\r\nA=old\r\n"},
        {"a new value goes at the end of its key's first section",
         "[Software\\velkor\\mru]\r\nA=1\r\n; tail\r\n[other]\r\nB=2\r\n",
         [](RegistryFileStore& s) { s.WriteString(kMru, "C", "x"); },
         "[Software\\velkor\\mru]\r\nA=1\r\nC=x\r\n; tail\r\n[other]\r\nB=2\r\n"},
        {"a deleted value goes from every section of its key, nothing else does",
         "[\\Software\\velkor\\mru]\r\nA=1\r\n;c\r\n[software\\VELKOR\\mru]\r\na=2\r\nB=3\r\n",
         [](RegistryFileStore& s) { EXPECT_TRUE(s.DeleteValue(kMru, "A")); },
         "[\\Software\\velkor\\mru]\r\n;c\r\n[software\\VELKOR\\mru]\r\nB=3\r\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        WriteFile(file, c.before);
        c.change(store);
        EXPECT_EQ(ReadFile(file), c.after);
    }
    // Binary garbage keeps every byte but its line breaks, which become CR LF.
    WriteFile(file, garbage);
    store.WriteString(kMru, "Count", "1");
    const std::string after = ReadFile(file);
    EXPECT_TRUE(after.starts_with(kept));
    EXPECT_TRUE(after.ends_with("\r\n[Software\\velkor\\mru]\r\nCount=1\r\n"));
    EXPECT_LT(after.size(), kept.size() + 40);
    EXPECT_EQ(store.ReadString(kMru, "Count"), "1");
}

} // namespace
} // namespace velkor
