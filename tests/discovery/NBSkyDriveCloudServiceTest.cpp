#include "discovery/NBSkyDriveCloudService.h"

#include "ClientHome.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

class NBSkyDriveCloudServiceTest : public ::testing::Test
{
protected:
    void write(const std::string &name, std::string_view text) const
    {
        home.write(std::string(clientFiles::skyDriveFolder) + "/" + name, text);
    }
    // The settings of an account: an "ini" file with its "dat" file.
    void account(const std::string &name, std::string_view text) const
    {
        write(name + ".ini", text);
        write(name + ".dat", "");
    }
    static std::optional<std::string> root() { return rootBy<NBSkyDriveCloudService>(); }

    ClientHome home;
    std::string first = home.makeFolder("First");
    std::string second = home.makeFolder("Second");
};

TEST_F(NBSkyDriveCloudServiceTest, TheRootIsInQuotesBehindTheMarker)
{
    EXPECT_EQ(NBSkyDriveCloudService().name(), QStringLiteral("SkyDrive"));
    EXPECT_EQ(root(), std::nullopt);
    account("a", clientFiles::ofSkyDrive(first));
    EXPECT_EQ(root(), first);
}

TEST_F(NBSkyDriveCloudServiceTest, AnEmptyFolderGivesFalse)
{
    home.makeFolder(clientFiles::skyDriveFolder);
    EXPECT_EQ(root(), std::nullopt);
}

TEST_F(NBSkyDriveCloudServiceTest, OfTwoUsableFilesTheLaterOneCounts)
{
    account("b", clientFiles::ofSkyDrive(second));
    account("a", clientFiles::ofSkyDrive(first));
    EXPECT_EQ(root(), second);
}

TEST_F(NBSkyDriveCloudServiceTest, AFileWithoutTheMarkerBehindAUsableOneGivesFalse)
{
    account("a", clientFiles::ofSkyDrive(first));
    account("b", "nothing of interest");
    EXPECT_EQ(root(), std::nullopt);
}

TEST_F(NBSkyDriveCloudServiceTest, AMissingQuoteGivesFalse)
{
    account("a", clientFiles::ofSkyDrive(first));
    account("b", "Me personal \"" + second);
    EXPECT_EQ(root(), std::nullopt);
}

TEST_F(NBSkyDriveCloudServiceTest, AFileWithoutItsDataFileIsPassedOver)
{
    account("a", clientFiles::ofSkyDrive(first));
    write("b.ini", "nothing of interest");
    write("c.ini", clientFiles::ofSkyDrive(second));
    EXPECT_EQ(root(), first);
}

TEST_F(NBSkyDriveCloudServiceTest, OtherExtensionsArePassedOver)
{
    account("a", clientFiles::ofSkyDrive(first));
    for (const char *name : {"b.INI", "b.dat", "b.ini.bak", "ini", ".ini", ".dat"})
        write(name, "nothing of interest");
    EXPECT_EQ(root(), first);
}

TEST_F(NBSkyDriveCloudServiceTest, AnUnreadableFileIsPassedOver)
{
    account("a", clientFiles::ofSkyDrive(first));
    home.makeFolder(std::string(clientFiles::skyDriveFolder) + "/b.ini");
    write("b.dat", "");
    EXPECT_EQ(root(), first);
}

TEST_F(NBSkyDriveCloudServiceTest, TheLastMarkerOfAFileCounts)
{
    account("a", clientFiles::ofSkyDrive(first) + clientFiles::ofSkyDrive(second));
    EXPECT_EQ(root(), second);
    account("a", clientFiles::ofSkyDrive(first) + "Me personal ");
    EXPECT_EQ(root(), first);
}

TEST_F(NBSkyDriveCloudServiceTest, AnEmptyRootReplacesAnEarlierOne)
{
    account("a", clientFiles::ofSkyDrive(first));
    account("b", clientFiles::ofSkyDrive(""));
    EXPECT_EQ(root(), std::nullopt);
}

TEST_F(NBSkyDriveCloudServiceTest, TheTextEndsAtAZero)
{
    account("a", clientFiles::ofSkyDrive(first + std::string(1, '\0') + "more"));
    EXPECT_EQ(root(), first);
}

} // namespace

} // namespace nimbrel::test
