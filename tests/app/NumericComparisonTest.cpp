#include "app/NumericComparison.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

// Both ways round, so that no order holds by chance.
void expectBefore(const QString &first, const QString &second)
{
    EXPECT_EQ(compareNumerically(first, second), std::strong_ordering::less)
        << first.toStdString() << " " << second.toStdString();
    EXPECT_EQ(compareNumerically(second, first), std::strong_ordering::greater)
        << second.toStdString() << " " << first.toStdString();
}

void expectEqual(const QString &first, const QString &second)
{
    EXPECT_EQ(compareNumerically(first, second), std::strong_ordering::equal)
        << first.toStdString() << " " << second.toStdString();
    EXPECT_EQ(compareNumerically(second, first), std::strong_ordering::equal);
}

TEST(NumericComparisonTest, NumbersCountByValue)
{
    expectBefore(QStringLiteral("1.9"), QStringLiteral("1.10"));
    expectBefore(QStringLiteral("9"), QStringLiteral("10"));
    expectBefore(QStringLiteral("10.8.5"), QStringLiteral("10.10"));
    expectBefore(QStringLiteral("file2b"), QStringLiteral("file10a"));
}

TEST(NumericComparisonTest, LeadingZerosDoNotCount)
{
    expectEqual(QStringLiteral("1.02"), QStringLiteral("1.2"));
    expectEqual(QStringLiteral("0"), QStringLiteral("000"));
    expectBefore(QStringLiteral("1.002"), QStringLiteral("1.03"));
    expectBefore(QStringLiteral("01.1"), QStringLiteral("1.2"));
}

TEST(NumericComparisonTest, NumbersOfAnyLengthAreCompared)
{
    const QString nines(30, u'9');
    expectBefore(nines, u'1' + QString(30, u'0'));
    expectBefore(nines.chopped(1) + u'8', nines);
    expectBefore(QStringLiteral("1.18446744073709551615"),
                 QStringLiteral("1.18446744073709551616"));
}

TEST(NumericComparisonTest, CaseIsIgnored)
{
    expectEqual(QStringLiteral("1.0 BETA"), QStringLiteral("1.0 beta"));
    expectEqual(QStringLiteral(u"\u00C4"), QStringLiteral(u"\u00E4"));
    expectBefore(QStringLiteral("ALPHA"), QStringLiteral("beta"));
}

TEST(NumericComparisonTest, APrefixComesFirst)
{
    expectBefore(QStringLiteral("10.8"), QStringLiteral("10.8.0"));
    expectBefore(QStringLiteral("1.0"), QStringLiteral("1.0b"));
    expectBefore(QString(), QStringLiteral("0"));
    expectEqual(QString(), QStringLiteral(""));
}

TEST(NumericComparisonTest, ANumberAgainstALetterIsComparedAsACharacter)
{
    expectBefore(QStringLiteral("1.9"), QStringLiteral("1.a"));
    expectBefore(QStringLiteral("1.9"), QStringLiteral("1b"));
}

} // namespace
} // namespace nimbrel::test
