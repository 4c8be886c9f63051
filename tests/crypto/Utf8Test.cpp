#include "crypto/Utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace nimbrel::test {

namespace {

// The form with the fewest bytes, for any number up to 0x10FFFF, surrogates too.
std::string utf8Of(char32_t code)
{
    const auto byte = [](char32_t value) { return static_cast<char>(value); };
    if (code < 0x80)
        return {byte(code)};
    if (code < 0x800)
        return {byte(0xC0 | code >> 6), byte(0x80 | (code & 0x3F))};
    if (code < 0x10000)
        return {byte(0xE0 | code >> 12), byte(0x80 | (code >> 6 & 0x3F)),
                byte(0x80 | (code & 0x3F))};
    return {byte(0xF0 | code >> 18), byte(0x80 | (code >> 12 & 0x3F)),
            byte(0x80 | (code >> 6 & 0x3F)), byte(0x80 | (code & 0x3F))};
}

} // namespace

TEST(Utf8Test, TheEmptyTextIsWellFormed)
{
    EXPECT_TRUE(isUtf8(""));
}

TEST(Utf8Test, AsciiWithAZeroByteIsWellFormed)
{
    EXPECT_TRUE(isUtf8(std::string_view("a\0b", 3)));
}

TEST(Utf8Test, TextOfEveryLengthOfCharacterIsWellFormed)
{
    EXPECT_TRUE(isUtf8("a ä 日 𝄞 z"));
}

TEST(Utf8Test, EveryCodePointButSurrogatesIsWellFormed)
{
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        ASSERT_EQ(isUtf8(utf8Of(code)), !surrogate) << static_cast<std::uint32_t>(code);
    }
}

TEST(Utf8Test, TruncatedCharactersAreNot)
{
    for (const char32_t code : {U'ä', U'日', U'𝄞'}) {
        const std::string whole = utf8Of(code);
        for (std::size_t size = 1; size < whole.size(); ++size) {
            EXPECT_FALSE(isUtf8(whole.substr(0, size)));
            EXPECT_FALSE(isUtf8(whole.substr(0, size) + "a"));
        }
    }
}

TEST(Utf8Test, LoneContinuationBytesAreNot)
{
    EXPECT_FALSE(isUtf8("\x80"));
    EXPECT_FALSE(isUtf8("a\xBF"));
    EXPECT_FALSE(isUtf8("\xC3\xA4\xA4"));
}

TEST(Utf8Test, OverlongFormsAreNot)
{
    EXPECT_FALSE(isUtf8("\xC0\x80"));
    EXPECT_FALSE(isUtf8("\xC1\xBF"));
    EXPECT_FALSE(isUtf8("\xE0\x80\x80"));
    EXPECT_FALSE(isUtf8("\xE0\x9F\xBF"));
    EXPECT_FALSE(isUtf8("\xF0\x80\x80\x80"));
    EXPECT_FALSE(isUtf8("\xF0\x8F\xBF\xBF"));
}

TEST(Utf8Test, NumbersAboveTheLastCodePointAreNot)
{
    EXPECT_FALSE(isUtf8("\xF4\x90\x80\x80"));
    EXPECT_FALSE(isUtf8("\xF5\x80\x80\x80"));
}

TEST(Utf8Test, BytesThatNoTextHasAreNot)
{
    EXPECT_FALSE(isUtf8("\xF8\x88\x80\x80\x80"));
    EXPECT_FALSE(isUtf8("\xFE"));
    EXPECT_FALSE(isUtf8("\xFF"));
}

TEST(Utf8Test, AWrongByteBehindGoodTextIsFound)
{
    EXPECT_FALSE(isUtf8("日本語\xE6\x97 und weiter"));
}

TEST(Utf8Test, AWrongByteIsFoundAtEveryPlace)
{
    for (std::size_t size = 1; size <= 40; ++size) {
        std::string text(size, 'a');
        EXPECT_TRUE(isUtf8(text));
        for (char &place : text) {
            place = static_cast<char>(0x80);
            EXPECT_FALSE(isUtf8(text)) << size;
            place = 'a';
        }
    }
}

} // namespace nimbrel::test
