#include "platform/exception.h"
#include "platform/text_file.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace velkor::test {
namespace {

TEST(AtomicFileWriter, TheTargetChangesOnlyAtCommit) {
    TempDir dir;
    const auto target = dir / "out.txt";
    WriteFile(target, "old");
    {
        AtomicFileWriter writer(target);
        writer.Write(std::string_view("new "));
        writer.Write(std::string_view("text"));
        EXPECT_EQ(ReadFile(target), "old");
        writer.Commit();
    }
    EXPECT_EQ(ReadFile(target), "new text");
    {
        AtomicFileWriter abandoned(target);
        abandoned.Write(std::string_view("lost"));
    }
    EXPECT_EQ(ReadFile(target), "new text");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}),
              1); // no temporary file left
}

// Two builds write the same "_velkor.txt" in the temporary folder at once; both must succeed, the later
// commit wins.
TEST(AtomicFileWriter, OverlappingWritersOfOneTargetBothCommit) {
    TempDir dir;
    const auto target = dir / "shared.txt";
    AtomicFileWriter first(target);
    AtomicFileWriter second(target);
    first.Write(std::string_view("first"));
    second.Write(std::string_view("second"));
    first.Commit();
    EXPECT_EQ(ReadFile(target), "first");
    second.Commit();
    EXPECT_EQ(ReadFile(target), "second");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
}

TEST(AtomicFileWriter, AFolderThatDoesNotExistIsAnInputOutputError) {
    TempDir dir;
    const auto target = dir / "none" / "out.txt";
    try {
        AtomicFileWriter writer(target);
        FAIL() << "no error";
    } catch (const EInOutError& e) {
        EXPECT_EQ(std::string(e.what()),
                  "Cannot create file \"" + target.string() + "\": No such file or directory");
    }
}

} // namespace
} // namespace velkor::test
