// What velkorc may write and read: outputs confined to their places, never over an input, inputs that
// are regular files, failures with the system's reason.
#include "tests/platform/isolated_settings.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace velkor::test {
namespace {

bool Contains(const std::string& hay, const std::string& needle) {
    return hay.find(needle) != std::string::npos;
}

// A text with one output block per name, each a 22-byte file.
std::string Blocks(const std::vector<std::string>& names) {
    std::string text;
    for (const auto& name : names)
        text += "IFF \"" + name + "\"\n{\n FORM \"MISS\"\n {\n  CHUNK \"NAME\" { CSTRING \"a\" }\n }\n}\n";
    return text;
}

// dir/work is the current folder, dir/work/src holds the input, dir/outside is somewhere else; a Wine
// prefix maps Z: to the root as Wine does.
class OutputConfinement : public IsolatedSettings {
protected:
    fs::path work = dir.path() / "work";
    fs::path src = work / "src";
    fs::path outside = dir.path() / "outside";
    OutputConfinement() {
        fs::create_directories(src);
        fs::create_directories(outside);
        fs::create_directories(dir.path() / "wine" / "dosdevices");
        fs::create_symlink("/", dir.path() / "wine" / "dosdevices" / "z:");
    }
    std::string WineName(const fs::path& path) const {
        std::string name = "Z:" + path.string();
        for (char& c : name)
            if (c == '/') c = '\\';
        return name;
    }
};

TEST_F(OutputConfinement, NamesFromTheInputStayInTheirPlacesUnlessAllowed) {
    ScopedEnv prefix("WINEPREFIX", (dir.path() / "wine").string());
    struct Case {
        std::string name;               // as the text names the file
        std::vector<std::string> extra; // further options
        fs::path lands;                 // where it goes
        bool allowed;                   // without --allow-output-anywhere
    };
    const std::vector<Case> cases = {
        {"a.mis", {}, work / "a.mis", true},
        {"a.mis", {"--out-dir", "out"}, work / "out" / "a.mis", true},
        {"src/deeper/b.mis", {}, src / "deeper" / "b.mis", true},
        {"../outside/c.mis", {}, outside / "c.mis", false},
        {"../outside/c.mis", {"--out-dir", "out"}, outside / "c.mis", false},
        {(outside / "d.mis").string(), {}, outside / "d.mis", false},
        {WineName(outside / "e.mis"), {}, outside / "e.mis", false},
        {"src/../../outside/f.mis", {}, outside / "f.mis", false},
    };
    fs::create_directories(src / "deeper");
    for (const Case& c : cases) {
        for (const bool lift : {false, true}) {
            SCOPED_TRACE(c.name + (lift ? " (allowed anywhere)" : ""));
            fs::remove(c.lands);
            WriteFile(src / "t.txt", Blocks({c.name}));
            std::vector<std::string> args = {"asm", "src/t.txt"};
            args.insert(args.end(), c.extra.begin(), c.extra.end());
            if (lift) args.push_back("--allow-output-anywhere");
            const ToolResult r = RunVelkorc(args, work);
            if (c.allowed || lift) {
                EXPECT_EQ(r.exitCode, 0) << r.err;
                EXPECT_EQ(ReadFile(c.lands).size(), 22u);
            } else {
                EXPECT_EQ(r.exitCode, 2);
                EXPECT_EQ(r.err, "Cannot write file \"" + c.lands.string() +
                                     "\": it lies outside the output folder, the source's folder and the "
                                     "named folders (use --allow-output-anywhere to allow it)\n");
                EXPECT_FALSE(fs::exists(c.lands));
            }
        }
    }
}

TEST_F(OutputConfinement, UnitsAndTheirOutputPathsAreConfinedToo) {
    const std::vector<std::pair<std::string, fs::path>> units = {
        {"iff \"../outside/raw.bin\"\r\n{ form \"DATA\" { } }\r\n", outside / "raw.bin"},
        {"mission M1;\r\n#SETOUTPUTPATH(\"" + outside.string() + "\");\r\nvar a;\r\n", outside / "M1.mis"},
        {"series S;\r\n#FILE \"m2.pas\";\r\n", outside / "M2.mis"},
    };
    WriteFile(src / "m2.pas", "mission M2;\r\n#SETOUTPUTPATH(\"" + outside.string() + "\");\r\nvar a;\r\n");
    for (const auto& [unit, lands] : units) {
        SCOPED_TRACE(unit);
        WriteFile(src / "u.pas", unit);
        const ToolResult refused = RunVelkorc({"build", "src/u.pas"}, work);
        EXPECT_NE(refused.exitCode, 0);
        EXPECT_TRUE(Contains(refused.err, "Cannot write file \"" + lands.string() + "\": it lies outside"))
            << refused.err;
        EXPECT_FALSE(fs::exists(lands));
        const ToolResult allowed = RunVelkorc({"build", "--allow-output-anywhere", "src/u.pas"}, work);
        EXPECT_EQ(allowed.exitCode, 0) << allowed.err;
        EXPECT_TRUE(fs::exists(lands));
        fs::remove(lands);
    }
}

TEST_F(OutputConfinement, AsmStopsAtTheFirstFileItCannotWrite) {
    WriteFile(src / "t.txt", Blocks({"one.mis", "../outside/two.mis", "three.mis"}));
    const ToolResult r = RunVelkorc({"asm", "src/t.txt"}, work);
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(r.out, "** one.mis ** (22 bytes)\n");
    EXPECT_TRUE(fs::exists(work / "one.mis"));
    EXPECT_FALSE(fs::exists(outside / "two.mis"));
    EXPECT_FALSE(fs::exists(work / "three.mis"));
}

// Whatever name leads to it, an input is never an output of the same run.
TEST(OutputIsInput, IsRefusedByDeviceAndInode) {
    TempDir dir;
    WriteFile(dir / "t.txt", Blocks({"t.txt"}));
    WriteFile(dir / "link.txt", Blocks({"other.txt"}));
    fs::create_hard_link(dir / "link.txt", dir / "other.txt");
    WriteFile(dir / "m.pas", "mission M;\r\nvar a;\r\n");
    fs::create_symlink("m.pas", dir / "alias.pas");
    const std::string mis =
        std::string("FORM") + std::string("\0\0\0\x0C", 4) + "MISSNAME" + std::string("\0\0\0\0", 4);
    WriteFile(dir / "p.mis", mis);
    struct Case {
        std::vector<std::string> args;
        std::string input; // the file that must keep its bytes
        std::string message;
    };
    const std::vector<Case> cases = {
        {{"asm", "t.txt"}, "t.txt", "Cannot write file \"t.txt\": it is an input of this run\n"},
        {{"asm", "link.txt"}, "link.txt", "Cannot write file \"other.txt\": it is an input of this run\n"},
        {{"compile", "-v", "0", "m.pas", "-o", "m.pas"},
         "m.pas",
         "Cannot write file \"m.pas\": it is an input of this run\n"},
        {{"compile", "-v", "0", "m.pas", "-o", "alias.pas"},
         "m.pas",
         "Cannot write file \"alias.pas\": it is an input of this run\n"},
        {{"decode", "p.mis", "-o", "p.mis"},
         "p.mis",
         "velkorc: p.mis: Cannot write file \"p.mis\": it is an input of this run\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args.back());
        const std::string before = ReadFile(dir / c.input);
        const ToolResult r = RunVelkorc(c.args, dir.path());
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_EQ(r.err, c.message);
        EXPECT_EQ(ReadFile(dir / c.input), before);
    }
}

TEST(NonRegularInputs, AreRefusedWithoutReadingOrWaiting) {
    TempDir dir;
    ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0600), 0);
    for (const char* command : {"asm", "compile", "build", "tokens", "symbols", "decode"}) {
        for (const std::string& input : {std::string("/dev/zero"), (dir / "pipe").string()}) {
            SCOPED_TRACE(std::string(command) + " " + input);
            const ToolResult r = RunVelkorc({command, input}, dir.path());
            EXPECT_EQ(r.exitCode, 2);
            EXPECT_TRUE(Contains(r.err, "Cannot open file \"" + input + "\": not a regular file")) << r.err;
        }
    }
}

TEST(IoMessages, GiveTheSystemsReason) {
    TempDir dir;
    WriteFile(dir / "m.pas", "mission M;\r\nvar a;\r\n");
    const ToolResult full = RunVelkorc({"compile", "-v", "0", "m.pas", "-o", "/dev/full"}, dir.path());
    EXPECT_EQ(full.exitCode, 2);
    EXPECT_EQ(full.err, "Cannot write file \"/dev/full\": No space left on device\n");
    const ToolResult missing = RunVelkorc({"compile", "-v", "0", "none.pas"}, dir.path());
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.err, "Cannot open file \"none.pas\": No such file or directory\n");
}

// A line break inside a file name is the name's own; the line markers of the scanner are not.
TEST(OutputNames, KeepNoLineMarkers) {
    TempDir dir;
    WriteFile(dir / "t.txt", Blocks({"a\nb.iff"}));
    const ToolResult r = RunVelkorc({"asm", "t.txt"}, dir.path());
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(fs::exists(dir / "a\r\nb.iff"));
}

TEST(UnitText, AByteOrderMarkIsSkipped) {
    TempDir dir;
    WriteFile(dir / "m.pas", "\xEF\xBB\xBFmission M;\r\nvar a;\r\n");
    const ToolResult r = RunVelkorc({"compile", "-v", "0", "m.pas"}, dir.path());
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.err, "");
}

} // namespace
} // namespace velkor::test
