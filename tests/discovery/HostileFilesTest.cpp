// Files of clients that damage made, or somebody to harm the reader: each probe answers, soon.
#include "discovery/NBCloudServiceDiscoveryController.h"

#include "ClientHome.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <random>

namespace nimbrel::test {

namespace {

class Mutator final
{
public:
    explicit Mutator(unsigned seed) : _dice(seed) {}

    std::string mutated(std::string text)
    {
        switch (pick(5)) {
        case 0:
            return noise(1 + pick(600), _dice());
        case 1:
            text.resize(pick(text.size()));
            return text;
        case 2:
            return text.insert(pick(text.size()), noise(1 + pick(9), _dice()));
        case 3: // a part of it many times
            return text.insert(pick(text.size()), repeated(text.substr(pick(text.size()), 40)));
        default:
            for (std::size_t flips = 1 + pick(6); flips > 0; --flips)
                text[pick(text.size())] = static_cast<char>(_dice());
            return text;
        }
    }

private:
    std::size_t pick(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(_dice);
    }
    std::string repeated(const std::string &part)
    {
        std::string text;
        for (std::size_t times = pick(100); times > 0; --times)
            text += part;
        return text;
    }

    std::mt19937_64 _dice;
};

struct Fixture
{
    std::string name;
    std::string text;
    unsigned rounds = 300;
};

std::string databaseFile(const ClientHome &home)
{
    const std::string path = home / clientFiles::googleDrive;
    runSql(path, "PRAGMA page_size=512;" + googleDriveTable("~/Sync"));
    return readFile(path);
}

std::vector<Fixture> fixtures(const ClientHome &home)
{
    const std::string settings(clientFiles::skyDriveFolder);
    return {{std::string(clientFiles::dropbox), clientFiles::ofDropbox("~/Sync")},
            {std::string(clientFiles::googleDrive), databaseFile(home), 200},
            {settings + "/a.ini", clientFiles::ofSkyDrive("~/Sync")},
            {std::string(clientFiles::sugarSync), clientFiles::ofSugarSync("~/Sync")},
            {std::string(clientFiles::sugarSync),
             "<plist><dict><key>General.DefaultSyncFolderPath</key><string>~/Sync</string>"
             "</dict></plist>"},
            {std::string(clientFiles::box), clientFiles::ofBox("~/Sync")},
            {".dropbox/info.json", R"({"personal": {"path": "/a", "host": 1, "is_team": false}})"},
            {".config/Nextcloud/nextcloud.cfg",
             "[Accounts]\n0\\Folders\\1\\localPath=/home/me/Cloud/\n0\\version=@ByteArray(\\x1)\n"
             "1\\Folders\\2\\localPath=\"/home/me/\\xe9, b\"\n",
             200},
            {".config/syncthing/config.xml",
             "<configuration version=\"37\"><folder id=\"a\" path=\"~/Sync\" type=\"sendonly\">"
             "<paused>false</paused></folder></configuration>"},
            {".config/onedrive/config", "# a comment\nsync_dir = \"~/Sync\"\n"}};
}

// Each service that is found has a root, be it a wrong one.
void expectAnswer()
{
    const auto services = NBCloudServiceDiscoveryController().availableServices();
    if (!services)
        return;
    EXPECT_FALSE(services->empty());
    for (const auto &service : *services)
        EXPECT_TRUE(service->storageURL().isLocalFile());
}

TEST(HostileFilesTest, EveryProbeAnswersWhateverIsInItsFile)
{
    unsigned seed = 1;
    for (const Fixture &fixture : fixtures(ClientHome())) {
        SCOPED_TRACE(fixture.name);
        const ClientHome home;
        home.makeFolder("Sync");
        home.write(std::string(clientFiles::skyDriveFolder) + "/a.dat", "");
        home.write(fixture.name, fixture.text);
        expectAnswer();
        Mutator mutator(seed++);
        for (unsigned round = 0; round < fixture.rounds; ++round) {
            std::filesystem::remove(home / fixture.name); // some disks take long to overwrite
            home.write(fixture.name, mutator.mutated(fixture.text));
            expectAnswer();
        }
    }
}

TEST(HostileFilesTest, NestingWithoutEndIsRefused)
{
    const ClientHome home;
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "<a>";
    home.write(".config/syncthing/config.xml", "<configuration>" + deep);
    home.write(clientFiles::sugarSync, "<plist>" + deep);
    home.write(".dropbox/info.json", std::string(1'000'000, '['));
    home.write(".config/Nextcloud/nextcloud.cfg", "[Accounts]\n0\\Folders\\1\\localPath=@Variant(" +
                                                      std::string(100'000, '\x9') + ")\n");
    expectAnswer();
}

TEST(HostileFilesTest, FilesOfAnAbsurdSizeAreNotRead)
{
    const ClientHome home;
    for (const std::string_view name : {clientFiles::dropbox, clientFiles::googleDrive,
                                        clientFiles::sugarSync, clientFiles::box}) {
        const std::string file = home.write(name, "");
        std::filesystem::resize_file(file, std::uintmax_t{1} << 40U); // a hole
    }
    EXPECT_FALSE(NBCloudServiceDiscoveryController().availableServices().has_value());
}

} // namespace

} // namespace nimbrel::test
