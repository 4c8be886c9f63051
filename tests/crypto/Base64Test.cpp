#include "crypto/Base64.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace nimbrel::test {

namespace {

constexpr std::string_view alphabet =
    ",-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

struct Rfc4648Case
{
    std::string_view plain;
    std::string_view encoded;
};

constexpr std::array<Rfc4648Case, 7> rfc4648 = {{{"", ""},
                                                 {"f", "Zg=="},
                                                 {"fo", "Zm8="},
                                                 {"foo", "Zm9v"},
                                                 {"foob", "Zm9vYg=="},
                                                 {"fooba", "Zm9vYmE="},
                                                 {"foobar", "Zm9vYmFy"}}};

std::string decoded(std::string_view text)
{
    return std::string(textOf(dataWithBase64String(text)));
}

} // namespace

TEST(Base64Test, EncodesTheVectorsOfRfc4648)
{
    for (const auto &[plain, encoded] : rfc4648)
        EXPECT_EQ(base64EncodedString(bytesOf(plain)), encoded);
}

TEST(Base64Test, DecodesTheVectorsOfRfc4648)
{
    for (const auto &[plain, encoded] : rfc4648)
        EXPECT_EQ(decoded(encoded), plain);
}

TEST(Base64Test, TwentyBytesOfSaltMakeTwentyEightCharactersWithOnePad)
{
    const std::string text = base64EncodedString(noiseBytes(20));
    EXPECT_EQ(text.size(), 28U);
    EXPECT_EQ(text.find('='), 27U);
}

TEST(Base64Test, FiftyTwoBytesOfAKeyMakeSeventyTwoCharactersWithTwoPads)
{
    const std::string text = base64EncodedString(noiseBytes(52));
    EXPECT_EQ(text.size(), 72U);
    EXPECT_EQ(text.find('='), 70U);
}

TEST(Base64Test, EveryLengthIsOneLineAndComesBack)
{
    for (std::size_t size = 0; size < 300; ++size) {
        const Bytes bytes = noiseBytes(size, size);
        const std::string text = base64EncodedString(bytes);
        EXPECT_EQ(text.size(), (size + 2) / 3 * 4);
        EXPECT_EQ(text.find('\n'), std::string::npos);
        EXPECT_EQ(dataWithBase64String(text), bytes) << size;
    }
}

TEST(Base64Test, LongTextComesBack)
{
    const Bytes bytes = noiseBytes(4'000'001);
    EXPECT_EQ(dataWithBase64String(base64EncodedString(bytes)), bytes);
}

TEST(Base64Test, BlanksAroundTheTextDoNotCount)
{
    EXPECT_EQ(decoded("\nZm9vYmE=\n"), "fooba");
    EXPECT_EQ(decoded(" \t\r\nZm9vYmE=\r\n "), "fooba");
    EXPECT_EQ(decoded(" \n\t "), "");
}

TEST(Base64Test, TextThatIsNotAsciiDecodesToNothing)
{
    EXPECT_EQ(decoded("Zm9vYmFyä"), "");
    EXPECT_EQ(decoded("äZm9v"), "");
}

TEST(Base64Test, TextThatIsNotBase64DecodesToNothing)
{
    EXPECT_EQ(decoded("!"), "");
    EXPECT_EQ(decoded("Zm9v!mFy"), "");
    EXPECT_EQ(decoded("not base64 at all"), "");
}

TEST(Base64Test, AnIncompleteLastGroupIsLeftOut)
{
    EXPECT_EQ(decoded("Zm9vYmE"), "foo");
    EXPECT_EQ(decoded("Z"), "");
}

TEST(Base64Test, ValuesZeroAndOneAreCommaAndHyphen)
{
    EXPECT_EQ(base64EncodedASCIIString(Bytes{0, 1}), ",-");
}

TEST(Base64Test, TheEndsOfEachAlphabetRangeHaveTheirCharacters)
{
    EXPECT_EQ(base64EncodedASCIIString(Bytes{2, 11, 12, 37, 38, 63}), "09AZaz");
}

TEST(Base64Test, EveryValueHasItsCharacterAndBack)
{
    Bytes values;
    for (std::uint8_t value = 0; value < 64; ++value)
        values.push_back(value);
    EXPECT_EQ(base64EncodedASCIIString(values), alphabet);
    EXPECT_EQ(dataWithBase64ASCIIString(alphabet), values);
}

TEST(Base64Test, DotAndSlashDecodeToZeroAndOne)
{
    EXPECT_EQ(dataWithBase64ASCIIString("./"), (Bytes{0, 1}));
}

TEST(Base64Test, EveryOtherByteDecodesToAValueThatFitsSixBits)
{
    std::string text;
    for (int byte = 0; byte < 256; ++byte)
        text.push_back(static_cast<char>(byte));
    const Bytes values = dataWithBase64ASCIIString(text);
    ASSERT_EQ(values.size(), 256U);
    for (const std::uint8_t value : values)
        EXPECT_LT(value, 64);
}

TEST(Base64Test, AnEmptyTextGivesNoValues)
{
    EXPECT_TRUE(dataWithBase64ASCIIString("").empty());
    EXPECT_TRUE(base64EncodedASCIIString({}).empty());
}

TEST(Base64Test, RegroupingStartsWithTheLowBits)
{
    EXPECT_EQ(changeBase2(Bytes{1, 2}, 8, 6, true), (Bytes{1, 8, 0}));
    EXPECT_EQ(changeBase2(Bytes{1, 8, 0}, 6, 8, false), (Bytes{1, 2}));
}

TEST(Base64Test, RegroupingNothingGivesNothingWhateverTheFlagSays)
{
    EXPECT_TRUE(changeBase2({}, 8, 6, true).empty());
    EXPECT_TRUE(changeBase2({}, 8, 6, false).empty());
}

TEST(Base64Test, LeftoverBitsAreDroppedWithoutTheFlag)
{
    EXPECT_EQ(changeBase2(Bytes{0xFF}, 8, 6, true), (Bytes{0x3F, 0x03}));
    EXPECT_EQ(changeBase2(Bytes{0xFF}, 8, 6, false), (Bytes{0x3F}));
}

TEST(Base64Test, RegroupingHasTheLengthOfTheBitsAndComesBack)
{
    for (std::size_t size = 0; size < 100; ++size) {
        const Bytes bytes = noiseBytes(size, size);
        const Bytes values = changeBase2(bytes, 8, 6, true);
        EXPECT_EQ(values.size(), (size * 8 + 5) / 6);
        EXPECT_EQ(changeBase2(values, 6, 8, false), bytes) << size;
    }
}

} // namespace nimbrel::test
