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

TEST(AtomicFileWriter, AFolderThatDoesNotExistIsAnInputOutputError) {
    TempDir dir;
    const auto target = dir / "none" / "out.txt";
    try {
        AtomicFileWriter writer(target);
        FAIL() << "no error";
    } catch (const EInOutError& e) {
        EXPECT_EQ(std::string(e.what()), "Cannot create file \"" + target.string() + "\"");
    }
}

} // namespace
} // namespace velkor::test
