// Runs the velkorc cases under tests/cases/cli: each <name>.case is a script of lines that lay out files
// in a fresh folder, run velkorc there and check its exit status, what it prints and the files it leaves.
// tests/README.md describes the lines.
#include "tests/platform/isolated_settings.h"
#include "tests/support/case_words.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <list>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace fs = std::filesystem;

namespace velkor::test {
namespace {

const fs::path kSource(VELKOR_SOURCE_DIR);
const fs::path kCases = kSource / "tests/cases/cli";

struct CaseRun {
    TempDir dir;
    fs::path cwd = dir.path();
    std::optional<ToolResult> last;
    std::list<std::string> envNames; // the names the variables below are set under
    std::vector<std::unique_ptr<ScopedEnv>> env;

    void SetEnv(const std::string& name, const std::string& value) {
        env.push_back(std::make_unique<ScopedEnv>(envNames.emplace_back(name).c_str(), value));
    }

    // The case's folder and ${SRC}, the source tree.
    std::string Expand(const std::string& s) const {
        std::string out = ExpandFolder(s, dir.path());
        for (auto at = out.find("${SRC}"); at != std::string::npos; at = out.find("${SRC}"))
            out.replace(at, 6, kSource.string());
        return out;
    }

    fs::path Path(const std::string& name) const { return dir.path() / fs::path(name); }

    // The bytes of a file the case expects to be there.
    std::string Existing(const fs::path& path) const {
        if (!fs::exists(path)) throw std::runtime_error(path.string() + " is not there");
        return ReadFile(path);
    }

    const ToolResult& Last() const {
        if (!last) throw std::runtime_error("a check of output before any run");
        return *last;
    }

    // One line of the script; a failed check is reported with the line it came from.
    void Do(const std::vector<std::string>& w) {
        const std::string& op = w[0];
        const auto arg = [&](std::size_t i) {
            if (i >= w.size()) throw std::runtime_error("'" + op + "' needs more words");
            return Expand(w[i]);
        };
        if (op == "file") {
            fs::create_directories(Path(arg(1)).parent_path());
            WriteFile(Path(arg(1)), arg(2));
        } else if (op == "copy") {
            fs::create_directories(Path(arg(1)).parent_path());
            fs::copy_file(kCases / arg(2), Path(arg(1)), fs::copy_options::overwrite_existing);
        } else if (op == "mkdir") {
            fs::create_directories(Path(arg(1)));
        } else if (op == "rm") {
            fs::remove_all(Path(arg(1)));
        } else if (op == "mv") {
            fs::rename(Path(arg(1)), Path(arg(2)));
        } else if (op == "symlink") {
            fs::create_symlink(arg(1), Path(arg(2)));
        } else if (op == "hardlink") {
            fs::create_hard_link(Path(arg(1)), Path(arg(2)));
#ifndef _WIN32
        } else if (op == "fifo") {
            ASSERT_EQ(::mkfifo(Path(arg(1)).c_str(), 0600), 0);
#endif
        } else if (op == "cd") {
            cwd = Path(arg(1));
        } else if (op == "env") {
            SetEnv(arg(1), arg(2));
        } else if (op == "run") {
            std::vector<std::string> args;
            for (std::size_t i = 1; i < w.size(); ++i) args.push_back(arg(i));
            last = RunVelkorc(args, cwd);
        } else if (op == "exit") {
            EXPECT_EQ(Last().exitCode, std::stoi(arg(1))) << Last().err;
        } else if (op == "exit<=") {
            EXPECT_LE(Last().exitCode, std::stoi(arg(1))) << Last().err;
        } else if (op == "out" || op == "err") {
            EXPECT_EQ(op == "out" ? Last().out : Last().err, arg(1));
        } else if (op == "out~" || op == "err~") {
            EXPECT_NE((op == "out~" ? Last().out : Last().err).find(arg(1)), std::string::npos)
                << (op == "out~" ? Last().out : Last().err);
        } else if (op == "out^" || op == "err^") {
            EXPECT_TRUE((op == "out^" ? Last().out : Last().err).starts_with(arg(1)))
                << (op == "out^" ? Last().out : Last().err);
        } else if (op == "equals") {
            EXPECT_EQ(Existing(Path(arg(1))), arg(2));
        } else if (op == "matches") {
            EXPECT_EQ(Existing(Path(arg(1))), Existing(kCases / arg(2)));
        } else if (op == "same") {
            EXPECT_EQ(Existing(Path(arg(1))), Existing(Path(arg(2))));
        } else if (op == "has" || op == "lacks") {
            const std::string text = Existing(Path(arg(1)));
            EXPECT_EQ(text.find(arg(2)) != std::string::npos, op == "has") << text;
        } else if (op == "starts") {
            EXPECT_TRUE(Existing(Path(arg(1))).starts_with(arg(2)));
        } else if (op == "exists" || op == "absent") {
            EXPECT_EQ(fs::exists(fs::symlink_status(Path(arg(1)))), op == "exists");
        } else if (op == "size") {
            EXPECT_EQ(fs::file_size(Path(arg(1))), std::stoull(arg(2)));
        } else {
            throw std::runtime_error("unknown line '" + op + "'");
        }
    }
};

class VelkorcCase : public ::testing::TestWithParam<std::string> {};

TEST_P(VelkorcCase, Runs) {
    std::istringstream script(ReadFile(kCases / (GetParam() + ".case")));
    CaseRun run;
    // Settings, registry store and Wine prefix of the case's own, never the user's.
    for (const char* name : {"VELKOR_INI", "VELKOR_REGISTRY", "WINEPREFIX", "XDG_CONFIG_HOME"})
        run.SetEnv(name, (run.dir.path() / (std::string("settings-") + name)).string());
    std::string line;
    for (int number = 1; std::getline(script, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!ForThisSystem(line)) continue;
#ifdef _WIN32
        if (line == "posix-only") GTEST_SKIP() << "needs a POSIX file system";
#endif
        const std::vector<std::string> words = SplitWords(line);
        if (words.empty() || words[0].starts_with("#") || words[0] == "posix-only") continue;
        SCOPED_TRACE(GetParam() + ".case:" + std::to_string(number) + ": " + line);
        try {
            run.Do(words);
        } catch (const std::exception& e) {
            FAIL() << e.what();
        }
        if (HasFatalFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Cli, VelkorcCase, ::testing::ValuesIn(CaseNames(kCases, ".case")),
                         [](const auto& param) { return TestNameOf(param.param); });

} // namespace
} // namespace velkor::test
