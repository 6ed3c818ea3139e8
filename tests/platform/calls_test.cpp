// Runs the cases under tests/cases/platform: each line of a <name>.case calls one function of the platform
// layer with the words after its name and, after "=", names the words it must give back ("!" and a text:
// the exception it must throw). "file" lays out a file of the case's folder, "content" and "absent"
// check one. tests/README.md describes the lines.
#include "platform/ini_file.h"
#include "platform/numbers.h"
#include "platform/registry.h"
#include "platform/registry_file_store.h"
#include "platform/strings.h"
#include "platform/text_file.h"
#include "tests/platform/isolated_settings.h"
#include "tests/support/case_words.h"

#include <gtest/gtest.h>

#include <charconv>
#include <functional>
#include <map>
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

class PlatformCase : public IsolatedSettings, public ::testing::WithParamInterface<std::string> {
protected:
    std::optional<TIniFile> ini{dir.path() / "velkor.ini"};
    RegistryFileStore reg;

    // Each call takes the words after its name.
    using Call = std::function<Words(const Words&)>;
    const std::map<std::string, Call> calls = {
        // Numbers and texts. "f" after a number makes it a float first.
        {"StrToInt", [](const Words& a) { return Of(StrToInt(a.at(0))); }},
        {"StrToFloat", [](const Words& a) { return Of(StrToFloat(a.at(0))); }},
        {"FormatFloat",
         [](const Words& a) {
             const double v = a.at(1).ends_with('f') ? static_cast<float>(std::stod(a[1])) : std::stod(a[1]);
             return Words{FormatFloat(a.at(0), v)};
         }},
        {"FormatThousands", [](const Words& a) { return Words{FormatThousands(std::stoll(a.at(0)))}; }},
        {"IntToHex",
         [](const Words& a) { return Words{IntToHex(std::stoul(a.at(0), nullptr, 0), std::stoi(a.at(1)))}; }},
        {"UpperCase", [](const Words& a) { return Words{UpperCase(a.at(0))}; }},
        {"LowerCase", [](const Words& a) { return Words{LowerCase(a.at(0))}; }},
        {"SameText", [](const Words& a) { return Of(SameText(a.at(0), a.at(1))); }},
        {"Trim", [](const Words& a) { return Words{std::string(Trim(a.at(0)))}; }},
        {"FindNoCase", [](const Words& a) { return Words{std::to_string(FindNoCase(a.at(0), a.at(1)))}; }},
        {"ReplaceAllNoCase",
         [](const Words& a) { return Words{ReplaceAllNoCase(a.at(0), a.at(1), a.at(2))}; }},
        {"NormaliseLineBreaks", [](const Words& a) { return Words{NormaliseLineBreaks(a.at(0))}; }},
        {"SplitLines", [](const Words& a) { return SplitLines(a.at(0)); }},
        {"JoinLinesCrLf", [](const Words& a) { return Words{JoinLinesCrLf(a)}; }},
        {"IsValidUtf8", [](const Words& a) { return Of(IsValidUtf8(a.at(0))); }},
        {"VisibleBytes", [](const Words& a) { return Words{VisibleBytes(a.at(0), a.size() > 1)}; }},
        // The settings file.
        {"ini.open",
         [this](const Words& a) {
             ini.emplace(dir.path() / a.at(0));
             return Words{};
         }},
        {"ini.read", [this](const Words& a) { return Words{ini->ReadString(a.at(0), a.at(1), a.at(2))}; }},
        {"ini.readint",
         [this](const Words& a) {
             return Words{std::to_string(ini->ReadInteger(a.at(0), a.at(1), std::stoi(a.at(2))))};
         }},
        {"ini.readbool",
         [this](const Words& a) { return Of(ini->ReadBool(a.at(0), a.at(1), a.at(2) == "true")); }},
        {"ini.write",
         [this](const Words& a) {
             ini->WriteString(a.at(0), a.at(1), a.at(2));
             return Words{};
         }},
        {"ini.writeint",
         [this](const Words& a) {
             ini->WriteInteger(a.at(0), a.at(1), std::stoi(a.at(2)));
             return Words{};
         }},
        {"ini.writebool",
         [this](const Words& a) {
             ini->WriteBool(a.at(0), a.at(1), a.at(2) == "true");
             return Words{};
         }},
        {"ini.erase",
         [this](const Words& a) {
             ini->EraseSection(a.at(0));
             return Words{};
         }},
        {"ini.delete",
         [this](const Words& a) {
             ini->DeleteKey(a.at(0), a.at(1));
             return Words{};
         }},
        {"ini.has",
         [this](const Words& a) {
             return Of(a.size() == 1 ? ini->SectionExists(a[0]) : ini->ValueExists(a.at(0), a.at(1)));
         }},
        {"ini.sections", [this](const Words&) { return ini->ReadSections(); }},
        {"ini.keys", [this](const Words& a) { return ini->ReadSection(a.at(0)); }},
        {"ini.values",
         [this](const Words& a) {
             Words out;
             for (const auto& e : ini->ReadSectionValues(a.at(0))) out.push_back(e.key + "=" + e.value);
             return out;
         }},
        // The registry store.
        {"NormaliseKeyPath", [](const Words& a) { return Words{NormaliseKeyPath(a.at(0))}; }},
        {"IsKeyAtOrBelow", [](const Words& a) { return Of(IsKeyAtOrBelow(a.at(0), a.at(1))); }},
        {"reg.write",
         [this](const Words& a) {
             reg.WriteString(a.at(0), a.at(1), a.at(2));
             return Words{};
         }},
        {"reg.read", [this](const Words& a) { return Of(reg.ReadString(a.at(0), a.at(1))); }},
        {"reg.names", [this](const Words& a) { return reg.ValueNames(a.at(0)); }},
        {"reg.exists", [this](const Words& a) { return Of(reg.KeyExists(a.at(0))); }},
        {"reg.open", [this](const Words& a) { return Of(reg.OpenKey(a.at(0), a.at(1) == "create")); }},
        {"reg.delvalue", [this](const Words& a) { return Of(reg.DeleteValue(a.at(0), a.at(1))); }},
        {"reg.delkey", [this](const Words& a) { return Of(reg.DeleteKey(a.at(0))); }},
        {"reg.again",
         [this](const Words& a) {
             return Of(RegistryFileStore(reg.FileName()).ReadString(a.at(0), a.at(1)));
         }},
        {"reg.keys",
         [this](const Words&) {
             Words out;
             for (const auto& key : ParseRegistryStore(ReadFile(reg.FileName()))) out.push_back(key.path);
             return out;
         }},
        // Files of the case's folder.
        {"file",
         [this](const Words& a) {
             WriteFile(dir / a.at(0), a.at(1));
             return Words{};
         }},
        {"rm",
         [this](const Words& a) {
             fs::remove_all(dir / a.at(0));
             return Words{};
         }},
        {"mkdir",
         [this](const Words& a) {
             fs::create_directories(dir / a.at(0));
             return Words{};
         }},
        {"content", [this](const Words& a) { return Words{ReadFile(dir / a.at(0))}; }},
        {"starts", [this](const Words& a) { return Of(ReadFile(dir / a.at(0)).starts_with(a.at(1))); }},
        {"kind",
         [this](const Words& a) {
             const fs::path p = dir / a.at(0);
             return Words{fs::is_directory(p) ? "folder" : fs::exists(p) ? "file" : "none"};
         }},
    };

    void Line(const Words& words) {
        const auto split =
            std::find_if(words.begin(), words.end(), [](const auto& w) { return w == "=" || w == "!"; });
        const Words args(words.begin() + 1, split);
        const auto call = calls.find(words[0]);
        ASSERT_NE(call, calls.end()) << "no call " << words[0];
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
        const Words words = SplitWords(line);
        if (words.empty() || words[0].starts_with("#")) continue;
        SCOPED_TRACE(GetParam() + ".case:" + std::to_string(number) + ": " + line);
        Line(words);
    }
}

INSTANTIATE_TEST_SUITE_P(Platform, PlatformCase, ::testing::ValuesIn(CaseNames(kCases, ".case")),
                         [](const auto& param) { return TestNameOf(param.param); });

} // namespace
} // namespace velkor::test
