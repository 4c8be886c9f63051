#include "discovery/NBCloudServiceDiscoveryController.h"

#include "ClientHome.h"
#include "Names.h"

#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

using Controller = NBCloudServiceDiscoveryController;

NamedRoots available()
{
    const auto services = Controller().availableServices();
    return services ? namedRoots(*services) : NamedRoots();
}

void installDropbox(const ClientHome &home, std::string_view root)
{
    home.write(clientFiles::dropbox, clientFiles::ofDropbox(root));
}

void nameDropboxAccount(const ClientHome &home, std::string_view root)
{
    home.write(".dropbox/info.json", fmt::format(R"({{"personal": {{"path": "{}"}}}})", root));
}

TEST(NBCloudServiceDiscoveryControllerTest, WithNoClientAtAllThereIsNothing)
{
    const ClientHome home;
    EXPECT_FALSE(Controller().availableServices().has_value());
}

TEST(NBCloudServiceDiscoveryControllerTest, TheFiveClassesStandInTheirOrder)
{
    std::vector<std::string> names;
    for (const auto newService : Controller::serviceClasses())
        names.push_back(newService()->name().toStdString());
    EXPECT_EQ(names, (std::vector<std::string>{"Dropbox", "Google Drive", "SkyDrive", "Sugar Sync",
                                               "Box"}));
}

TEST(NBCloudServiceDiscoveryControllerTest, TheFiveComeInTheirOrderAndThenTheOthers)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Sync");
    const std::string cloud = home.makeFolder("OneDrive");
    home.write(".config/onedrive/config", "");
    home.write(clientFiles::box, clientFiles::ofBox(root));
    home.write(clientFiles::sugarSync, clientFiles::ofSugarSync(root));
    const std::string settings(clientFiles::skyDriveFolder);
    home.write(settings + "/a.ini", clientFiles::ofSkyDrive(root));
    home.write(settings + "/a.dat", "");
    runSql(home / clientFiles::googleDrive, googleDriveTable(root));
    installDropbox(home, root);
    EXPECT_EQ(available(), (NamedRoots{{"Dropbox", root},
                                       {"Google Drive", root},
                                       {"SkyDrive", root},
                                       {"Sugar Sync", root},
                                       {"Box", root},
                                       {"OneDrive", cloud}}));
}

TEST(NBCloudServiceDiscoveryControllerTest, ClientsThatAreNotInstalledAreLeftOut)
{
    const ClientHome home;
    home.write(clientFiles::box, clientFiles::ofBox("~"));
    installDropbox(home, home / "not there");
    EXPECT_EQ(available(), (NamedRoots{{"Box", home.path()}}));
}

TEST(NBCloudServiceDiscoveryControllerTest, ARootThatTwoWaysLeadToAppearsOnce)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Dropbox");
    std::filesystem::create_symlink(root, home / "Link");
    installDropbox(home, root);
    nameDropboxAccount(home, home / "Link");
    EXPECT_EQ(available(), (NamedRoots{{"Dropbox", root}}));
}

TEST(NBCloudServiceDiscoveryControllerTest, AnotherRootOfTheSameClientHasANameOfItsOwn)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Dropbox");
    const std::string other = home.makeFolder("Other");
    installDropbox(home, root);
    nameDropboxAccount(home, other);
    EXPECT_EQ(available(), (NamedRoots{{"Dropbox", root}, {"Dropbox (Other)", other}}));
}

TEST(NBCloudServiceDiscoveryControllerTest, TheProbeStaysFalseWhereAnotherWayFindsTheClient)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Dropbox");
    home.write(clientFiles::dropbox, "one line\n");
    nameDropboxAccount(home, root);
    EXPECT_FALSE(Controller::serviceClasses().front()()->isAvailable());
    EXPECT_EQ(available(), (NamedRoots{{"Dropbox", root}}));
}

} // namespace

} // namespace nimbrel::test
