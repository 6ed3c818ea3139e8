#include "iff/build_chain.h"
#include "iff/iff_compiler.h"
#include "platform/exception.h"
#include "tests/iff/iff_test_helpers.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace velkor::test {
namespace {

// The files of a build are written while they are assembled; a file that cannot be created or written
// must still be reported where it was before, at its block's end, and cost no other block its file.
struct BuildRun {
    std::vector<std::string> events; // "failed <message>" and "wrote <name> <size>", in order
    std::optional<std::string> error;

    BuildRun(const std::string& text, const std::filesystem::path& folder, bool reportsFailures = true) {
        TIffCompiler assembler;
        assembler.FastValueRows = false;
        assembler.SetInputText(text);
        BuildOutputs outputs;
        outputs.Place = [&](const std::string& name) { return folder / name; };
        outputs.Report = [&](const std::string& name, const std::filesystem::path&, std::size_t size) {
            events.push_back("wrote " + name + " " + std::to_string(size));
        };
        if (reportsFailures)
            outputs.Failed = [&](const std::string& message) { events.push_back("failed " + message); };
        error = AssembleToFiles(assembler, outputs);
    }
};

std::string Block(const std::string& name, std::size_t chars) {
    return "IFF \"" + name + "\" { form TEST { chunk DATA { cstring \"" + std::string(chars, 'x') +
           "\" } } }\r\n";
}

std::size_t Entries(const std::filesystem::path& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

TEST(BuildChain, AFileThatCannotBeCreatedIsReportedAtItsBlocksEnd) {
    TempDir dir;
    const BuildRun run(Block("none/a.bin", 10) + Block("b.bin", 10), dir.path());
    EXPECT_EQ(run.error, std::nullopt);
    const std::string path = (dir / "none/a.bin").string();
    EXPECT_EQ(run.events, (std::vector<std::string>{"failed Cannot create file \"" + path +
                                                        "\": No such file or directory",
                                                    "wrote b.bin 32"}));
    EXPECT_EQ(ReadFile(dir / "b.bin").size(), 32u);
    EXPECT_EQ(Entries(dir.path()), 1u);

    // An assembly error inside a block leaves its target as it was, without a temporary file beside it.
    WriteFile(dir / "c.bin", "old");
    const BuildRun broken("IFF \"c.bin\" { form TEST { chunk DATA { cstring \"" + std::string(1 << 20, 'x') +
                              "\" nonsense } } }",
                          dir.path());
    EXPECT_TRUE(broken.error.has_value());
    EXPECT_EQ(ReadFile(dir / "c.bin"), "old");
    EXPECT_EQ(Entries(dir.path()), 2u);
}

#ifndef _WIN32
TEST(BuildChain, AWriteThatFailsMidwayIsReportedAtItsBlocksEnd) {
    TempDir dir;
    WriteFile(dir / "big.bin", "old");
    rlimit old{};
    ::getrlimit(RLIMIT_FSIZE, &old);
    const auto oldSignal = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = old;
    small.rlim_cur = 300 << 10;
    ::setrlimit(RLIMIT_FSIZE, &small);
    const BuildRun run(Block("big.bin", 1 << 20) + Block("small.bin", 10), dir.path());
    const std::string path = (dir / "big.bin").string();
    // Without a handler for failures the first one ends the build, thrown to the caller.
    ExpectError<EInOutError>([&] { BuildRun(Block("big.bin", 1 << 20), dir.path(), false); },
                             "Cannot write file \"" + path + "\": File too large");
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldSignal);

    EXPECT_EQ(run.error, std::nullopt);
    EXPECT_EQ(run.events,
              (std::vector<std::string>{"failed Cannot write file \"" + path + "\": File too large",
                                        "wrote small.bin 32"}));
    EXPECT_EQ(ReadFile(dir / "big.bin"), "old");
    EXPECT_EQ(Entries(dir.path()), 2u);
}
#endif

} // namespace
} // namespace velkor::test
