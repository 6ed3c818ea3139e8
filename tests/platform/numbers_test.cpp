#include "platform/numbers.h"
#include "platform/strings.h"

#include <gtest/gtest.h>

#include <random>

namespace velkor {
namespace {

TEST(Numbers, ShortestFloatsReadBackToTheSameFloat) {
    for (float f : {0.1f, 1.0f / 3.0f, 123456.789f, -2.5e-20f, 3.4028235e38f, 1.17549435e-38f, 0.0f, 5.0f}) {
        std::string text = FloatToShortest(f);
        auto back = StrToFloat(text);
        ASSERT_TRUE(back) << text;
        EXPECT_EQ(static_cast<float>(*back), f) << text;
    }
}

// Long needles take another road than short ones; both must find the first match, whatever the case.
TEST(Strings, FindNoCaseAgreesWithAPlainSearch) {
    std::mt19937 random(12345);
    auto text = [&](size_t n) {
        std::string t(n, 'a');
        for (char& c : t) c = "abAB"[random() % 4];
        return t;
    };
    for (int round = 0; round < 2000; ++round) {
        const std::string needle = text(1 + random() % 24);
        std::string hay = text(random() % 300);
        if (round % 3 == 0 && hay.size() > needle.size()) // plant a match with other case somewhere
            hay.replace(random() % (hay.size() - needle.size()), needle.size(), LowerCase(needle));
        size_t expected = std::string_view::npos;
        for (size_t i = 0; i + needle.size() <= hay.size() && expected == std::string_view::npos; ++i)
            if (SameText(std::string_view(hay).substr(i, needle.size()), needle)) expected = i;
        ASSERT_EQ(FindNoCase(hay, needle), expected) << hay << " / " << needle;
    }
}

} // namespace
} // namespace velkor
