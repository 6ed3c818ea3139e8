#include "platform/strings.h"

#include <gtest/gtest.h>

#include <string>

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

TEST(VisibleBytes, ControlBytesAndBytesAbove126BecomeHexEscapes) {
    struct Case {
        std::string bytes;
        bool keepLineBreaks;
        std::string visible;
    };
    const Case cases[] = {
        {"DATA", false, "DATA"},
        {" ~!\\\"", false, " ~!\\\""},
        {std::string("N\0ME", 4), false, "N\\x00ME"},
        {"\x1B[2J\x7F\x80\xFF", false, "\\x1B[2J\\x7F\\x80\\xFF"},
        {"\t\r\nx", false, "\\x09\\x0D\\x0Ax"},
        {"\t\r\nx", true, "\\x09\r\nx"},
        {"caf\xC3\xA9", true, "caf\\xC3\\xA9"},
    };
    for (const Case& c : cases) EXPECT_EQ(VisibleBytes(c.bytes, c.keepLineBreaks), c.visible) << c.visible;
}

} // namespace
} // namespace velkor
