#include "discovery/FolderSearch.h"
#include "config/UniqueFd.h"
#include "discovery/NBCloudServiceDiscoveryController.h"

#include "fs/OrdinaryRights.h"
#include "support/Files.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace fs = std::filesystem;

void make(const TempFolder &folder, const std::string &name)
{
    static_cast<void>(folder.makeFolder(name));
}

// What is found below `folder`, without its path and in the order of the alphabet.
std::vector<std::string> foundIn(const std::string &folder)
{
    std::vector<std::string> names;
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(folder));
    for (const QUrl &found : NBCloudServiceDiscoveryController().nmFoldersWithURL(url)) {
        const std::string path = found.toLocalFile().toStdString();
        EXPECT_TRUE(path.starts_with(folder + "/")) << path;
        names.push_back(path.substr(folder.size() + 1));
    }
    std::sort(names.begin(), names.end());
    return names;
}

using Names = std::vector<std::string>;

TEST(FolderSearchTest, FoldersOfTheNewExtensionAreTakenWithoutALookInside)
{
    const TempFolder folder;
    EXPECT_EQ(foundIn(folder.path()), Names());
    for (const char *name : {"Empty.nmc", "Work/Deep/Full.nmc", "Nothing", "nmc", "x.nmcx", "y."})
        make(folder, name);
    EXPECT_EQ(foundIn(folder.path()), (Names{"Empty.nmc", "Work/Deep/Full.nmc"}));
}

TEST(FolderSearchTest, TheExtensionIsTakenInCapitalsToo)
{
    const TempFolder folder;
    make(folder, "Secret.NMC");
    writeFile(folder.makeFolder("Old.Nm") + "/.encfs6.xml", "");
    EXPECT_EQ(foundIn(folder.path()), (Names{"Old.Nm", "Secret.NMC"}));
}

TEST(FolderSearchTest, AFolderOfTheOldExtensionNeedsAConfiguration)
{
    const TempFolder folder;
    make(folder, "Old.nm");
    writeFile(folder.makeFolder("New.nm") + "/.encfs6.xml", "");
    writeFile(folder.makeFolder("Key.nm") + "/Keyfile.nmx", "");
    writeFile(folder.makeFolder("Other.nm") + "/Keyfile.txt", "");
    EXPECT_EQ(foundIn(folder.path()), (Names{"Key.nm", "New.nm"}));
}

TEST(FolderSearchTest, AFolderThatIsNotTakenIsGoneIntoWhateverItsExtension)
{
    const TempFolder folder;
    make(folder, "Old.nm/Inside.nmc");
    EXPECT_EQ(foundIn(folder.path()), Names{"Old.nm/Inside.nmc"});
}

TEST(FolderSearchTest, AnEncryptedFolderIsNotGoneInto)
{
    const TempFolder folder;
    make(folder, "A.nmc/Inside.nmc");
    writeFile(folder.makeFolder("B.nm") + "/.encfs6.xml", "");
    make(folder, "B.nm/Inside.nmc");
    EXPECT_EQ(foundIn(folder.path()), (Names{"A.nmc", "B.nm"}));
}

TEST(FolderSearchTest, HiddenItemsAreSkippedWithAllThatIsInThem)
{
    const TempFolder folder;
    make(folder, ".Hidden.nmc");
    make(folder, ".nmc");
    make(folder, ".cache/Deep.nmc");
    EXPECT_EQ(foundIn(folder.path()), Names());
}

TEST(FolderSearchTest, AnItemNeedNotBeAFolder)
{
    const TempFolder folder;
    writeFile(folder / "File.nmc", "");
    fs::create_symlink("/nowhere", folder / "Link.nmc");
    EXPECT_EQ(foundIn(folder.path()), (Names{"File.nmc", "Link.nmc"}));
}

TEST(FolderSearchTest, LinksAreNotFollowed)
{
    const TempFolder folder;
    make(folder, "A/B/Found.nmc");
    fs::create_symlink(folder.path(), folder / "A/B/Up");
    fs::create_symlink(folder / "A/B", folder / "Across");
    EXPECT_EQ(foundIn(folder.path()), Names{"A/B/Found.nmc"});
}

TEST(FolderSearchTest, TheFolderItselfMayBeALink)
{
    const TempFolder folder;
    make(folder, "Real/Found.nmc");
    fs::create_symlink("Real", folder / "Link");
    EXPECT_EQ(foundIn(folder / "Link"), Names{"Found.nmc"});
}

TEST(FolderSearchTest, WhatIsNoFolderHasNoFolders)
{
    const TempFolder folder;
    writeFile(folder / "File", "");
    EXPECT_EQ(foundIn(folder / "File"), Names());
    EXPECT_EQ(foundIn(folder / "not there"), Names());
    const NBCloudServiceDiscoveryController controller;
    EXPECT_TRUE(controller.nmFoldersWithURL(QUrl()).isEmpty());
    EXPECT_TRUE(controller.nmFoldersWithURL(QUrl(QStringLiteral("https://a/b"))).isEmpty());
}

TEST(FolderSearchTest, AFinalSlashOfTheFolderDoesNotCount)
{
    const TempFolder folder;
    make(folder, "Found.nmc");
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(folder.path() + "/"));
    const QList<QUrl> found = NBCloudServiceDiscoveryController().nmFoldersWithURL(url);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found.first().toLocalFile().toStdString(), folder / "Found.nmc");
}

TEST(FolderSearchTest, NamesWithDifficultCharactersAreFound)
{
    const TempFolder folder;
    const Names names = {"100%25 #1?.nmc", "Tr\xC3\xA9sor.nmc", "line\nfeed.nmc"};
    for (const std::string &name : names)
        make(folder, name);
    make(folder, "not \xFF utf8.nmc"); // has no URL
    EXPECT_EQ(foundIn(folder.path()), names);
}

TEST(FolderSearchTest, AFolderStandsBeforeWhatFollowsItInTheListing)
{
    const TempFolder folder;
    for (const char *name : {"a/1.nmc", "a/2.nmc", "b/1.nmc", "b/c/1.nmc", "b/c/2.nmc", "d.nmc"})
        make(folder, name);
    Names expected;
    for (const auto &entry : fs::recursive_directory_iterator(folder.path()))
        if (entry.path().extension() == ".nmc")
            expected.push_back(entry.path());
    EXPECT_EQ(FolderSearch(folder.path(), {}).run(), expected);
}

TEST(FolderSearchTest, AFolderThatCannotBeReadIsPassedOver)
{
    const OrdinaryRights rights;
    const TempFolder folder;
    make(folder, "Closed/Inside.nmc");
    make(folder, "Open/Found.nmc");
    ::chmod((folder / "Closed").c_str(), 0);
    EXPECT_EQ(foundIn(folder.path()), Names{"Open/Found.nmc"});
    ::chmod((folder / "Closed").c_str(), 0755);
}

TEST(FolderSearchTest, DisksOfOtherProgramsAreNotGoneInto)
{
    const TempFolder folder;
    for (const char *name : {"Disk/In.nmc", "Remote/In.nmc", "Stick/In.nmc", "Bound/In.nmc"})
        make(folder, name);
    fs::create_symlink(folder.path(), folder / ".link");
    const std::vector<Mount> mounts = {{.point = folder.path(), .type = "fuse.rclone"},
                                       {.point = folder / "Disk", .type = "fuse.nimbrel"},
                                       {.point = folder / "Remote", .type = "fuse.rclone"},
                                       {.point = folder / "Stick", .type = "fuseblk"},
                                       {.point = folder / "Bound", .type = "ext4"}};
    for (const std::string &root : {folder.path(), folder / ".link"}) {
        Names found = FolderSearch(root, {}, mounts).run();
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found, (Names{root + "/Bound/In.nmc", root + "/Stick/In.nmc"}));
    }
}

TEST(FolderSearchTest, ATreeDeeperThanPathsMayBeEnds)
{
    const TempFolder folder;
    make(folder, "Found.nmc");
    const std::string name(200, 'd');
    UniqueFd place(::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int depth = 0; depth < 40; ++depth) { // step by step: as a path it is too long
        ASSERT_EQ(::mkdirat(place.get(), name.c_str(), 0755), 0);
        place.reset(::openat(place.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    EXPECT_EQ(foundIn(folder.path()), Names{"Found.nmc"});
}

// 40 folders of 50 files.
void makeTree(const TempFolder &folder)
{
    for (int i = 0; i < 40; ++i) {
        const std::string path = folder.makeFolder("d" + std::to_string(i));
        for (int k = 0; k < 50; ++k)
            writeFile(path + "/file" + std::to_string(k), "");
        make(folder, "d" + std::to_string(i) + "/Found.nmc");
    }
}

TEST(FolderSearchTest, ASearchThatIsStoppedBeforehandVisitsNothing)
{
    const TempFolder folder;
    makeTree(folder);
    std::stop_source stop;
    stop.request_stop();
    FolderSearch search(folder.path(), stop.get_token());
    EXPECT_TRUE(search.run().empty());
    EXPECT_EQ(search.visited(), 0U);
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(folder.path()));
    EXPECT_TRUE(
        NBCloudServiceDiscoveryController().nmFoldersWithURL(url, stop.get_token()).isEmpty());
}

TEST(FolderSearchTest, ASearchThatIsNotStoppedVisitsEverything)
{
    const TempFolder folder;
    makeTree(folder);
    FolderSearch search(folder.path(), std::stop_source().get_token());
    EXPECT_EQ(search.run().size(), 40U);
    // With "." and ".." of each folder.
    EXPECT_EQ(search.visited(), 40U + 2 + 40U * (50 + 1 + 2));
}

TEST(FolderSearchTest, ASearchIsLeftInTheMiddle)
{
    // Enough that searching it again and again outlasts the wait for the stop.
    const TempFolder folder;
    makeTree(folder);
    std::stop_source stop;
    std::atomic<std::size_t> rounds = 0;
    std::chrono::steady_clock::time_point end;
    std::thread thread([&] {
        while (!stop.stop_requested()) {
            FolderSearch search(folder.path(), stop.get_token());
            static_cast<void>(search.run());
            ++rounds;
        }
        end = std::chrono::steady_clock::now();
    });
    EXPECT_TRUE(eventually([&] { return rounds > 0; }));
    const auto asked = std::chrono::steady_clock::now();
    stop.request_stop();
    thread.join();
    EXPECT_LT(end - asked, std::chrono::seconds(1));
}

} // namespace

} // namespace nimbrel::test
