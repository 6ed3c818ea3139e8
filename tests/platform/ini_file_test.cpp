#include "platform/ini_file.h"
#include "tests/platform/isolated_settings.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace velkor {
namespace {

using test::ReadFile;
using test::WriteFile;

class IniFileTest : public test::IsolatedSettings {
protected:
    fs::path file = dir.path() / "velkor.ini";
    TIniFile ini{file};
};

TEST_F(IniFileTest, MissingFileReadsDefaultsAndTheFirstWriteCreatesIt) {
    EXPECT_EQ(ini.ReadString("main", "sopath", "dflt"), "dflt");
    EXPECT_EQ(ini.ReadInteger("iffd", "maxdecodesize", 1024), 1024);
    EXPECT_TRUE(ini.ReadBool("compiler", "haltonerror", true));
    EXPECT_FALSE(ini.SectionExists("main"));
    EXPECT_TRUE(ini.ReadSections().empty());
    ini.EraseSection("main");
    ini.DeleteKey("main", "sopath");
    EXPECT_FALSE(fs::exists(file)) << "removing nothing must not create the file";

    TIniFile nested(dir.path() / "a" / "b" / "velkor.ini");
    nested.WriteString("main", "sopath", "x");
    EXPECT_EQ(ReadFile(dir.path() / "a" / "b" / "velkor.ini"), "[main]\r\nsopath=x\r\n");
}

TEST_F(IniFileTest, SectionsAndKeysStayInFileOrder) {
    ini.WriteString("main", "sopath", "/games/so");
    ini.WriteInteger("iffd", "maxdecodesize", 2048);
    ini.WriteString("main", "DirLoadExt", "/ext");
    ini.WriteBool("iffd", "UseSeparateThread", true);
    ini.WriteString("main", "sopath", "/games/so2"); // replaced where it stands
    EXPECT_EQ(ReadFile(file), "[main]\r\nsopath=/games/so2\r\nDirLoadExt=/ext\r\n\r\n"
                              "[iffd]\r\nmaxdecodesize=2048\r\nUseSeparateThread=1\r\n");
    EXPECT_EQ(ini.ReadSections(), (std::vector<std::string>{"main", "iffd"}));
    EXPECT_EQ(ini.ReadSection("main"), (std::vector<std::string>{"sopath", "DirLoadExt"}));
    auto values = ini.ReadSectionValues("iffd");
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0].key, "maxdecodesize");
    EXPECT_EQ(values[0].value, "2048");
    EXPECT_EQ(values[1].key, "UseSeparateThread");
    EXPECT_EQ(values[1].value, "1");
}

TEST_F(IniFileTest, NamesCompareWithoutCaseAndKeepTheirFirstSpelling) {
    ini.WriteString("Compiler", "Verbosity", "2");
    EXPECT_EQ(ini.ReadInteger("COMPILER", "verbosity", 1), 2);
    EXPECT_TRUE(ini.SectionExists("compiler"));
    EXPECT_TRUE(ini.ValueExists("compiler", "VERBOSITY"));
    EXPECT_FALSE(ini.ValueExists("compiler", "haltonerror"));
    ini.WriteString("compiler", "VERBOSITY", "3");
    EXPECT_EQ(ReadFile(file), "[Compiler]\r\nVerbosity=3\r\n");
}

TEST_F(IniFileTest, BooleansAreWrittenOneAndZeroAndReadAsIntegers) {
    ini.WriteBool("editor", "autosave", true);
    ini.WriteBool("editor", "disable_paramhint", false);
    EXPECT_EQ(ReadFile(file), "[editor]\r\nautosave=1\r\ndisable_paramhint=0\r\n");
    WriteFile(file, "[b]\r\nzero=0\r\nfive=5\r\nminus=-1\r\nhex=$10\r\nword=yes\r\nempty=\r\ntrue=true\r\n");
    EXPECT_FALSE(ini.ReadBool("b", "zero", true));
    EXPECT_TRUE(ini.ReadBool("b", "five", false));
    EXPECT_TRUE(ini.ReadBool("b", "minus", false));
    EXPECT_TRUE(ini.ReadBool("b", "hex", false));
    for (const char* key : {"word", "empty", "true", "missing"}) {
        EXPECT_TRUE(ini.ReadBool("b", key, true)) << key;
        EXPECT_FALSE(ini.ReadBool("b", key, false)) << key;
    }
}

TEST_F(IniFileTest, IntegersTakeHexadecimalAndFallBackOnText) {
    WriteFile(file, "[iffd]\nmaxdecodesize=abc\nhex=$1F\nc=0x10\nneg=-7\nbig=99999999999\n");
    EXPECT_EQ(ini.ReadInteger("iffd", "maxdecodesize", 1024), 1024);
    EXPECT_EQ(ini.ReadInteger("iffd", "hex", 0), 31);
    EXPECT_EQ(ini.ReadInteger("iffd", "c", 0), 16);
    EXPECT_EQ(ini.ReadInteger("iffd", "neg", 0), -7);
    EXPECT_EQ(ini.ReadInteger("iffd", "big", 5), 5);
    ini.WriteInteger("iffd", "neg", -2147483647 - 1);
    EXPECT_EQ(ini.ReadString("iffd", "neg", ""), "-2147483648");
}

TEST_F(IniFileTest, EraseSectionAndDeleteKeyLeaveEverythingElse) {
    WriteFile(file,
              "; settings\n[main]\nsopath=x\n\n[autoloadext]\n/a.so=1\n/b.so=1\n\n[editor]\nautosave=1\n"
              "[AUTOLOADEXT]\n/c.so=1\n");
    ini.EraseSection("AutoLoadExt");
    EXPECT_FALSE(ini.SectionExists("autoloadext"));
    EXPECT_EQ(ReadFile(file), "; settings\r\n[main]\r\nsopath=x\r\n\r\n[editor]\r\nautosave=1\r\n");
    ini.WriteString("autoloadext", "/d.so", "1");
    ini.DeleteKey("MAIN", "SOPATH");
    EXPECT_EQ(ReadFile(file),
              "; settings\r\n[main]\r\n\r\n[editor]\r\nautosave=1\r\n\r\n[autoloadext]\r\n/d.so=1\r\n");
    EXPECT_EQ(ini.ReadSection("autoloadext"), (std::vector<std::string>{"/d.so"}));
}

TEST_F(IniFileTest, ForeignFilesAreReadAsTheSystemsIniRoutinesReadThem) {
    // LF line breaks, a byte-order mark, blanks around names, quotes, comments, keys outside any section,
    // duplicate sections and keys (the first counts), lines without "=".
    WriteFile(file, "\xEF\xBB\xBForphan=1\n[ main ]\n  sopath  =  C:\\Games\\SO  \n; sopath=comment\nnoise\n"
                    "q=\"  quoted  \"\nsq='single'\nhalf=\"open\nsopath=second\n[Main]\nextra=1\n");
    EXPECT_EQ(ini.ReadSections(), std::vector<std::string>{"main"});
    EXPECT_EQ(ini.ReadString("main", "sopath", ""), "C:\\Games\\SO");
    EXPECT_EQ(ini.ReadString("main", "q", ""), "  quoted  ");
    EXPECT_EQ(ini.ReadString("main", "sq", ""), "single");
    EXPECT_EQ(ini.ReadString("main", "half", ""), "\"open");
    EXPECT_FALSE(ini.ValueExists("main", "noise"));
    EXPECT_FALSE(ini.ValueExists("main", "extra"));
    EXPECT_EQ(ini.ReadSection("main"), (std::vector<std::string>{"sopath", "q", "sq", "half"}));

    // A write keeps every other line as it was, the mark included, and ends lines in CR LF.
    ini.WriteString("main", "sq", "new");
    EXPECT_EQ(ReadFile(file), "\xEF\xBB\xBForphan=1\r\n[ main ]\r\n  sopath  =  C:\\Games\\SO  \r\n"
                              "; sopath=comment\r\nnoise\r\nq=\"  quoted  \"\r\nsq=new\r\nhalf=\"open\r\n"
                              "sopath=second\r\n[Main]\r\nextra=1\r\n");
}

TEST_F(IniFileTest, OddValuesComeBackExactly) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"path", "C:\\Program Files\\Velkor\\"},
        {"blanks", "  two sides  "},
        {"tab", "\tlead"},
        {"quoted", "\"already quoted\""},
        {"single", "'single'"},
        {"onequote", "\""},
        {"mixed", "\"a'"},
        {"equals", "a=b=c"},
        {"semicolon", ";not a comment"},
        {"bracket", "[not a section]"},
        {"utf8", "D\xC3\xA9j\xC3\xA0 vu \xE2\x9C\x93"},
        {"empty", ""},
        {"nul", std::string("a\0b", 3)},
        {"key with blanks", "v"},
        {"/home/user/ext.so", "1"},
    };
    for (const auto& [key, value] : cases) ini.WriteString("odd", key, value);
    for (const auto& [key, value] : cases) EXPECT_EQ(ini.ReadString("odd", key, "?"), value) << key;
    EXPECT_EQ(ini.ReadSection("odd").size(), cases.size());
}

TEST_F(IniFileTest, WhatTheFormatCannotHoldIsRefusedAndNothingChanges) {
    ini.WriteString("main", "sopath", "x");
    const std::string before = ReadFile(file);
    EXPECT_THROW(ini.WriteString("main", "a=b", "1"), EIniFile);
    EXPECT_THROW(ini.WriteString("main", " lead", "1"), EIniFile);
    EXPECT_THROW(ini.WriteString("main", "", "1"), EIniFile);
    EXPECT_THROW(ini.WriteString("main", ";c", "1"), EIniFile);
    EXPECT_THROW(ini.WriteString("main", "[k", "1"), EIniFile);
    EXPECT_THROW(ini.WriteString("a]b", "k", "1"), EIniFile);
    EXPECT_THROW(ini.WriteString("main", "k", "line\r\nbreak"), EIniFile);
    EXPECT_THROW(ini.WriteString("main", "k", "lf\n"), EIniFile);
    try {
        ini.WriteString("main", "a=b", "1");
    } catch (const EIniFile& e) {
        EXPECT_STREQ(e.what(), "TIniFile: Key name cannot be stored: \"a=b\"");
    }
    EXPECT_EQ(ReadFile(file), before);
}

TEST_F(IniFileTest, AnUnreadableFileReadsAsDefaultsButIsNeverReplaced) {
    fs::create_directories(file); // a folder where the file should be
    EXPECT_EQ(ini.ReadString("main", "sopath", "d"), "d");
    EXPECT_THROW(ini.WriteString("main", "sopath", "x"), EInOutError);
    EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(IniFileTest, SettingsFileLocation) {
    EXPECT_EQ(IniFilePath(), file) << "VELKOR_INI names the file";

    test::ScopedEnv noIni("VELKOR_INI", std::nullopt);
    fs::create_directories(dir.path() / "bin");
    SetExecutableFolderForTesting((dir.path() / "bin").string());
    EXPECT_EQ(IniFilePath(), dir.path() / "bin" / "velkor.ini") << "beside a writable executable";

    SetExecutableFolderForTesting((dir.path() / "no such folder").string());
    EXPECT_EQ(IniFilePath(), dir.path() / "config" / "velkor" / "velkor.ini");
    test::ScopedEnv noConfig("XDG_CONFIG_HOME", std::nullopt);
#ifdef _WIN32
    // Windows keeps a user's settings under the roaming application data folder.
    test::ScopedEnv appData("APPDATA", (dir.path() / "appdata").string());
    const fs::path expected = dir.path() / "appdata" / "velkor" / "velkor.ini";
#else
    test::ScopedEnv home("HOME", (dir.path() / "home").string());
    const fs::path expected = dir.path() / "home" / ".config" / "velkor" / "velkor.ini";
#endif
    EXPECT_EQ(IniFilePath(), expected);
    TIniFile created(IniFilePath());
    created.WriteBool("compiler", "fast_scanner", true);
    EXPECT_EQ(ReadFile(expected), "[compiler]\r\nfast_scanner=1\r\n");
}

} // namespace
} // namespace velkor
