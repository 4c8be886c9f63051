#include "config/ValueText.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace nimbrel::test {

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

TEST(ValueTextTest, IntegerTakesSignAndDigits)
{
    EXPECT_EQ(integerOfText("256"), 256);
    EXPECT_EQ(integerOfText("+256"), 256);
    EXPECT_EQ(integerOfText("-16"), -16);
    EXPECT_EQ(integerOfText("007"), 7);
}

TEST(ValueTextTest, IntegerIgnoresWhatStandsBehindTheDigits)
{
    EXPECT_EQ(integerOfText("256bits"), 256);
    EXPECT_EQ(integerOfText("3.9"), 3);
    EXPECT_EQ(integerOfText("1 000"), 1);
    EXPECT_EQ(integerOfText("0x10"), 0);
}

TEST(ValueTextTest, IntegerSkipsLeadingWhiteSpace)
{
    EXPECT_EQ(integerOfText(" \t\r\n42"), 42);
    EXPECT_EQ(integerOfText("\xC2\xA0-42"), -42);
}

TEST(ValueTextTest, NoDigitsGiveZero)
{
    for (const std::string_view text : {"", " ", "-", "+", "abc", "--1", "+-1", "- 1"})
        EXPECT_EQ(integerOfText(text), 0) << text;
}

TEST(ValueTextTest, IntegerSticksAtTheLimitsOf64Bits)
{
    EXPECT_EQ(integerOfText("9223372036854775806"), largest - 1);
    EXPECT_EQ(integerOfText("9223372036854775807"), largest);
    EXPECT_EQ(integerOfText("9223372036854775808"), largest);
    EXPECT_EQ(integerOfText("9223372036854775817"), largest);
    EXPECT_EQ(integerOfText("-9223372036854775807"), smallest + 1);
    EXPECT_EQ(integerOfText("-9223372036854775808"), smallest);
    EXPECT_EQ(integerOfText("-9223372036854775809"), smallest);
    EXPECT_EQ(integerOfText(std::string(100, '9')), largest);
    EXPECT_EQ(integerOfText("-" + std::string(100, '9')), smallest);
    EXPECT_EQ(integerOfText(std::string(100, '0') + "5"), 5);
}

TEST(ValueTextTest, BooleanIsTrueForYesTrueAndDigitsAboveZero)
{
    for (const std::string_view text : {"1", "9", "Y", "yes", "T", "true", "tree", "0001", "+1",
                                        "-1", "+0y", " \n1", "10", "1no"})
        EXPECT_TRUE(booleanOfText(text)) << text;
}

TEST(ValueTextTest, BooleanIsFalseForAllElse)
{
    for (const std::string_view text :
         {"", " ", "0", "000", "no", "false", "N", "-", "+0", "x1", "--1", "+-1", "0 1"})
        EXPECT_FALSE(booleanOfText(text)) << text;
}

TEST(ValueTextTest, TrimmingCutsBothEndsOnly)
{
    EXPECT_EQ(trimmedText(" \t\r\n\v\f a b \n"), "a b");
    EXPECT_EQ(trimmedText(" \n "), "");
    EXPECT_EQ(trimmedText(""), "");
}

TEST(ValueTextTest, TrimmingKnowsTheWideSpaces)
{
    EXPECT_EQ(trimmedText("\xC2\xA0\xE3\x80\x80 a\xC2\x85\xE2\x80\xA8\xE2\x80\x89"), "a");
    EXPECT_EQ(trimmedText("\xC3\xA0"), "\xC3\xA0");
}

} // namespace

} // namespace nimbrel::test
