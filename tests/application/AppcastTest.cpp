#include "app/Appcast.h"

#include "app/FeedDate.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

QByteArray rss(const QByteArray &items)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<rss version=\"2.0\" xmlns:u=\"urn:update\" xmlns:atom=\"http://www.w3.org/2005/Atom\">"
           "<channel><title>Nimbrel</title><link>https://example.org/</link>" +
           items + "</channel></rss>";
}

QByteArray item(const QByteArray &version, const QByteArray &more = {})
{
    return "<item><enclosure url=\"https://example.org/" + version + ".deb\" u:version=\"" +
           version + "\"/>" + more + "</item>";
}

Appcast read(const QByteArray &text)
{
    const auto result = readAppcast(text);
    if (const auto *error = std::get_if<QString>(&result)) {
        ADD_FAILURE() << error->toStdString();
        return {};
    }
    return std::get<Appcast>(result);
}

// The error; empty when there is none.
std::string errorOf(const QByteArray &text)
{
    const auto result = readAppcast(text);
    const auto *error = std::get_if<QString>(&result);
    return error == nullptr ? std::string() : error->toStdString();
}

UpdateOffer only(const QByteArray &itemText)
{
    const Appcast appcast = read(rss(itemText));
    EXPECT_EQ(appcast.items.size(), 1) << itemText.toStdString();
    return appcast.items.value(0);
}

TEST(AppcastTest, AnItemIsAWholeOffer)
{
    const UpdateOffer offer =
        only("<item><title> Nimbrel\n 1.10 </title><link> https://example.org/1.10 </link>"
             "<description><![CDATA[<p>Faster &amp; safer</p>]]></description>"
             "<pubDate>Sat, 21 Nov 2026 22:26:40 +0100</pubDate>"
             "<enclosure url=\"https://example.org/a.deb\" u:version=\"110\" "
             "u:shortVersionString=\"1.10\" length=\"7\"/></item>");
    EXPECT_EQ(offer.version, QStringLiteral("1.10"));
    EXPECT_EQ(offer.title, QStringLiteral("Nimbrel 1.10"));
    EXPECT_EQ(offer.notes, QStringLiteral("<p>Faster &amp; safer</p>"));
    EXPECT_EQ(offer.page, QUrl(QStringLiteral("https://example.org/1.10")));
    EXPECT_EQ(offer.published.toUTC(), QDateTime(QDate(2026, 11, 21), QTime(21, 26, 40), Qt::UTC));
}

TEST(AppcastTest, TheVersionMayStandInTheItemItself)
{
    EXPECT_EQ(only("<item><u:version>7</u:version></item>").version, QStringLiteral("7"));
    EXPECT_EQ(only("<item><version> 7 </version></item>").version, QStringLiteral("7"));
    EXPECT_EQ(only("<item><u:shortVersionString>1.2</u:shortVersionString>"
                   "<enclosure url=\"https://a.b/\" u:version=\"9\"/></item>")
                  .version,
              QStringLiteral("1.2"));
}

TEST(AppcastTest, ItemsWithoutAUsableVersionAreLeftOut)
{
    EXPECT_TRUE(read(rss("<item><title>News</title></item>")).items.isEmpty());
    EXPECT_TRUE(read(rss(item(""))).items.isEmpty());
    EXPECT_TRUE(read(rss(item(QByteArray(61, '1')))).items.isEmpty());
    EXPECT_TRUE(read(rss(item("1\xE2\x80\xAE"
                              "2")))
                    .items.isEmpty()); // turns the text round
    EXPECT_FALSE(read(rss("")).newest());
}

TEST(AppcastTest, TheHighestVersionIsTheNewest)
{
    const Appcast appcast = read(rss(item("1.9") + item("1.10") + item("1.2")));
    EXPECT_EQ(appcast.items.size(), 3);
    EXPECT_EQ(appcast.newest()->version, QStringLiteral("1.10"));
}

TEST(AppcastTest, OfEqualVersionsTheFirstCounts)
{
    const Appcast appcast =
        read(rss(item("1.10", "<title>a</title>") + item("1.010", "<title>b</title>")));
    EXPECT_EQ(appcast.newest()->title, QStringLiteral("a"));
}

TEST(AppcastTest, ThePageIsAWebPageOrNone)
{
    const auto page = [](const QByteArray &link, const QByteArray &enclosure) {
        return only("<item>" + link + "<enclosure u:version=\"1\" url=\"" + enclosure +
                    "\"/></item>")
            .page.toString()
            .toStdString();
    };
    EXPECT_EQ(page("<link>http://a.b/c</link>", "https://d.e/"), "http://a.b/c");
    EXPECT_EQ(page("", "https://d.e/f"), "https://d.e/f");
    EXPECT_EQ(page("<link>file:///etc/passwd</link>", "https://d.e/f"), "https://d.e/f");
    EXPECT_EQ(page("<link>javascript:alert(1)</link>", "smb://host/share"), "");
    EXPECT_EQ(page("<link>https:///nohost</link>", "relative/path"), "");
}

TEST(AppcastTest, ForeignElementsOfTheSameNamesDoNotCount)
{
    const UpdateOffer offer =
        only(item("1", "<atom:link href=\"https://wrong.example/\"/><atom:title>wrong</atom:title>"
                       "<title>right</title><link>https://right.example/</link>"));
    EXPECT_EQ(offer.title, QStringLiteral("right"));
    EXPECT_EQ(offer.page.host(), QStringLiteral("right.example"));
}

TEST(AppcastTest, NotesOfElementsAreReadAsTheirText)
{
    EXPECT_EQ(only(item("1", "<description>a <b>b <i>c</i></b> d</description>")).notes,
              QStringLiteral("a b c d"));
}

TEST(AppcastTest, LongTextsAreCut)
{
    const UpdateOffer offer =
        only(item("1", "<title>" + QByteArray(5000, 't') + "</title>" + "<description>" +
                           QByteArray(500'000, 'n') + "</description>"));
    EXPECT_EQ(offer.title.size(), 500);
    EXPECT_EQ(offer.notes.size(), 256 * 1024);
}

TEST(AppcastTest, NoMoreThanAThousandItemsAreTaken)
{
    EXPECT_EQ(read(rss(item("1").repeated(1500))).items.size(), 1000);
}

TEST(AppcastTest, WhatIsNoFeedHasAReason)
{
    EXPECT_EQ(errorOf("<!DOCTYPE html><html><body>Sign in</body></html>"), "Line 1: It is no RSS.");
    EXPECT_EQ(errorOf("<rss version=\"2.0\"></rss>"), "Line 1: It has no channel.");
    EXPECT_NE(errorOf("<html><br><p>not even XML"), "");
    EXPECT_NE(errorOf("plain text"), "");
    EXPECT_NE(errorOf(""), "");
    EXPECT_NE(errorOf(QByteArray(1000, '\0')), "");
    EXPECT_NE(errorOf("<rss xmlns=\"urn:other\"><channel/></rss>"), "");
}

TEST(AppcastTest, ATruncatedFeedIsNoneWhereverItEnds)
{
    const QByteArray whole = rss(item("1.9", "<description>a<b>c</b></description>"));
    ASSERT_EQ(errorOf(whole), "");
    for (qsizetype size = 0; size < whole.size(); ++size)
        EXPECT_NE(errorOf(whole.first(size)), "") << size;
}

TEST(AppcastTest, WhatFollowsTheFeedDamagesIt)
{
    EXPECT_NE(errorOf(rss(item("1")) + "<more/>"), "");
}

TEST(AppcastTest, DeepNestingExhaustsNothing)
{
    const QByteArray open = QByteArray("<b>").repeated(150'000);
    const QByteArray close = QByteArray("</b>").repeated(150'000);
    EXPECT_NE(errorOf(rss(item("1", "<description>" + open + close + "</description>"))), "");
    EXPECT_EQ(errorOf(rss(item("1", "<other>" + open + close + "</other>"))), "");
}

TEST(AppcastTest, EntitiesDoNotMultiply)
{
    QByteArray entities = "<!ENTITY a0 \"0123456789\">";
    for (int i = 1; i < 12; ++i) {
        const QByteArray before = "&a" + QByteArray::number(i - 1) + ";";
        entities += "<!ENTITY a" + QByteArray::number(i) + " \"" + before.repeated(10) + "\">";
    }
    const QByteArray feed = "<?xml version=\"1.0\"?><!DOCTYPE rss [" + entities +
                            "]><rss version=\"2.0\"><channel><item><version>1</version>"
                            "<description>&a11;</description></item></channel></rss>";
    EXPECT_NE(errorOf(feed), "");
}

TEST(AppcastTest, NoEntityReadsAFile)
{
    const QByteArray feed = "<!DOCTYPE rss [<!ENTITY f SYSTEM \"file:///etc/passwd\">]>"
                            "<rss version=\"2.0\"><channel><item><version>1</version>"
                            "<description>&f;</description></item></channel></rss>";
    const auto result = readAppcast(feed);
    if (const auto *appcast = std::get_if<Appcast>(&result)) {
        EXPECT_FALSE(appcast->items.value(0).notes.contains(QStringLiteral("root")));
    }
}

TEST(FeedDateTest, ZonesHaveNamesOrOffsets)
{
    const QDateTime moment(QDate(2026, 11, 21), QTime(22, 26, 40), Qt::UTC);
    for (const char *text : {"Sat, 21 Nov 2026 22:26:40 GMT", "Sat, 21 Nov 2026 22:26:40 UT",
                             "21 Nov 2026 22:26:40 Z", "Sat, 21 Nov 2026 17:26:40 EST",
                             "Sat, 21 Nov 2026 22:26:40 +0000", "Sat, 21 Nov 2026 20:26:40 -0200"})
        EXPECT_EQ(feedDate(QString::fromLatin1(text)).toUTC(), moment) << text;
}

TEST(FeedDateTest, WhatIsNoDateIsInvalid)
{
    for (const char *text : {"", "yesterday", "2026-11-21T22:26:40Z", "Sat, 99 Nov 2026 GMT"})
        EXPECT_FALSE(feedDate(QString::fromLatin1(text)).isValid()) << text;
}

} // namespace
} // namespace nimbrel::test
