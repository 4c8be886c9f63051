#include "crypto/RandomBytes.h"

#include <gtest/gtest.h>

#include <limits>

namespace nimbrel::test {

TEST(RandomBytesTest, GivesTheLengthThatWasAskedFor)
{
    for (const std::size_t length : {0U, 1U, 20U, 32U, 5000U})
        EXPECT_EQ(dataWithRandomBytesAndLength(length).value().size(), length);
}

TEST(RandomBytesTest, EachCallGivesOtherBytes)
{
    const SecureBuffer first = dataWithRandomBytesAndLength(32).value();
    const SecureBuffer second = dataWithRandomBytesAndLength(32).value();
    EXPECT_NE(first.text(), second.text());
    EXPECT_NE(first.text(), std::string(32, '\0'));
}

TEST(RandomBytesTest, ALengthBeyondTheGeneratorGivesNothing)
{
    EXPECT_FALSE(dataWithRandomBytesAndLength(std::numeric_limits<std::size_t>::max()));
}

} // namespace nimbrel::test
