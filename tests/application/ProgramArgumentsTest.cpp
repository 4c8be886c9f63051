#include "app/ProgramArguments.h"

#include <gtest/gtest.h>

#include <QDir>

namespace nimbrel::test {

namespace {

using Kind = ApplicationRequest::Kind;

ProgramArguments parsed(const QStringList &arguments)
{
    return ProgramArguments::of(QStringList{QStringLiteral("nimbrel")} + arguments);
}

} // namespace

TEST(ProgramArgumentsTest, WithoutArgumentsTheApplicationIsShown)
{
    const ProgramArguments arguments = parsed({});
    EXPECT_EQ(arguments.request.kind, Kind::Activate);
    EXPECT_FALSE(arguments.wasLaunchedAtLogin);
    EXPECT_TRUE(arguments.answer.isEmpty() && arguments.error.isEmpty());
}

TEST(ProgramArgumentsTest, FoldersBecomeWholeEncodedUrls)
{
    const ProgramArguments arguments =
        parsed({QStringLiteral("/tmp/a b#%"), QStringLiteral("here"), QStringLiteral("file:///x")});
    EXPECT_EQ(arguments.request.kind, Kind::Open);
    EXPECT_EQ(arguments.request.urls, (QStringList{QStringLiteral("file:///tmp/a%20b%23%25"),
                                                   QStringLiteral("file://") + QDir::currentPath() +
                                                       QStringLiteral("/here"),
                                                   QStringLiteral("file:///x")}));
}

TEST(ProgramArgumentsTest, AFileCanBeRevealed)
{
    const ProgramArguments arguments =
        parsed({QStringLiteral("--reveal-encrypted"), QStringLiteral("/x")});
    EXPECT_EQ(arguments.request.kind, Kind::Reveal);
    EXPECT_EQ(arguments.request.urls, QStringList{QStringLiteral("file:///x")});
}

TEST(ProgramArgumentsTest, RevealingNothingIsAnError)
{
    EXPECT_FALSE(parsed({QStringLiteral("--reveal-encrypted")}).error.isEmpty());
}

TEST(ProgramArgumentsTest, TheSessionsStartSaysSo)
{
    EXPECT_TRUE(parsed({QStringLiteral("--launched-at-login")}).wasLaunchedAtLogin);
}

TEST(ProgramArgumentsTest, UnknownOptionsAreErrors)
{
    EXPECT_TRUE(parsed({QStringLiteral("--frobnicate")}).error.contains(u"frobnicate"));
}

TEST(ProgramArgumentsTest, VersionAndHelpAreAnswers)
{
    EXPECT_TRUE(parsed({QStringLiteral("--version")}).answer.startsWith(u"nimbrel "));
    EXPECT_TRUE(parsed({QStringLiteral("--help")}).answer.contains(u"--reveal-encrypted"));
}

TEST(ProgramArgumentsTest, AFolderWhoseNameBeginsWithADashFollowsTwoDashes)
{
    const ProgramArguments arguments = parsed({QStringLiteral("--"), QStringLiteral("--odd")});
    ASSERT_EQ(arguments.request.urls.size(), 1);
    EXPECT_TRUE(arguments.request.urls[0].endsWith(u"/--odd"));
}

} // namespace nimbrel::test
