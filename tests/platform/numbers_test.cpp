#include "platform/numbers.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <gtest/gtest.h>

#include <random>

namespace velkor {
namespace {

TEST(Numbers, IntegerConversion) {
    EXPECT_EQ(StrToInt("42"), 42);
    EXPECT_EQ(StrToInt("-42"), -42);
    EXPECT_EQ(StrToInt("+7"), 7);
    EXPECT_EQ(StrToInt("$1F"), 31);
    EXPECT_EQ(StrToInt("$ffffffff"), -1);
    EXPECT_EQ(StrToInt("-$10"), -16);
    EXPECT_EQ(StrToInt("0x10"), 16);
    EXPECT_EQ(StrToInt("2147483647"), 2147483647);
    EXPECT_EQ(StrToInt("-2147483648"), INT32_MIN);
    EXPECT_EQ(StrToInt("2147483648"), std::nullopt);
    EXPECT_EQ(StrToInt("$100000000"), std::nullopt);
    for (auto* bad : {"", "-", "$", "1.5", "12a", "abc", "1 ", "99999999999999999999"})
        EXPECT_EQ(StrToInt(bad), std::nullopt) << bad;
}

TEST(Numbers, FloatConversionRefusesWhatIsNotADecimalNumber) {
    EXPECT_EQ(StrToFloat("1.5"), 1.5);
    EXPECT_EQ(StrToFloat("-2.5E+3"), -2500.0);
    EXPECT_EQ(StrToFloat("1e5"), 1e5);
    EXPECT_EQ(StrToFloat(".5"), 0.5);
    EXPECT_EQ(StrToFloat("7"), 7.0);
    EXPECT_EQ(StrToFloat("1e-400"), 0.0);
    for (auto* bad : {"", ".", "e5", "1e", "inf", "nan", "0x1p3", "1,5", "$10", "1e999"})
        EXPECT_EQ(StrToFloat(bad), std::nullopt) << bad;
}

TEST(Numbers, PatternFormatting) {
    EXPECT_EQ(FormatFloat("0.0#", 2.0), "2.0");
    EXPECT_EQ(FormatFloat("0.0#", 2.5), "2.5");
    EXPECT_EQ(FormatFloat("0.0#", 0.125), "0.13"); // half away from zero
    EXPECT_EQ(FormatFloat("0.0#", -0.125), "-0.13");
    EXPECT_EQ(FormatFloat("0.0#", 1.999), "2.0");
    EXPECT_EQ(FormatFloat("0.0#", -0.001), "0.0");
    EXPECT_EQ(FormatFloat("0.0#", 1e20), "100000000000000000000.0");
    EXPECT_EQ(FormatFloat("0.00#", 3.14159), "3.142");
    EXPECT_EQ(FormatFloat("0.00#", 3.1), "3.10");
    EXPECT_EQ(FormatFloat("0.0#", static_cast<double>(0.1f)), "0.1");
    EXPECT_EQ(FormatThousands(0), "0");
    EXPECT_EQ(FormatThousands(999), "999");
    EXPECT_EQ(FormatThousands(1000), "1,000");
    EXPECT_EQ(FormatThousands(1234567), "1,234,567");
    EXPECT_EQ(FormatThousands(-1234), "-1,234");
}

TEST(Numbers, HexAndShortestFloats) {
    EXPECT_EQ(IntToHex(0x56A0F92F, 8), "56A0F92F");
    EXPECT_EQ(IntToHex(0xA, 0), "A");
    EXPECT_EQ(IntToHex(0xA, 2), "0A");
    for (float f : {0.1f, 1.0f / 3.0f, 123456.789f, -2.5e-20f, 3.4028235e38f, 1.17549435e-38f, 0.0f, 5.0f}) {
        std::string text = FloatToShortest(f);
        auto back = StrToFloat(text);
        ASSERT_TRUE(back) << text;
        EXPECT_EQ(static_cast<float>(*back), f) << text;
    }
}

TEST(Strings, CaseAndTrim) {
    EXPECT_EQ(UpperCase("abc_Z9"), "ABC_Z9");
    EXPECT_EQ(LowerCase("ABC\xC3\x89"), "abc\xC3\x89"); // only ASCII changes case
    EXPECT_TRUE(SameText("Mission", "MISSION"));
    EXPECT_EQ(Trim(std::string_view("\0 \t ab c\r\n", 10)), "ab c");
    EXPECT_EQ(ReplaceAllNoCase("$Compiler$\\lib and $COMPILER$", "$compiler$", "/x"), "/x\\lib and /x");
    EXPECT_EQ(FindNoCase("say Hello", "HELLO"), 4u);
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

TEST(TextFile, LineBreaksBecomeCrLf) {
    EXPECT_EQ(NormaliseLineBreaks("a\nb\r\nc\rd\n\n"), "a\r\nb\r\nc\r\nd\r\n\r\n");
    EXPECT_EQ(NormaliseLineBreaks("\r\r\n"), "\r\n\r\n");
    EXPECT_EQ(SplitLines("a\r\nb\nc"), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(SplitLines("a\r\n"), (std::vector<std::string>{"a"}));
    EXPECT_EQ(JoinLinesCrLf({"a", "b"}), "a\r\nb\r\n");
}

} // namespace
} // namespace velkor
