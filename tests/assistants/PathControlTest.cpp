#include "assistants/widgets/PathControl.h"

#include "volume/VolumeDesk.h"

#include <gtest/gtest.h>

#include <QLabel>

namespace nimbrel::test {
namespace {

class PathControlTest : public ::testing::Test
{
protected:
    PathControlTest()
    {
        control.resize(2000, control.sizeHint().height());
        control.show();
    }

    [[nodiscard]] QString shown() const
    {
        QString text;
        for (const QLabel *label : control.findChildren<QLabel *>())
            text += label->text();
        return text;
    }

    VolumeDesk desk;
    PathControl control;
};

TEST_F(PathControlTest, WithoutAURLThereIsNoPath)
{
    EXPECT_TRUE(control.URL().isEmpty());
    EXPECT_TRUE(control.path().isNull());
    control.setURL(QUrl::fromLocalFile(QStringLiteral("/a")));
    control.setURL({});
    EXPECT_TRUE(control.path().isNull());
    EXPECT_EQ(control.toolTip(), QString());
}

TEST_F(PathControlTest, ThePlaceholderStandsWhereThereIsNoPath)
{
    control.setPlaceholderText(QStringLiteral("None."));
    EXPECT_EQ(shown(), QStringLiteral("None."));
    control.setURL(QUrl::fromLocalFile(QStringLiteral("/a")));
    EXPECT_EQ(shown(), QStringLiteral("/a"));
    control.setURL({});
    EXPECT_EQ(shown(), QStringLiteral("None."));
}

TEST_F(PathControlTest, ThePathHasNoSlashAtItsEnd)
{
    control.setURL(QUrl::fromLocalFile(QStringLiteral("/a/b//")));
    EXPECT_EQ(control.path(), QStringLiteral("/a/b"));
    control.setURL(QUrl::fromLocalFile(QStringLiteral("/")));
    EXPECT_EQ(control.path(), QStringLiteral("/"));
}

TEST_F(PathControlTest, TheHomeFolderIsShownShort)
{
    control.setURL(QUrl::fromLocalFile(desk.path("Documents/Private.nmc")));
    EXPECT_EQ(shown(), QStringLiteral("~/Documents/Private.nmc"));
    EXPECT_EQ(control.toolTip(), desk.path("Documents/Private.nmc"));
    EXPECT_EQ(control.accessibleDescription(), control.toolTip());
    control.setURL(QUrl::fromLocalFile(desk.path("") + QStringLiteral("x")));
    EXPECT_EQ(shown(), QStringLiteral("~/x"));
    control.setURL(
        QUrl::fromLocalFile(QString::fromStdString(desk.home()) + QStringLiteral("-other")));
    EXPECT_EQ(shown(), QString::fromStdString(desk.home()) + QStringLiteral("-other"));
}

TEST_F(PathControlTest, AUrlsOwnSignsAreOnlySigns)
{
    const QString path = QStringLiteral("/a%20b/c?d#e/<b>f</b>");
    control.setURL(QUrl::fromLocalFile(path));
    EXPECT_EQ(control.path(), path);
    EXPECT_EQ(shown(), path);
}

TEST_F(PathControlTest, ALineBreakInANameStaysOnTheLine)
{
    control.setURL(QUrl::fromLocalFile(QStringLiteral("/a\nb")));
    EXPECT_EQ(control.path(), QStringLiteral("/a\nb"));
    EXPECT_FALSE(shown().contains(u'\n'));
}

TEST_F(PathControlTest, ALongPathIsShortenedInTheMiddleAndAsksForNoMoreRoom)
{
    const QSize size = control.sizeHint();
    const QString path =
        QStringLiteral("/begin/") + QString(500, u'm') + QStringLiteral("/the end");
    control.setURL(QUrl::fromLocalFile(path));
    control.resize(300, control.height());
    QCoreApplication::processEvents();
    EXPECT_TRUE(shown().startsWith(QLatin1String("/be")));
    EXPECT_TRUE(shown().endsWith(QLatin1String("end")));
    EXPECT_LT(shown().size(), 100);
    EXPECT_EQ(control.toolTip(), path);
    EXPECT_EQ(control.sizeHint(), size);
}

} // namespace
} // namespace nimbrel::test
