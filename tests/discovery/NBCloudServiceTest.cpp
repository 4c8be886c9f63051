// What all services share.
#include "discovery/HomePath.h"
#include "discovery/NBBoxCloudService.h"
#include "discovery/NBDropboxCloudService.h"

#include "ClientHome.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

class PlainService final : public NBCloudService
{
public:
    PlainService() : NBCloudService(QStringLiteral("Plain")) {}
};

void installBox(const ClientHome &home, std::string_view root)
{
    home.write(clientFiles::box, clientFiles::ofBox(root));
}

TEST(NBCloudServiceTest, AServiceWithoutAProbeIsNotAvailable)
{
    PlainService service;
    EXPECT_FALSE(service.isAvailable());
    EXPECT_TRUE(service.storageURL().isEmpty());
    EXPECT_EQ(service.name(), QStringLiteral("Plain"));
}

TEST(NBCloudServiceTest, ALeadingTildeIsTheHomeFolder)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Sync");
    installBox(home, "~/Sync");
    EXPECT_EQ(rootBy<NBBoxCloudService>(), root);
    installBox(home, "~");
    EXPECT_EQ(rootBy<NBBoxCloudService>(), home.path());
}

TEST(NBCloudServiceTest, ATildeWithANameIsThatUsersHomeFolder)
{
    EXPECT_EQ(expandedTilde(QStringLiteral("~root/x")), QStringLiteral("/root/x"));
    EXPECT_EQ(expandedTilde(QStringLiteral("~no.such.user/x")), QStringLiteral("~no.such.user/x"));
    EXPECT_EQ(expandedTilde(QStringLiteral("/a/~")), QStringLiteral("/a/~"));
    EXPECT_EQ(expandedTilde(QString()), QString());
}

TEST(NBCloudServiceTest, ARootThatIsNotThereMakesTheProbeFalse)
{
    const ClientHome home;
    installBox(home, home / "Sync");
    EXPECT_EQ(rootBy<NBBoxCloudService>(), std::nullopt);
}

TEST(NBCloudServiceTest, AnEmptyRootMakesTheProbeFalse)
{
    const ClientHome home;
    installBox(home, "");
    EXPECT_EQ(rootBy<NBBoxCloudService>(), std::nullopt);
}

TEST(NBCloudServiceTest, ARootNeedNotBeAFolder)
{
    const ClientHome home;
    const std::string root = home.write("Sync", "a file");
    installBox(home, root);
    EXPECT_EQ(rootBy<NBBoxCloudService>(), root);
}

TEST(NBCloudServiceTest, AFinalSlashIsNoPartOfTheRoot)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Sync #1 100%?");
    installBox(home, "/" + root + "//");
    EXPECT_EQ(rootBy<NBBoxCloudService>(), root);
}

TEST(NBCloudServiceTest, EachCallLooksAnewAndAFailureKeepsTheLastRoot)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Sync");
    installBox(home, root);
    NBBoxCloudService service;
    EXPECT_TRUE(service.storageURL().isEmpty());
    EXPECT_TRUE(service.isAvailable());
    std::filesystem::remove(root);
    EXPECT_FALSE(service.isAvailable());
    EXPECT_EQ(service.storageURL().toLocalFile().toStdString(), root);
    installBox(home, home.path());
    EXPECT_TRUE(service.isAvailable());
    EXPECT_EQ(service.storageURL().toLocalFile().toStdString(), home.path());
}

TEST(NBCloudServiceTest, AFileThatCannotBeReadCountsAsAbsent)
{
    const ClientHome home;
    home.makeFolder(clientFiles::box);
    home.makeFolder(clientFiles::dropbox);
    EXPECT_EQ(rootBy<NBBoxCloudService>(), std::nullopt);
    EXPECT_EQ(rootBy<NBDropboxCloudService>(), std::nullopt);
}

} // namespace

} // namespace nimbrel::test
