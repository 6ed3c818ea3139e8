#include "platform/strings.h"

#include <gtest/gtest.h>

namespace velkor {
namespace {

TEST(IsValidUtf8, AcceptsWellFormedAndRejectsTheRest) {
    for (const char* ok :
         {"", "plain", "caf\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x9A\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(IsValidUtf8(ok)) << ok;
    for (const char* bad : {"Gr\xFC\xDF", "\xC3", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80",
                            "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\x80", "\xE2\x28\xA1"})
        EXPECT_FALSE(IsValidUtf8(bad)) << bad;
}

} // namespace
} // namespace velkor
