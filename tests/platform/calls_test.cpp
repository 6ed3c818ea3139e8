// Runs the cases under tests/cases/platform: each line of a <name>.case calls one function of the platform
// layer with the words after its name and, after "=", names the words it must give back ("!" and a text:
// the exception it must throw). "file" lays out a file of the case's folder, "content" and "absent"
// check one. tests/README.md describes the lines.
#include "platform/atomic_file_writer.h"
#include "platform/executable_path.h"
#include "platform/ini_file.h"
#include "platform/named_folders.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"
#include "platform/registry.h"
#include "platform/registry_file_store.h"
#include "platform/strings.h"
#include "platform/text_file.h"
#include "platform/wine_registry.h"
#include "tests/platform/isolated_settings.h"
#include "tests/support/case_words.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <sstream>

namespace fs = std::filesystem;

namespace velkor::test {
namespace {

const fs::path kCases = fs::path(VELKOR_SOURCE_DIR) / "tests/cases/platform";

using Words = std::vector<std::string>;

std::string Number(double v) {
    char buf[64];
    return std::string(buf, std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed).ptr);
}

Words Of(bool v) {
    return {v ? "true" : "false"};
}
template <typename T>
Words Of(const std::optional<T>& v) {
    if (!v) return {};
    if constexpr (std::is_same_v<T, std::string>)
        return {*v};
    else
        return {Number(static_cast<double>(*v))};
}

// name=value words of what has a name and a value.
template <typename T>
Words Pairs(const std::vector<T>& entries) {
    Words out;
    for (const auto& e : entries) {
        if constexpr (requires { e.key; })
            out.push_back(e.key + "=" + e.value);
        else if constexpr (requires { e.folder; })
            out.push_back(e.name + "=" + e.folder);
        else
            out.push_back(e.name + "=" + e.data);
    }
    return out;
}

std::optional<std::string> Found(const std::optional<fs::path>& path) {
    return path ? std::optional(path->string()) : std::nullopt;
}

std::string Octal(unsigned v) {
    std::string out;
    for (; v; v /= 8) out.insert(out.begin(), static_cast<char>('0' + v % 8));
    return out;
}

// The names in a folder, sorted.
Words Names(const fs::path& folder) {
    Words out;
    for (const auto& entry : fs::directory_iterator(folder)) out.push_back(entry.path().filename().string());
    std::sort(out.begin(), out.end());
    return out;
}

Words Paths(const std::vector<RegistryKey>& keys) {
    Words out;
    for (const auto& key : keys) out.push_back(key.path);
    return out;
}

// A call of the case files: its name and the words it gives back for the words `a` after its name.
#define CALL(name, ...)                                                                                      \
    {                                                                                                        \
        name, [&]([[maybe_unused]] const Words& a) -> Words { return __VA_ARGS__; }                          \
    }
#define DO(name, ...)                                                                                        \
    {                                                                                                        \
        name, [&]([[maybe_unused]] const Words& a) -> Words {                                                \
            __VA_ARGS__;                                                                                     \
            return {};                                                                                       \
        }                                                                                                    \
    }

class PlatformCase : public IsolatedSettings, public ::testing::WithParamInterface<std::string> {
protected:
    std::optional<TIniFile> ini{dir.path() / "velkor.ini"};
    std::list<std::string> envNames; // the names the variables below are set under
    std::vector<std::unique_ptr<ScopedEnv>> env;
    RegistryFileStore reg;

    // Each call takes the words after its name.
    using Call = std::function<Words(const Words&)>;
    const std::map<std::string, Call> calls = {
        // Numbers and texts. "f" after a number makes it a float first.
        CALL("StrToInt", Of(StrToInt(a.at(0)))),
        CALL("StrToFloat", Of(StrToFloat(a.at(0)))),
        CALL("FormatFloat",
             {FormatFloat(a.at(0), a.at(1).ends_with('f') ? std::stof(a[1]) : std::stod(a[1]))}),
        CALL("FormatThousands", {FormatThousands(std::stoll(a.at(0)))}),
        CALL("IntToHex", {IntToHex(std::stoul(a.at(0), nullptr, 0), std::stoi(a.at(1)))}),
        CALL("UpperCase", {UpperCase(a.at(0))}),
        CALL("LowerCase", {LowerCase(a.at(0))}),
        CALL("SameText", Of(SameText(a.at(0), a.at(1)))),
        CALL("Trim", {std::string(Trim(a.at(0)))}),
        CALL("FindNoCase", {std::to_string(FindNoCase(a.at(0), a.at(1)))}),
        CALL("ReplaceAllNoCase", {ReplaceAllNoCase(a.at(0), a.at(1), a.at(2))}),
        CALL("NormaliseLineBreaks", {NormaliseLineBreaks(a.at(0))}),
        CALL("SplitLines", SplitLines(a.at(0))),
        CALL("JoinLinesCrLf", {JoinLinesCrLf(a)}),
        CALL("IsValidUtf8", Of(IsValidUtf8(a.at(0)))),
        CALL("VisibleBytes", {VisibleBytes(a.at(0), a.size() > 1)}),
        // The settings file.
        DO("ini.open", ini.emplace(dir.path() / a.at(0))),
        CALL("ini.read", {ini->ReadString(a.at(0), a.at(1), a.at(2))}),
        CALL("ini.readint", {std::to_string(ini->ReadInteger(a.at(0), a.at(1), std::stoi(a.at(2))))}),
        CALL("ini.readbool", Of(ini->ReadBool(a.at(0), a.at(1), a.at(2) == "true"))),
        DO("ini.write", ini->WriteString(a.at(0), a.at(1), a.at(2))),
        DO("ini.writeint", ini->WriteInteger(a.at(0), a.at(1), std::stoi(a.at(2)))),
        DO("ini.writebool", ini->WriteBool(a.at(0), a.at(1), a.at(2) == "true")),
        DO("ini.erase", ini->EraseSection(a.at(0))),
        DO("ini.delete", ini->DeleteKey(a.at(0), a.at(1))),
        CALL("ini.has", Of(a.size() == 1 ? ini->SectionExists(a[0]) : ini->ValueExists(a.at(0), a.at(1)))),
        CALL("ini.sections", ini->ReadSections()),
        CALL("ini.keys", ini->ReadSection(a.at(0))),
        CALL("ini.values", Pairs(ini->ReadSectionValues(a.at(0)))),
        // The registry store.
        CALL("NormaliseKeyPath", {NormaliseKeyPath(a.at(0))}),
        CALL("IsKeyAtOrBelow", Of(IsKeyAtOrBelow(a.at(0), a.at(1)))),
        DO("reg.write", reg.WriteString(a.at(0), a.at(1), a.at(2))),
        CALL("reg.read", Of(reg.ReadString(a.at(0), a.at(1)))),
        CALL("reg.names", reg.ValueNames(a.at(0))),
        CALL("reg.exists", Of(reg.KeyExists(a.at(0)))),
        CALL("reg.open", Of(reg.OpenKey(a.at(0), a.at(1) == "create"))),
        CALL("reg.delvalue", Of(reg.DeleteValue(a.at(0), a.at(1)))),
        CALL("reg.delkey", Of(reg.DeleteKey(a.at(0)))),
        // A second store over the same file: nothing is cached.
        CALL("reg.again", Of(RegistryFileStore(reg.FileName()).ReadString(a.at(0), a.at(1)))),
        CALL("reg.keys", Paths(ParseRegistryStore(ReadFile(reg.FileName())))),
        // Wine's registry text: a key's string values.
        CALL("wine.values", Pairs(WineKeyValues(a.at(0), a.at(1)).value_or(std::vector<RegistryValue>{}))),
        CALL("wine.has", Of(WineKeyValues(a.at(0), a.at(1)).has_value())),
        CALL("wine.exists", Of(WineKeyExists(a.at(0), a.at(1)))),
        // Paths as the games write them, and the named folders.
        CALL("FindExisting", Of(Found(FindExisting(a.at(0), a.size() > 1 ? fs::path(a[1]) : fs::path())))),
        CALL("ResolvePath", {ResolvePath(a.at(0), a.at(1)).string()}),
        CALL("HasFolder", Of(HasFolder(a.at(0)))),
        CALL("IsAbsoluteGamePath", Of(IsAbsoluteGamePath(a.at(0)))),
        CALL("ToNativePath", {ToNativePath(a.at(0)).string()}),
        DO("SetExecutableFolder", SetExecutableFolderForTesting(a.at(0))),
        CALL("NamedFolders", Pairs(NamedFolders())),
        CALL("ExpandPath", {ExpandPath(a.at(0))}),
        DO("AddNamedFolder", AddNamedFolder(a.at(0), a.at(1))),
        DO("ResetNamedFolders", ResetNamedFoldersForTesting()),
        CALL("GameFolderProphecy", {GameFolderProphecy()}),
        CALL("GameFolderSecretOps", {GameFolderSecretOps()}),
        DO("machine.write", MachineRegistry().WriteString(a.at(0), a.at(1), a.at(2))),
        CALL("machine.names", MachineRegistry().ValueNames(a.at(0))),
        CALL("machine.delkey", Of(MachineRegistry().DeleteKey(a.at(0)))),
        CALL("machine.exists", Of(MachineRegistry().KeyExists(a.at(0)))),
        CALL("wine.read", Of(WineRegistry().ReadString(a.at(0), a.at(1)))),
        CALL("wine.names", WineRegistry().ValueNames(a.at(0))),
        CALL("wine.keyexists", Of(WineRegistry().KeyExists(a.at(0)))),
        DO("wine.write", WineRegistry().WriteString(a.at(0), a.at(1), a.at(2))),
        DO("env",
           env.push_back(std::make_unique<ScopedEnv>(envNames.emplace_back(a.at(0)).c_str(), a.at(1)))),
        // Files of the case's folder.
        DO("file", WriteFile(dir / a.at(0), a.at(1))),
        DO("rm", fs::remove_all(dir / a.at(0))),
        DO("mkdir", fs::create_directories(dir / a.at(0))),
        DO("WriteFileAtomic", WriteFileAtomic(dir / a.at(0), std::string_view(a.at(1)))),
        DO("symlink", fs::create_symlink(a.at(0), dir / a.at(1))),
        DO("hardlink", fs::create_hard_link(dir / a.at(0), dir / a.at(1))),
        DO("chmod", fs::permissions(dir / a.at(0), fs::perms(std::stoi(a.at(1), nullptr, 8)))),
        CALL("mode", {Octal(static_cast<unsigned>(fs::status(dir / a.at(0)).permissions()))}),
        CALL("islink", Of(fs::is_symlink(dir / a.at(0)))),
        CALL("files", Names(dir / a.at(0))),
        CALL("content", {ReadFile(dir / a.at(0))}),
        CALL("starts", Of(ReadFile(dir / a.at(0)).starts_with(a.at(1)))),
        CALL("kind", {fs::is_directory(dir / a.at(0)) ? "folder"
                      : fs::exists(dir / a.at(0))     ? "file"
                                                      : "none"}),
    };

    void Line(Words words) {
        for (std::string& w : words) w = ExpandFolder(w, dir.path());
        const auto split =
            std::find_if(words.begin(), words.end(), [](const auto& w) { return w == "=" || w == "!"; });
        const Words args(words.begin() + 1, split);
        const auto call = calls.find(words[0]);
        ASSERT_TRUE(call != calls.end()) << "no call " << words[0];
        std::optional<std::string> thrown;
        Words got;
        try {
            got = call->second(args);
        } catch (const Exception& e) {
            thrown = e.what();
        }
        if (split != words.end() && *split == "!") {
            ASSERT_TRUE(thrown) << "no exception";
            if (split + 1 != words.end()) {
                EXPECT_EQ(*thrown, *(split + 1));
            }
            return;
        }
        ASSERT_FALSE(thrown) << *thrown;
        if (split != words.end()) {
            EXPECT_EQ(got, Words(split + 1, words.end()));
        }
    }
};

TEST_P(PlatformCase, Runs) {
    std::istringstream script(ReadFile(kCases / (GetParam() + ".case")));
    std::string line;
    for (int number = 1; std::getline(script, line); ++number) {
        if (!ForThisSystem(line)) continue;
#ifdef _WIN32
        if (line == "posix-only") GTEST_SKIP() << "a POSIX system's case";
#endif
        const Words words = SplitWords(line);
        if (words.empty() || words[0].starts_with("#") || words[0] == "posix-only") continue;
        SCOPED_TRACE(GetParam() + ".case:" + std::to_string(number) + ": " + line);
        Line(words);
    }
}

INSTANTIATE_TEST_SUITE_P(Platform, PlatformCase, ::testing::ValuesIn(CaseNames(kCases, ".case")),
                         [](const auto& param) { return TestNameOf(param.param); });

} // namespace
} // namespace velkor::test
