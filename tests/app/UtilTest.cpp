#include "app/Util.h"

#include "support/Files.h"
#include "support/TempFolder.h"

#include <QColor>
#include <QPalette>

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

QString inFolder(const TempFolder &folder, std::string_view name)
{
    return QString::fromStdString(folder / name);
}

TEST(UtilTest, TheFirstAndTheLastIndexAreFound)
{
    EXPECT_EQ(Util::getFirstIndexOf(u'b', u"abcb"_qs), 1);
    EXPECT_EQ(Util::getLastIndexOf(u'b', u"abcb"_qs), 3);
    EXPECT_EQ(Util::getFirstIndexOf(u'\u00e4', u"x\u00e4"_qs), 1);
}

TEST(UtilTest, WhatIsNotFoundIsMinusOne)
{
    EXPECT_EQ(Util::getFirstIndexOf(u'x', u"abc"_qs), -1);
    EXPECT_EQ(Util::getLastIndexOf(u'x', u"abc"_qs), -1);
    EXPECT_EQ(Util::getFirstIndexOf(u'x', QString()), -1);
    EXPECT_EQ(Util::getLastIndexOf(u'x', QString()), -1);
    EXPECT_EQ(Util::getSpecIndexOf('x', 1, QString()), -1);
}

TEST(UtilTest, TheIndecesAreACount)
{
    EXPECT_EQ(Util::getIndecesOf('/', u"/a/b/"_qs), 3);
    EXPECT_EQ(Util::getIndecesOf('x', u"/a/b/"_qs), 0);
    EXPECT_EQ(Util::getIndecesOf('x', QString()), 0);
}

TEST(UtilTest, TheSpecIndexCountsFromOne)
{
    EXPECT_EQ(Util::getSpecIndexOf('/', 1, u"/a/b/"_qs), 0);
    EXPECT_EQ(Util::getSpecIndexOf('/', 3, u"/a/b/"_qs), 4);
    EXPECT_EQ(Util::getSpecIndexOf('/', 4, u"/a/b/"_qs), -1);
    EXPECT_EQ(Util::getSpecIndexOf('/', 0, u"/a/b/"_qs), -1);
}

TEST(UtilTest, ASignedCharacterMatchesNothing)
{
    EXPECT_EQ(Util::getIndecesOf('\xe4', u"\u00e4\uffe4"_qs), 0);
    EXPECT_EQ(Util::getSpecIndexOf('\xe4', 1, u"\u00e4\uffe4"_qs), -1);
}

TEST(UtilTest, TheLastElementStandsBehindTheLastSlash)
{
    EXPECT_EQ(Util::getLastPathElement(u"/a/b"_qs), u"b"_qs);
}

TEST(UtilTest, APlainNameHasNoLastElement)
{
    EXPECT_TRUE(Util::getLastPathElement(u"name"_qs).isNull());
    EXPECT_TRUE(Util::getLastPathElement(u""_qs).isNull());
}

TEST(UtilTest, TheLastElementBehindASlashAtTheEndIsEmpty)
{
    const QString element = Util::getLastPathElement(u"/a/"_qs);
    EXPECT_TRUE(element.isEmpty());
    EXPECT_FALSE(element.isNull());
}

TEST(UtilTest, TheParentOfADeepPathIsItsFolder)
{
    EXPECT_EQ(Util::getParentPath(u"/a/b"_qs), u"/a"_qs);
    EXPECT_EQ(Util::getParentPath(u"/a/"_qs), u"/a"_qs);
}

TEST(UtilTest, TheParentIsTheRootWhereThereIsNoOther)
{
    for (const QString &path : {u"/a"_qs, u"name"_qs, u""_qs, u"/"_qs})
        EXPECT_EQ(Util::getParentPath(path), u"/"_qs) << path.toStdString();
}

TEST(UtilTest, TheEmptyPathHasNoLevel)
{
    EXPECT_EQ(Util::countPathLevel(u""_qs), 0);
    EXPECT_EQ(Util::countPathLevel(QString()), 0);
    EXPECT_EQ(Util::countPathLevel(u"/"_qs), 0);
}

TEST(UtilTest, LevelsAreCounted)
{
    EXPECT_EQ(Util::countPathLevel(u"/a"_qs), 1);
    EXPECT_EQ(Util::countPathLevel(u"/a/b"_qs), 2);
    EXPECT_EQ(Util::countPathLevel(u"/a/b/c"_qs), 3);
    EXPECT_EQ(Util::countPathLevel(u"name"_qs), 1);
}

TEST(UtilTest, NothingAndWhatHoldsNothingIsEmpty)
{
    for (const QVariant &object :
         {QVariant(), QVariant::fromValue(nullptr), QVariant(QString()), QVariant(u""_qs),
          QVariant(QByteArray("")), QVariant(QStringList()), QVariant(QVariantList()),
          QVariant(QVariantMap()), QVariant(QVariantHash()), QVariant::fromValue(QByteArrayList())})
        EXPECT_TRUE(Util::isEmpty(object)) << object.typeName();
}

TEST(UtilTest, AllElseIsNotEmpty)
{
    for (const QVariant &object :
         {QVariant(0), QVariant(false), QVariant(u" "_qs), QVariant(QByteArray("x")),
          QVariant(QStringList{u""_qs}), QVariant(QVariantList{0}),
          QVariant(QVariantMap{{u"a"_qs, 1}}), QVariant(QVariantHash{{u"a"_qs, 1}})})
        EXPECT_FALSE(Util::isEmpty(object)) << object.typeName();
}

TEST(UtilTest, AByteIsAppended)
{
    QByteArray bytes("a");
    Util::appendByte('\0', bytes);
    EXPECT_EQ(bytes, QByteArray("a\0", 2));
}

TEST(UtilTest, AFolderIsNoFileButExists)
{
    const TempFolder temp;
    const QString path = QString::fromStdString(temp.path());
    EXPECT_FALSE(Util::fileExists(path));
    EXPECT_TRUE(Util::directoryExists(path));
    EXPECT_TRUE(Util::exists(path));
}

TEST(UtilTest, AFileIsNoFolderButExists)
{
    const TempFolder temp;
    writeFile(temp / "\u00c4 file", "");
    const QString path = inFolder(temp, "\u00c4 file");
    EXPECT_TRUE(Util::fileExists(path));
    EXPECT_FALSE(Util::directoryExists(path));
    EXPECT_TRUE(Util::exists(path));
}

TEST(UtilTest, ADanglingLinkDoesNotExist)
{
    const TempFolder temp;
    std::filesystem::create_symlink("nowhere", temp / "link");
    EXPECT_FALSE(Util::fileExists(inFolder(temp, "link")));
    EXPECT_FALSE(Util::exists(inFolder(temp, "link")));
    EXPECT_FALSE(Util::exists(QString()));
}

TEST(UtilTest, ALinkToAFolderIsAFolder)
{
    const TempFolder temp;
    std::filesystem::create_symlink(temp.path(), temp / "link");
    EXPECT_TRUE(Util::directoryExists(inFolder(temp, "link")));
}

// RFC 3174, section 7.3: the first test; and the digest of nothing.
constexpr const char *ofAbc = "a9993e364706816aba3e25717850c26c9cd0d89d";
constexpr const char *ofNothing = "da39a3ee5e6b4b0d3255bfef95601890afd80709";

TEST(UtilTest, TheDigestIsLowerCaseHexadecimal)
{
    EXPECT_EQ(Util::computeSHA1HashString(u"abc"_qs).toStdString(), ofAbc);
    EXPECT_EQ(Util::computeSHA1Hash("abc").size(), 20);
    EXPECT_EQ(Util::convertToHexString(QByteArray("\x00\xff\x1a", 3)), u"00ff1a"_qs);
    EXPECT_EQ(Util::convertToHexString({}), QString());
}

TEST(UtilTest, TheDigestOfWhatIsNotAsciiIsThatOfNothing)
{
    EXPECT_EQ(Util::computeSHA1HashString(u"\u00e4bc"_qs).toStdString(), ofNothing);
    EXPECT_EQ(Util::computeSHA1HashString(u"abc\u20ac"_qs).toStdString(), ofNothing);
    EXPECT_EQ(Util::computeSHA1HashString(QString()).toStdString(), ofNothing);
}

TEST(UtilTest, TheHardwareIdIsADigestThatStays)
{
    EXPECT_EQ(Util::hardwareId().size(), 40);
    EXPECT_EQ(Util::hardwareId(), Util::hardwareId());
}

TEST(UtilTest, TheColourFollowsTheTruth)
{
    QPalette palette;
    palette.setColor(QPalette::Active, QPalette::WindowText, Qt::red);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, Qt::blue);
    EXPECT_EQ(Util::controlTextColor(true, palette), QColor(Qt::red));
    EXPECT_EQ(Util::controlTextColor(3, palette), QColor(Qt::red));
    EXPECT_EQ(Util::controlTextColor(false, palette), QColor(Qt::blue));
}

TEST(UtilTest, WhatHasNoTruthHasNoColour)
{
    EXPECT_FALSE(Util::controlTextColor(QVariant(), QPalette()).isValid());
    EXPECT_FALSE(Util::controlTextColor(QVariantMap{{u"a"_qs, 1}}, QPalette()).isValid());
}

} // namespace
} // namespace nimbrel::test
