#include "discovery/linux/LinuxServices.h"

#include "ClientHome.h"
#include "Names.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

// The folders that a client of these tests names; set by each.
QList<QString> &foldersNow()
{
    static QList<QString> folders;
    return folders;
}

QList<QString> namedFolders()
{
    return foldersNow();
}

void setFolders(const std::vector<std::string> &paths)
{
    foldersNow().clear();
    for (const std::string &path : paths)
        foldersNow().append(QString::fromStdString(path));
}

std::vector<std::unique_ptr<NBCloudService>> servicesOf(const std::vector<std::string> &paths,
                                                        bool isMounted = false)
{
    setFolders(paths);
    return linuxServices({}, {{"Cloud", namedFolders, isMounted}});
}

TEST(LinuxServicesTest, TheFirstFolderHasTheClientsNameAndTheOthersTheirOwn)
{
    const ClientHome home;
    const std::string a = home.makeFolder("A");
    const std::string b = home.makeFolder("B");
    const std::string again = home.makeFolder("sub/B");
    EXPECT_EQ(namedRoots(servicesOf({a + "/", b + "/", again})),
              (NamedRoots{{"Cloud", a}, {"Cloud (B)", b}, {"Cloud (~/sub/B)", again}}));
}

TEST(LinuxServicesTest, AFolderThatNamesItsClientIsNamedByItself)
{
    const ClientHome home;
    const std::string a = home.makeFolder("Cloud (Me)");
    const std::string b = home.makeFolder("Cloud (Company)");
    const std::string c = home.makeFolder("Clouds");
    EXPECT_EQ(namedRoots(servicesOf({a, b, c})),
              (NamedRoots{{"Cloud", a}, {"Cloud (Company)", b}, {"Cloud (Clouds)", c}}));
}

TEST(LinuxServicesTest, AFolderAppearsOnceWhateverPathLeadsToIt)
{
    const ClientHome home;
    const std::string a = home.makeFolder("A");
    std::filesystem::create_symlink(a, home / "Link");
    EXPECT_EQ(namedRoots(servicesOf({a, a + "/", home / "Link", home / "A/../A", "~/A"})),
              (NamedRoots{{"Cloud", a}}));
}

TEST(LinuxServicesTest, FoldersThatAreNotThereAreLeftOut)
{
    const ClientHome home;
    const std::string a = home.makeFolder("A");
    EXPECT_EQ(namedRoots(servicesOf({home / "gone", "", "relative", "~nobody.here/A", a})),
              (NamedRoots{{"Cloud", a}}));
}

TEST(LinuxServicesTest, ClientsComeInTheirOrder)
{
    const ClientHome home;
    const std::string a = home.makeFolder("A");
    const std::string cloud = home.makeFolder("OneDrive");
    home.write(".config/onedrive/config", "");
    home.write(".config/syncthing/config.xml",
               "<configuration><folder path=\"~/A\"/></configuration>");
    EXPECT_EQ(namedRoots(linuxServices({})), (NamedRoots{{"Syncthing", a}, {"OneDrive", cloud}}));
}

TEST(LinuxServicesTest, AServiceLooksAnewAtEachCall)
{
    const ClientHome home;
    const std::string a = home.makeFolder("A");
    const auto services = servicesOf({a});
    ASSERT_EQ(services.size(), 1U);
    EXPECT_TRUE(services.front()->isAvailable());
    std::filesystem::remove(a);
    EXPECT_FALSE(services.front()->isAvailable());
    home.makeFolder("A");
    EXPECT_TRUE(services.front()->isAvailable());
    setFolders({});
    EXPECT_FALSE(services.front()->isAvailable());
    EXPECT_EQ(services.front()->storageURL().toLocalFile().toStdString(), a);
}

TEST(LinuxServicesTest, NobodyLooksAtAMount)
{
    const ClientHome home;
    const std::string mount = home / "a mount that nothing is at";
    const auto services = servicesOf({mount}, true);
    EXPECT_EQ(namedRoots(services), (NamedRoots{{"Cloud", mount}}));
    EXPECT_TRUE(services.front()->isAvailable());
    setFolders({});
    EXPECT_FALSE(services.front()->isAvailable());
}

} // namespace

} // namespace nimbrel::test
