#include "crypto/StoredName.h"

#include "crypto/Base64.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace nimbrel::test {

namespace {

// Every length of character group.
constexpr std::size_t longestName = 24;

std::string encoderTextOf(std::size_t nameSize)
{
    return base64EncodedASCIIString(changeBase2(noiseBytes(nameSize + 2, nameSize), 8, 6, true));
}

} // namespace

TEST(StoredNameTest, WhateverAnEncoderWritesIsCanonical)
{
    for (std::size_t size = 0; size <= longestName; ++size)
        EXPECT_TRUE(isCanonicalStoredName(encoderTextOf(size))) << size;
}

TEST(StoredNameTest, FewerThanThreeCharactersAreNot)
{
    EXPECT_FALSE(isCanonicalStoredName(""));
    EXPECT_FALSE(isCanonicalStoredName(","));
    EXPECT_FALSE(isCanonicalStoredName(",,"));
    EXPECT_TRUE(isCanonicalStoredName(",,,"));
}

TEST(StoredNameTest, ACharacterOutsideTheAlphabetIsNot)
{
    for (const char wrong : {'.', '/', '+', '_', ' ', '~', '\0', '\x80', '@', '[', '`', '{', ':'}) {
        std::string text = encoderTextOf(4);
        text[3] = wrong;
        EXPECT_FALSE(isCanonicalStoredName(text)) << static_cast<int>(wrong);
    }
}

TEST(StoredNameTest, ALengthThatNoNameGivesIsNot)
{
    EXPECT_FALSE(isCanonicalStoredName(",,,,,"));
    EXPECT_FALSE(isCanonicalStoredName(",,,,,,,,,"));
}

TEST(StoredNameTest, StrayBitsInTheLastCharacterAreNot)
{
    for (std::size_t size = 0; size <= longestName; ++size) {
        Bytes values = changeBase2(noiseBytes(size + 2, size), 8, 6, true);
        const Bytes bytes = changeBase2(values, 6, 8, false);
        const unsigned usedBits = static_cast<unsigned>((size + 2) * 8 - (values.size() - 1) * 6);
        for (unsigned bit = usedBits; bit < 6; ++bit) {
            Bytes changed = values;
            changed.back() = static_cast<std::uint8_t>(changed.back() | 1U << bit);
            ASSERT_EQ(changeBase2(changed, 6, 8, false), bytes) << "the bit belongs to a byte";
            EXPECT_FALSE(isCanonicalStoredName(base64EncodedASCIIString(changed))) << size;
        }
    }
}

TEST(StoredNameTest, WritingIsRegroupingAndTheAlphabetForEveryLength)
{
    for (std::size_t size = 0; size <= 300; ++size) {
        const Bytes bytes = noiseBytes(size, size);
        std::string stored(storedNameLength(size), '?');
        writeStoredName(bytes, stored.data());
        ASSERT_EQ(stored, base64EncodedASCIIString(changeBase2(bytes, 8, 6, true))) << size;
        std::string inPlace(storedNameLength(size), '?');
        std::ranges::copy(textOf(bytes), inPlace.end() - static_cast<std::ptrdiff_t>(size));
        writeStoredName(bytesOf(inPlace).last(size), inPlace.data());
        ASSERT_EQ(inPlace, stored) << size;
    }
}

TEST(StoredNameTest, ReadingIsTheAlphabetAndRegroupingForAnyCharacters)
{
    for (std::size_t size = 0; size <= 300; ++size) {
        const Bytes noise = noiseBytes(size, size);
        const std::string_view stored = textOf(noise);
        Bytes bytes(storedNameBytes(size));
        readStoredName(stored, bytes);
        ASSERT_EQ(bytes, changeBase2(dataWithBase64ASCIIString(stored), 6, 8, false)) << size;
    }
}

} // namespace nimbrel::test
