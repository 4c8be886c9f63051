#include "config/BoundedFile.h"
#include "config/Configurations.h"
#include "config/NBNimbrelFSPreferences.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

// The error of a file that must not be readable; empty when it was read.
NBPreferencesError errorOf(const std::string &path)
{
    NBPreferencesError error;
    static_cast<void>(NBNimbrelFSPreferences().preferencesWithURL(path, &error));
    return error;
}

TEST(ReadingFilesTest, FileReadsLikeItsText)
{
    const TempFolder folder;
    const std::string text = document(completeElements());
    writeFile(folder / "c.xml", text);
    NBPreferencesError error;
    EXPECT_EQ(NBNimbrelFSPreferences().preferencesWithURL(folder / "c.xml", &error),
              accepted(text));
    EXPECT_EQ(error.message, "");
}

TEST(ReadingFilesTest, ReadingLeavesTheFolderAsItWas)
{
    const TempFolder folder;
    writeFile(folder / "c.xml", "<r><a></b></r>");
    EXPECT_NE(errorOf(folder / "c.xml").message, "");
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"c.xml"});
    EXPECT_EQ(readFile(folder / "c.xml"), "<r><a></b></r>");
}

TEST(ReadingFilesTest, MissingFileIsNamed)
{
    const TempFolder folder;
    const NBPreferencesError error = errorOf(folder / "none.xml");
    EXPECT_EQ(error.domain, posixErrorDomain);
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_EQ(error.message,
              "Could not read \"" + folder / "none.xml" + "\": No such file or directory.");
}

TEST(ReadingFilesTest, MissingFileGivesAnEmptyDictionaryWithoutAPlaceForAnError)
{
    const TempFolder folder;
    const auto preferences = NBNimbrelFSPreferences().preferencesWithURL(folder / "none", nullptr);
    ASSERT_TRUE(preferences.has_value());
    EXPECT_TRUE(preferences->empty());
}

TEST(ReadingFilesTest, FolderIsNoFile)
{
    const TempFolder folder;
    const NBPreferencesError error = errorOf(folder.path());
    EXPECT_EQ(error.domain, posixErrorDomain);
    EXPECT_EQ(error.code, EISDIR);
    EXPECT_EQ(error.message, "Could not read \"" + folder.path() + "\": Is a directory.");
}

TEST(ReadingFilesTest, PipeIsRefusedWithoutWaiting)
{
    const TempFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const NBPreferencesError error = errorOf(folder / "pipe");
    EXPECT_EQ(error.domain, posixErrorDomain);
    EXPECT_EQ(error.code, EINVAL);
    EXPECT_EQ(error.message, "\"" + folder / "pipe" + "\" is not a regular file.");
    EXPECT_EQ(errorOf("/dev/zero").code, EINVAL);
}

TEST(ReadingFilesTest, HundredMegabytesAreRefusedUnread)
{
    const TempFolder folder;
    writeFile(folder / "big.xml", "<r>");
    ASSERT_EQ(::truncate((folder / "big.xml").c_str(), 100'000'000), 0);
    const NBPreferencesError error = errorOf(folder / "big.xml");
    EXPECT_EQ(error.domain, boundErrorDomain);
    EXPECT_EQ(error.message, "\"" + folder / "big.xml" + "\" is larger than 1048576 bytes.");
}

TEST(ReadingFilesTest, FileThatTellsNoSizeIsRead)
{
    // A file of the kernel's: its size reads as 0, its content is longer.
    NBPreferencesError error;
    EXPECT_FALSE(NBNimbrelFSPreferences().preferencesWithURL("/proc/self/status", &error));
    EXPECT_EQ(error.domain, xmlErrorDomain);
}

TEST(ReadingFilesTest, FileThatGrowsWhileItIsReadHasABound)
{
    // Its size reads as 0, and more than 16 bytes come.
    const auto file = readBoundedFile("/proc/self/status", 16);
    ASSERT_TRUE(std::holds_alternative<NBPreferencesError>(file));
    EXPECT_EQ(std::get<NBPreferencesError>(file).domain, boundErrorDomain);
}

TEST(ReadingFilesTest, UnreadableContentIsAnError)
{
    // Opens, and then fails to be read at address 0.
    NBPreferencesError error;
    EXPECT_FALSE(NBNimbrelFSPreferences().preferencesWithURL("/proc/self/mem", &error));
    EXPECT_EQ(error.domain, posixErrorDomain);
    EXPECT_NE(error.code, 0);
}

TEST(ReadingFilesTest, FileWithoutPermissionNamesTheCause)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "root may read every file";
    const TempFolder folder;
    writeFile(folder / "c.xml", "<r/>");
    ASSERT_EQ(::chmod((folder / "c.xml").c_str(), 0), 0);
    EXPECT_EQ(errorOf(folder / "c.xml").code, EACCES);
}

} // namespace

} // namespace nimbrel::test
