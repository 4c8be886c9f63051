#include "crypto/ByteManipulations.h"
#include "crypto/Reference.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

constexpr std::size_t longest = 200; // three runs of the flip and a rest

} // namespace

TEST(ByteManipulationsTest, UpToSixtyFourBytesArePlainlyReversed)
{
    Bytes bytes = {1, 2, 3, 4, 5};
    flipBytes(bytes);
    EXPECT_EQ(bytes, (Bytes{5, 4, 3, 2, 1}));
}

TEST(ByteManipulationsTest, SixtyFiveBytesFlipAsSixtyFourReversedAndTheLastUnchanged)
{
    const Bytes before = noiseBytes(65);
    Bytes bytes = before;
    flipBytes(bytes);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 64), Bytes(before.rbegin() + 1, before.rend()));
    EXPECT_EQ(bytes[64], before[64]);
}

TEST(ByteManipulationsTest, AHundredBytesFlipInRunsOfSixtyFourAndThirtySix)
{
    const Bytes before = noiseBytes(100);
    Bytes bytes = before;
    flipBytes(bytes);
    EXPECT_EQ(bytes[0], before[63]);
    EXPECT_EQ(bytes[63], before[0]);
    EXPECT_EQ(bytes[64], before[99]);
    EXPECT_EQ(bytes[99], before[64]);
}

TEST(ByteManipulationsTest, FlippingIsTheReferenceForEveryLength)
{
    for (std::size_t size = 0; size <= longest; ++size) {
        Bytes bytes = noiseBytes(size, size);
        const Bytes expected = reference::flipped(bytes);
        flipBytes(bytes);
        EXPECT_EQ(bytes, expected) << size;
    }
}

TEST(ByteManipulationsTest, FlippingTwiceRestores)
{
    const Bytes before = noiseBytes(longest);
    Bytes bytes = before;
    flipBytes(bytes);
    EXPECT_NE(bytes, before);
    flipBytes(bytes);
    EXPECT_EQ(bytes, before);
}

TEST(ByteManipulationsTest, ShufflingOneTwoThreeGivesOneThreeZero)
{
    Bytes bytes = {1, 2, 3};
    shuffleBytes(bytes);
    EXPECT_EQ(bytes, (Bytes{1, 3, 0}));
    unshuffleBytes(bytes);
    EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
}

TEST(ByteManipulationsTest, NoneOrOneByteStaysAsItIsWhenShuffled)
{
    Bytes none;
    shuffleBytes(none);
    unshuffleBytes(none);
    EXPECT_TRUE(none.empty());
    Bytes one = {200};
    shuffleBytes(one);
    EXPECT_EQ(one, Bytes{200});
    unshuffleBytes(one);
    EXPECT_EQ(one, Bytes{200});
}

TEST(ByteManipulationsTest, ShufflingIsTheReferenceForEveryLength)
{
    for (std::size_t size = 0; size <= longest; ++size) {
        Bytes bytes = noiseBytes(size, size);
        const Bytes expected = reference::shuffled(bytes);
        shuffleBytes(bytes);
        EXPECT_EQ(bytes, expected) << size;
    }
}

TEST(ByteManipulationsTest, UnshufflingIsTheReferenceForEveryLength)
{
    for (std::size_t size = 0; size <= longest; ++size) {
        Bytes bytes = noiseBytes(size, size);
        const Bytes expected = reference::unshuffled(bytes);
        unshuffleBytes(bytes);
        EXPECT_EQ(bytes, expected) << size;
    }
}

} // namespace nimbrel::test
