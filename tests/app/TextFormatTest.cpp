#include "app/TextFormat.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

std::string made(const char16_t *format, const QStringList &arguments = {})
{
    return formatted(QString::fromUtf16(format), arguments).toStdString();
}

TEST(TextFormatTest, EachDirectiveTakesTheNextArgument)
{
    EXPECT_EQ(made(u"%s [Line %d] version: %ld of %@", {u"f"_qs, u"12"_qs, u"7"_qs, u"x"_qs}),
              "f [Line 12] version: 7 of x");
}

TEST(TextFormatTest, TwoPercentSignsAreOne)
{
    EXPECT_EQ(made(u"100%% of %@", {u"all"_qs}), "100% of all");
    EXPECT_EQ(made(u"100%%"), "100%");
    EXPECT_EQ(made(u"%%@", {u"x"_qs}), "%@");
}

TEST(TextFormatTest, ADirectiveWithoutAnArgumentStays)
{
    EXPECT_EQ(made(u"%@ and %@, %ld, %s, %n", {u"one"_qs}), "one and %@, %ld, %s, %n");
}

TEST(TextFormatTest, APercentSignAtTheEndStays)
{
    EXPECT_EQ(made(u"50 %"), "50 %");
    EXPECT_EQ(made(u"%@%", {u"x"_qs}), "x%");
    EXPECT_EQ(made(u""), "");
}

TEST(TextFormatTest, UnknownDirectivesTakeNothing)
{
    EXPECT_EQ(made(u"%x %5d %@", {u"one"_qs}), "%x %5d one");
}

TEST(TextFormatTest, AnArgumentIsNoFormat)
{
    EXPECT_EQ(made(u"%@, %@", {u"%@ %%"_qs, u"two"_qs}), "%@ %%, two");
}

TEST(TextFormatTest, MoreArgumentsThanDirectivesAreLeft)
{
    EXPECT_EQ(made(u"%@", {u"one"_qs, u"two"_qs}), "one");
}

TEST(TextFormatTest, AsFormatComesOutAsItIs)
{
    for (const QString &text : {u"%@"_qs, u"50 %"_qs, u"%%"_qs, u"a%ldb"_qs, u""_qs, u"plain"_qs})
        EXPECT_EQ(formatted(asFormat(text), {u"argument"_qs}), text) << text.toStdString();
}

} // namespace
} // namespace nimbrel::test
