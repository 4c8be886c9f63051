#include "assistant/NBPassphraseStrengthIndicator.h"

#include <QLabel>
#include <QLineEdit>

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

unsigned score(const char16_t *text)
{
    return NBPassphraseStrengthIndicator::strengthWithPassphrase(QString::fromUtf16(text));
}

class StrengthTest : public ::testing::Test
{
protected:
    StrengthTest() { indicator.setStrengthLabel(&label); }

    void rate(const char16_t *text)
    {
        indicator.setStrengthWithPassphrase(QString::fromUtf16(text));
    }

    QColor labelColor() const { return label.palette().color(QPalette::WindowText); }

    QLabel label;
    NBPassphraseStrengthIndicator indicator;
};

TEST_F(StrengthTest, FourLowerCaseLettersAreVeryWeakAtLevelOne)
{
    EXPECT_EQ(score(u"abcd"), 0U);
    rate(u"abcd");
    EXPECT_EQ(label.text(), QStringLiteral("Very Weak"));
    EXPECT_EQ(indicator.value(), 1);
}

TEST_F(StrengthTest, FiveLowerCaseLettersScoreOneAndLookTheSame)
{
    EXPECT_EQ(score(u"abcde"), 1U);
    rate(u"abcde");
    EXPECT_EQ(label.text(), QStringLiteral("Very Weak"));
    EXPECT_EQ(indicator.value(), 1);
}

TEST_F(StrengthTest, ThirteenLowerCaseLettersAreWeak)
{
    EXPECT_EQ(score(u"abcdefghijklm"), 2U);
    rate(u"abcdefghijklm");
    EXPECT_EQ(label.text(), QStringLiteral("Weak"));
    EXPECT_EQ(indicator.value(), 2);
    EXPECT_EQ(labelColor(), QColor(213, 186, 54));
}

TEST_F(StrengthTest, TwelveLettersOfMixedCaseScoreTwo)
{
    EXPECT_EQ(score(u"abcdefGHIJKL"), 2U);
}

TEST_F(StrengthTest, DigitsCountOnlyBesideOtherCharacters)
{
    EXPECT_EQ(score(u"12345"), 1U);
    EXPECT_EQ(score(u"1234a"), 2U);
}

TEST_F(StrengthTest, AllFourPartsMakeFive)
{
    EXPECT_EQ(score(u"Abcdefghijk1!"), 5U);
    rate(u"Abcdefghijk1!");
    EXPECT_EQ(label.text(), QStringLiteral("Very Strong"));
    EXPECT_EQ(indicator.value(), 5);
    EXPECT_EQ(labelColor(), QColor(92, 169, 34));
}

TEST_F(StrengthTest, GoodAndStrongLieBetween)
{
    rate(u"Abcdefghijklm");
    EXPECT_EQ(label.text(), QStringLiteral("Good"));
    EXPECT_EQ(indicator.value(), 3);
    EXPECT_EQ(labelColor(), QColor(213, 186, 54));
    rate(u"Abcdefghijkl1");
    EXPECT_EQ(label.text(), QStringLiteral("Strong"));
    EXPECT_EQ(indicator.value(), 4);
}

TEST_F(StrengthTest, TheEmptyTextClearsTheLabel)
{
    rate(u"abc");
    rate(u"");
    EXPECT_EQ(indicator.value(), 0);
    EXPECT_TRUE(label.text().isEmpty());
    EXPECT_EQ(labelColor(), indicator.palette().color(QPalette::WindowText));
    indicator.setStrengthWithPassphrase(QString());
    EXPECT_EQ(indicator.value(), 0);
    EXPECT_EQ(NBPassphraseStrengthIndicator::strengthWithPassphrase(QString()), 0U);
}

TEST_F(StrengthTest, AScriptWithoutCaseEarnsNothingForIt)
{
    EXPECT_EQ(score(u"\u6f22\u5b57\u6f22\u5b57\u6f22"), 1U);
}

TEST_F(StrengthTest, LengthCountsInUtf16Units)
{
    EXPECT_EQ(score(u"\U00020000\U00020000"), 0U);
    EXPECT_EQ(score(u"\U00020000\U00020000\U00020000"), 1U); // six units
}

TEST_F(StrengthTest, SymbolsBeyondTheFirstPlaneAreSigns)
{
    EXPECT_EQ(score(u"\U0001F600"), 1U); // a face: two units, one symbol
}

TEST_F(StrengthTest, DigitsOfOtherScriptsAreDigits)
{
    EXPECT_EQ(score(u"\u0661\u0662\u0663a\u0664"), 2U);
}

TEST_F(StrengthTest, WatchesATextField)
{
    QLineEdit field;
    QObject::connect(&field, &QLineEdit::textChanged, &indicator,
                     &NBPassphraseStrengthIndicator::controlTextDidChange);
    field.setText(QStringLiteral("abcdefghijklm"));
    EXPECT_EQ(indicator.value(), 2);
    field.clear();
    EXPECT_EQ(indicator.value(), 0);
}

} // namespace
} // namespace nimbrel::test
