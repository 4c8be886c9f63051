#include "discovery/NBBoxCloudService.h"

#include "ClientHome.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

class NBBoxCloudServiceTest : public ::testing::Test
{
protected:
    std::optional<std::string> rootWith(std::string_view file) const
    {
        home.write(clientFiles::box, file);
        return rootBy<NBBoxCloudService>();
    }

    ClientHome home;
    std::string root = home.makeFolder("B\xC3\xB6x Sync");
    std::string marker = "SyncRootPath: !!python/unicode '";
};

TEST_F(NBBoxCloudServiceTest, TheRootIsInQuotesBehindTheMarker)
{
    EXPECT_EQ(NBBoxCloudService().name(), QStringLiteral("Box"));
    EXPECT_EQ(rootBy<NBBoxCloudService>(), std::nullopt);
    EXPECT_EQ(rootWith(clientFiles::ofBox(root)), root);
}

TEST_F(NBBoxCloudServiceTest, ALineWithoutAClosingQuoteGivesFalse)
{
    EXPECT_EQ(rootWith(marker + root + "\n"), std::nullopt);
}

TEST_F(NBBoxCloudServiceTest, AFileWithoutTheLineGivesFalse)
{
    EXPECT_EQ(rootWith("Name: me\nSyncRootPath: '" + root + "'\n"), std::nullopt);
    EXPECT_EQ(rootWith(""), std::nullopt);
}

TEST_F(NBBoxCloudServiceTest, TheFirstMarkerCounts)
{
    EXPECT_EQ(rootWith(clientFiles::ofBox(root) + clientFiles::ofBox("/")), root);
}

TEST_F(NBBoxCloudServiceTest, TheFileIsBytesAndNoYaml)
{
    EXPECT_EQ(rootWith("\t: {[ \xFF" + std::string(1, '\0') + marker + root + "' ]"), root);
}

TEST_F(NBBoxCloudServiceTest, TheTextEndsAtAZero)
{
    EXPECT_EQ(rootWith(clientFiles::ofBox(root + std::string(1, '\0') + "more")), root);
}

TEST_F(NBBoxCloudServiceTest, ARootThatIsNotUtf8GivesFalse)
{
    home.makeFolder("B\xF6x");
    EXPECT_EQ(rootWith(clientFiles::ofBox(home / "B\xF6x")), std::nullopt);
}

} // namespace

} // namespace nimbrel::test
