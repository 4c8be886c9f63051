#include "assistant/GuessTime.h"

#include <chrono>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

TEST(GuessTimeTest, NothingTypedIsNotRated)
{
    EXPECT_TRUE(guessTime({}).isNull());
}

TEST(GuessTimeTest, ACommonPasswordIsGuessedAtOnce)
{
    EXPECT_EQ(guessTime(QStringLiteral("password1")), QStringLiteral("less than a second"));
}

TEST(GuessTimeTest, ALongSentenceTakesCenturies)
{
    EXPECT_EQ(guessTime(QStringLiteral("seven otters balance a violet piano")),
              QStringLiteral("centuries"));
}

TEST(GuessTimeTest, AnEndlessTextIsRatedAtOnce)
{
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(guessTime(QString(100000, QLatin1Char('x'))).isEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(GuessTimeTest, TakesCharactersOutsideAscii)
{
    EXPECT_FALSE(guessTime(QString::fromUtf16(u"\u00e4\U0001F600\u6f22")).isEmpty());
}

} // namespace
} // namespace nimbrel::test
