#include "platform/DesktopBookmarks.h"

#include "platform/PlacesList.h"
#include "support/Files.h"
#include "support/PrivateDesktop.h"
#include "support/Process.h"

#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace nimbrel::test {
namespace {

class BookmarksTest : public testing::Test
{
protected:
    bool add(const std::string &folder, const std::string &label)
    {
        return DesktopBookmarks().add(QString::fromStdString(folder),
                                      QString::fromStdString(label));
    }
    std::string gtk() const { return readFile(_gtk); }
    std::string xbel() const { return readFile(_xbel); }
    void writeGtk(const std::string &text)
    {
        std::filesystem::create_directories(_desktop.config() + "/gtk-3.0");
        writeFile(_gtk, text);
    }

    PrivateDesktop _desktop{{.bus = false, .keyring = false}};
    std::string _gtk = _desktop.config() + "/gtk-3.0/bookmarks";
    std::string _xbel = _desktop.data() + "/user-places.xbel";
};

TEST_F(BookmarksTest, AMissingListIsMade)
{
    EXPECT_TRUE(add("/home/me/Volumes/Safe", "Safe"));
    EXPECT_EQ(gtk(), "file:///home/me/Volumes/Safe\n");
}

TEST_F(BookmarksTest, NoXbelListIsMade)
{
    EXPECT_TRUE(add("/home/me/Volumes/Safe", "Safe"));
    EXPECT_FALSE(std::filesystem::exists(_xbel));
}

TEST_F(BookmarksTest, APlaceIsAddedAsTheLast)
{
    writeGtk("file:///a  My A\nsftp://host/x\n\xff not UTF-8\n");
    EXPECT_TRUE(add("/b", "b"));
    EXPECT_EQ(gtk(), "file:///a  My A\nsftp://host/x\n\xff not UTF-8\nfile:///b\n");
}

TEST_F(BookmarksTest, ASecondTimeChangesNothing)
{
    ASSERT_TRUE(add("/v/Safe", "Safe"));
    const auto time = std::filesystem::last_write_time(_gtk);
    EXPECT_TRUE(add("/v/Safe", "Another label"));
    EXPECT_TRUE(add("/v/Safe/", "Safe"));
    EXPECT_EQ(gtk(), "file:///v/Safe\n");
    EXPECT_EQ(std::filesystem::last_write_time(_gtk), time);
}

TEST_F(BookmarksTest, ALastLineWithoutItsEndGetsIt)
{
    writeGtk("file:///a");
    EXPECT_TRUE(add("/b", "b"));
    EXPECT_EQ(gtk(), "file:///a\nfile:///b\n");
}

TEST_F(BookmarksTest, ALabelIsWrittenWhereItDiffers)
{
    EXPECT_TRUE(add("/v/me-Safe", "Safe & <sound>"));
    EXPECT_EQ(gtk(), "file:///v/me-Safe Safe & <sound>\n");
}

TEST_F(BookmarksTest, ALabelOfTwoLinesIsOne)
{
    EXPECT_TRUE(add("/v/x", "one\nfile:///forged\x01"));
    EXPECT_EQ(gtk(), "file:///v/x one file:///forged\n");
}

TEST_F(BookmarksTest, WithoutALabelTheNameIsShown)
{
    EXPECT_TRUE(add("/v/x", ""));
    EXPECT_EQ(gtk(), "file:///v/x\n");
}

TEST_F(BookmarksTest, AnotherSpellingOfThePlaceIsThePlace)
{
    for (const char *line : {"file:///v/%C3%84%20b", "file:///v/%c3%84%20b Label",
                             "file://localhost/v/%C3%84%20b", "file:///v/%C3%84%20b/"}) {
        writeGtk(std::string(line) + "\n");
        EXPECT_TRUE(add("/v/Ä b", "x"));
        EXPECT_EQ(gtk(), std::string(line) + "\n");
    }
}

TEST_F(BookmarksTest, AnotherPlaceIsNotThePlace)
{
    for (const char *line : {"file:///v/ab", "sftp:///v/a", "file://server/v/a", "file:///v/A",
                             "/v/a", "file:///v/a%20b", "file:///v/a?b"}) {
        writeGtk(std::string(line) + "\n");
        EXPECT_TRUE(add("/v/a", "a"));
        EXPECT_EQ(gtk(), std::string(line) + "\nfile:///v/a\n");
    }
}

TEST_F(BookmarksTest, AListWithAZeroByteIsLeftAlone)
{
    const std::string text("file:///a\n\0", 11);
    writeGtk(text);
    EXPECT_FALSE(add("/b", "b"));
    EXPECT_EQ(gtk(), text);
}

TEST_F(BookmarksTest, ModesAndLinksStay)
{
    std::filesystem::create_directories(_desktop.config() + "/gtk-3.0");
    const std::string real = _desktop.home() + "/bookmarks";
    writeFile(real, "file:///a\n");
    ::chmod(real.c_str(), 0640);
    std::filesystem::create_symlink(real, _gtk);
    EXPECT_TRUE(add("/b", "b"));
    EXPECT_TRUE(std::filesystem::is_symlink(_gtk));
    EXPECT_EQ(readFile(real), "file:///a\nfile:///b\n");
    struct stat status = {};
    ASSERT_EQ(::stat(real.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

constexpr const char *places = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE xbel>
<xbel xmlns:bookmark="http://www.freedesktop.org/standards/desktop-bookmarks" dbusName="kfilePlaces">
 <!-- kept -->
 <bookmark href="file:///home/me">
  <title>Home &amp; more</title>
  <info><metadata owner="http://freedesktop.org"><bookmark:icon name="user-home"/></metadata></info>
 </bookmark>
 <folder><bookmark href="file:///v/in%20folder"><title><![CDATA[<x>]]></title></bookmark></folder>
 <bookmark href="remote:/"/>
</xbel>
)";

std::string withPlace(const std::string &text, const std::string &bookmark)
{
    std::string made = text;
    return made.insert(made.find("</xbel>"), " " + bookmark + "\n");
}

TEST_F(BookmarksTest, AnXbelListThatExistsGetsThePlace)
{
    writeFile(_xbel, places);
    EXPECT_TRUE(add("/v/me-Safe", "Safe"));
    EXPECT_EQ(xbel(), withPlace(places, "<bookmark href=\"file:///v/me-Safe\"><title>Safe</title>"
                                        "</bookmark>"));
    EXPECT_EQ(gtk(), "file:///v/me-Safe Safe\n");
}

TEST_F(BookmarksTest, AnXbelLabelIsNoMarkup)
{
    writeFile(_xbel, places);
    EXPECT_TRUE(add("/v/x", "<b> & \x02 \u00c4"));
    EXPECT_EQ(xbel(), withPlace(places, "<bookmark href=\"file:///v/x\"><title>&lt;b&gt; &amp;   "
                                        "Ä</title></bookmark>"));
    EXPECT_TRUE(add("/v/a&b\"c", "x"));
    EXPECT_NE(xbel().find("<bookmark href=\"file:///v/a&amp;b%22c\"><title>x</title>"),
              std::string::npos);
}

TEST_F(BookmarksTest, AnXbelPlaceIsAddedOnce)
{
    writeFile(_xbel, places);
    EXPECT_TRUE(add("/home/me", "Home"));
    EXPECT_TRUE(add("/v/in folder", "x"));
    EXPECT_EQ(xbel(), places);
    EXPECT_TRUE(add("/v/x", "x"));
    const std::string once = xbel();
    EXPECT_TRUE(add("/v/x", "y"));
    EXPECT_EQ(xbel(), once);
}

TEST_F(BookmarksTest, AnXbelListThatCannotBeParsedIsLeftAlone)
{
    for (const char *text : {"", "<xbel>", "<html/>", "nonsense", "<xbel/><xbel/>"}) {
        writeFile(_xbel, text);
        EXPECT_FALSE(add("/v/x", "x")) << text;
        EXPECT_EQ(xbel(), text);
        EXPECT_EQ(gtk(), "file:///v/x\n"); // the other list has it
    }
}

TEST_F(BookmarksTest, DeclaredEntitiesAreNeitherReadNorOpened)
{
    const std::string secret = _desktop.home() + "/secret";
    writeFile(secret, "secret");
    for (const std::string &entity :
         {std::string("\"text\""), "SYSTEM \"file://" + secret + "\""}) {
        const std::string text = "<!DOCTYPE xbel [<!ENTITY e " + entity +
                                 ">]><xbel><bookmark href=\"remote:/\"><title>&e;</title>"
                                 "</bookmark></xbel>";
        writeFile(_xbel, text);
        EXPECT_FALSE(add("/v/x", "x"));
        EXPECT_EQ(xbel(), text);
    }
}

TEST_F(BookmarksTest, EntitiesThatMultiplyCostNothing)
{
    std::string text = "<!DOCTYPE xbel [<!ENTITY a0 \"aaaaaaaaaa\">";
    for (int level = 1; level < 12; ++level) {
        text += "<!ENTITY a" + std::to_string(level) + " \"";
        for (int copy = 0; copy < 10; ++copy)
            text += "&a" + std::to_string(level - 1) + ";";
        text += "\">";
    }
    text += "]><xbel><bookmark href=\"&a11;\"><title>&a11;</title></bookmark></xbel>";
    writeFile(_xbel, text);
    EXPECT_FALSE(add("/v/x", "x"));
    EXPECT_EQ(xbel(), text);
}

TEST_F(BookmarksTest, DeepXbelListsAreLeftAlone)
{
    std::string text = "<xbel>";
    for (int level = 0; level < 100000; ++level)
        text += "<folder>";
    writeFile(_xbel, text);
    EXPECT_FALSE(add("/v/x", "x"));
    EXPECT_EQ(xbel(), text);
}

TEST_F(BookmarksTest, AnotherEncodingStays)
{
    writeFile(_xbel, "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<xbel><bookmark "
                     "href=\"remote:/\"><title>\xc4</title></bookmark></xbel>\n");
    EXPECT_TRUE(add("/v/x", "Ä"));
    EXPECT_EQ(xbel(), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<xbel><bookmark "
                      "href=\"remote:/\"><title>\xc4</title></bookmark> <bookmark "
                      "href=\"file:///v/x\"><title>\xc4</title></bookmark>\n</xbel>\n");
}

TEST_F(BookmarksTest, AListThatIsTooLargeIsLeftAlone)
{
    writeGtk(std::string(std::size_t{5} << 20U, '\n'));
    writeFile(_xbel, places);
    EXPECT_FALSE(add("/v/x", "x"));
    EXPECT_EQ(gtk().size(), std::size_t{5} << 20U);
    EXPECT_NE(xbel().find("file:///v/x"), std::string::npos);
}

TEST_F(BookmarksTest, WhatCannotBeWrittenIsTold)
{
    std::filesystem::create_directories(_gtk); // a folder in its place
    EXPECT_FALSE(add("/v/x", "x"));
    std::filesystem::remove_all(_desktop.config() + "/gtk-3.0");
    writeFile(_desktop.config() + "/gtk-3.0", "in the way");
    EXPECT_FALSE(add("/v/x", "x"));
}

TEST_F(BookmarksTest, ThreadsLoseNothing)
{
    writeFile(_xbel, "<xbel/>");
    constexpr int count = 10;
    {
        std::array<std::jthread, 4> threads;
        for (std::size_t number = 0; number < threads.size(); ++number)
            threads.at(number) = std::jthread([this, number] {
                for (int place = 0; place < count; ++place)
                    add("/v/" + std::to_string(number) + "-" + std::to_string(place), "");
            });
    }
    for (int number = 0; number < 4; ++number)
        for (int place = 0; place < count; ++place) {
            const std::string uri =
                "file:///v/" + std::to_string(number) + "-" + std::to_string(place);
            EXPECT_NE(gtk().find(uri + "\n"), std::string::npos) << uri;
            EXPECT_NE(xbel().find("\"" + uri + "\""), std::string::npos) << uri;
        }
}

// g_filename_to_uri's spelling.
TEST(PlacesListTest, AFileUriIsPercentEncoded)
{
    EXPECT_EQ(fileUri("/a b/Ä%#?[x]"), "file:///a%20b/%C3%84%25%23%3F%5Bx%5D");
    EXPECT_EQ(fileUri("/!$&'()*+,;=:@-._~"), "file:///!$&'()*+,;=:@-._~");
    EXPECT_EQ(fileUri("/a\nb\\c\""), "file:///a%0Ab%5Cc%22");
}

TEST(PlacesListTest, AFileUriNamesItsPath)
{
    for (const char *path : {"/", "/a b", "/50% #1?", "/Ä", "/a\nb", "/%41"})
        EXPECT_TRUE(isFileUriOf(fileUri(path), path)) << path;
    EXPECT_FALSE(isFileUriOf("file:///A", "/%41"));
    EXPECT_FALSE(isFileUriOf("", ""));
}

} // namespace
} // namespace nimbrel::test
