// Attributes as every program takes them for granted, in each reply that carries them.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <algorithm>
#include <dirent.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>

namespace nimbrel::test {

namespace {

class DiskAmongDisksAttributesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        _umask = ::umask(022);
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>();
    }
    void TearDown() override { ::umask(_umask); }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string path(const std::string &name) const { return *_disk / name; }

    void makeOneOfEachKind()
    {
        writeFile(path("file"), noise(5000, 1));
        must(::mkdir(path("folder").c_str(), 0755), "mkdir");
        must(::mkdir(path("folder/inner").c_str(), 0755), "mkdir");
        must(::symlink("some/where/else", path("link").c_str()), "symlink");
        must(::mkfifo(path("pipe").c_str(), 0640), "mkfifo");
        must(::link(path("file").c_str(), path("second").c_str()), "link");
    }

private:
    mode_t _umask = 022;
    std::unique_ptr<MountedFolder> _disk;
};

using InodesByName = std::map<std::string, ino_t>;

// As readdir(3) gives them.
InodesByName listedInodes(const std::string &folder)
{
    InodesByName inodes;
    DIR *stream = ::opendir(folder.c_str());
    if (stream == nullptr)
        must(-1, "opendir " + folder);
    while (const dirent *entry = ::readdir(stream))
        inodes.emplace(static_cast<const char *>(entry->d_name), entry->d_ino);
    ::closedir(stream);
    return inodes;
}

std::vector<ino_t> inodesBelow(const std::string &folder)
{
    std::vector<ino_t> inodes;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
        inodes.push_back(statusOf(entry.path()).st_ino);
    std::sort(inodes.begin(), inodes.end());
    return inodes;
}

void expectTheKindsAsMade(const MountedFolder &disk)
{
    constexpr off_t lengthOfTarget = 15;
    EXPECT_EQ(statusOf(disk / "link").st_size, lengthOfTarget);
    EXPECT_TRUE(S_ISLNK(statusOf(disk / "link").st_mode));
    for (const char *name : {"file", "second"}) {
        EXPECT_EQ(statusOf(disk / name).st_size, 5000) << name;
        EXPECT_EQ(statusOf(disk / name).st_nlink, 2U) << name;
        EXPECT_TRUE(S_ISREG(statusOf(disk / name).st_mode)) << name;
    }
    EXPECT_EQ(statusOf(disk / "file").st_ino, statusOf(disk / "second").st_ino);
    EXPECT_TRUE(S_ISDIR(statusOf(disk / "folder").st_mode));
    EXPECT_TRUE(S_ISFIFO(statusOf(disk / "pipe").st_mode));
    EXPECT_EQ(statusOf(disk / "pipe").st_mode & 07777U, 0640U);
}

TEST_F(DiskAmongDisksAttributesTest, TheReplyThatMakesAnItemTellsThem)
{
    makeOneOfEachKind();
    expectTheKindsAsMade(disk());
}

TEST_F(DiskAmongDisksAttributesTest, LookingUpTellsThem)
{
    makeOneOfEachKind();
    disk().remount();
    expectTheKindsAsMade(disk());
}

// A listing brings the attributes along; what follows is answered from them.
TEST_F(DiskAmongDisksAttributesTest, ListingTellsThem)
{
    makeOneOfEachKind();
    disk().remount();
    (void)listedInodes(disk().plain());
    expectTheKindsAsMade(disk());
}

TEST_F(DiskAmongDisksAttributesTest, InodeNumbersAreThoseOfTheStoredItems)
{
    makeOneOfEachKind();
    std::vector<ino_t> stored = inodesBelow(disk().encrypted());
    for (const ino_t inode : inodesBelow(disk().plain()))
        EXPECT_TRUE(std::binary_search(stored.begin(), stored.end(), inode)) << inode;
    EXPECT_EQ(statusOf(disk().plain()).st_ino, statusOf(disk().encrypted()).st_ino);
}

TEST_F(DiskAmongDisksAttributesTest, InodeNumbersInListingsAreTheSame)
{
    makeOneOfEachKind();
    for (int round = 0; round < 2; ++round) {
        for (const auto &[name, inode] : listedInodes(disk().plain())) {
            if (name != "..") { // lies outside
                EXPECT_EQ(inode, statusOf(path(name)).st_ino) << name;
            }
        }
        const InodesByName inner = listedInodes(path("folder"));
        EXPECT_EQ(inner.at("."), statusOf(path("folder")).st_ino);
        EXPECT_EQ(inner.at(".."), statusOf(disk().plain()).st_ino);
        disk().remount();
    }
}

TEST_F(DiskAmongDisksAttributesTest, InodeNumbersStay)
{
    makeOneOfEachKind();
    const InodesByName before = listedInodes(disk().plain());
    const ino_t inner = statusOf(path("folder/inner")).st_ino;
    must(::rename(path("folder").c_str(), path("moved").c_str()), "rename");
    must(::rename(path("file").c_str(), path("moved/file").c_str()), "rename");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(statusOf(path("moved")).st_ino, before.at("folder"));
        EXPECT_EQ(statusOf(path("moved/file")).st_ino, before.at("file"));
        EXPECT_EQ(statusOf(path("moved/inner")).st_ino, inner);
        EXPECT_EQ(statusOf(path("link")).st_ino, before.at("link"));
        disk().remount();
    }
}

TEST_F(DiskAmongDisksAttributesTest, AnOpenFileTellsTheSameAsItsPath)
{
    const OpenFile file(path("a"), O_CREAT | O_RDWR);
    EXPECT_EQ(file.status().st_size, 0);
    file.writeAt("text", 9000);
    const struct stat byPath = statusOf(path("a"));
    EXPECT_EQ(file.status().st_ino, byPath.st_ino);
    EXPECT_EQ(file.status().st_size, 9004);
    EXPECT_EQ(byPath.st_size, 9004);
    must(::rename(path("a").c_str(), path("b").c_str()), "rename");
    EXPECT_EQ(file.status().st_ino, byPath.st_ino);
    EXPECT_EQ(statusOf(path("b")).st_ino, byPath.st_ino);
}

TEST_F(DiskAmongDisksAttributesTest, SizesAreThePlainOnes)
{
    for (const std::size_t size : {0U, 1U, 15U, 16U, 4095U, 4096U, 4097U, 8192U, 12'345U, 65'536U})
        writeFile(path(std::to_string(size)), noise(size, size));
    for (int round = 0; round < 2; ++round) {
        for (const std::string &name : namesIn(disk().plain()))
            EXPECT_EQ(std::to_string(statusOf(path(name)).st_size), name);
        disk().remount();
    }
}

TEST_F(DiskAmongDisksAttributesTest, BlocksTellWhatIsUsed)
{
    const OpenFile full(path("full"), O_CREAT | O_RDWR);
    full.writeAt(noise(200'000, 1), 0);
    full.sync(); // stores count late
    OpenFile(path("sparse"), O_CREAT | O_RDWR).truncate(off_t{1} << 30);
    EXPECT_GE(statusOf(path("full")).st_blocks * 512, 200'000);
    EXPECT_LT(statusOf(path("sparse")).st_blocks * 512, 1'000'000);
}

TEST_F(DiskAmongDisksAttributesTest, LinkCountsFollowAtOnce)
{
    const OpenFile file(path("a"), O_CREAT | O_RDWR);
    for (int links = 2; links <= 5; ++links) {
        must(::link(path("a").c_str(), path(std::to_string(links)).c_str()), "link");
        EXPECT_EQ(statusOf(path("a")).st_nlink, static_cast<nlink_t>(links));
        EXPECT_EQ(file.status().st_nlink, static_cast<nlink_t>(links));
    }
    must(::unlink(path("a").c_str()), "unlink");
    EXPECT_EQ(statusOf(path("3")).st_nlink, 4U);
    must(::rename(path("2").c_str(), path("4").c_str()), "rename"); // of one file: does nothing
    EXPECT_EQ(statusOf(path("4")).st_nlink, 4U);
    writeFile(path("other"), "text");
    must(::rename(path("other").c_str(), path("4").c_str()), "rename");
    EXPECT_EQ(file.status().st_nlink, 3U);
}

TEST_F(DiskAmongDisksAttributesTest, FoldersCountLinksAsTheirStoreDoes)
{
    makeOneOfEachKind();
    const ino_t inode = statusOf(path("folder")).st_ino;
    int found = 0;
    for (const auto &entry : std::filesystem::directory_iterator(disk().encrypted())) {
        const struct stat stored = statusOf(entry.path());
        if (stored.st_ino != inode)
            continue;
        ++found;
        EXPECT_EQ(statusOf(path("folder")).st_nlink, stored.st_nlink);
    }
    EXPECT_EQ(found, 1);
}

TEST_F(DiskAmongDisksAttributesTest, EveryModeIsKept)
{
    writeFile(path("file"), "text");
    must(::mkdir(path("folder").c_str(), 0755), "mkdir");
    for (const mode_t mode : {0000U, 0400U, 0604U, 0755U, 0777U, 01777U, 02755U, 04755U, 07777U})
        for (const char *name : {"file", "folder"}) {
            must(::chmod(path(name).c_str(), mode), "chmod");
            EXPECT_EQ(statusOf(path(name)).st_mode & 07777U, mode) << name;
        }
    must(::chmod(path("folder").c_str(), 0755), "chmod");
    must(::chmod(path("file").c_str(), 0640), "chmod");
    disk().remount();
    EXPECT_EQ(statusOf(path("file")).st_mode, S_IFREG | 0640U);
}

TEST_F(DiskAmongDisksAttributesTest, TheUmaskOfTheCallerCounts)
{
    for (const mode_t mask : {0000U, 0022U, 0027U, 0077U}) {
        const std::string name = std::to_string(mask);
        ::umask(mask);
        const OpenFile file(path("file" + name), O_CREAT | O_RDWR, 0666);
        must(::mkdir(path("folder" + name).c_str(), 0777), "mkdir");
        must(::mkfifo(path("pipe" + name).c_str(), 0666), "mkfifo");
        EXPECT_EQ(file.status().st_mode & 07777U, 0666U & ~mask);
        EXPECT_EQ(statusOf(path("folder" + name)).st_mode & 07777U, 0777U & ~mask);
        EXPECT_EQ(statusOf(path("pipe" + name)).st_mode & 07777U, 0666U & ~mask);
    }
}

TEST_F(DiskAmongDisksAttributesTest, OwnersAreKept)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    makeOneOfEachKind();
    for (const char *name : {"file", "folder", "link", "pipe"}) {
        must(::lchown(path(name).c_str(), 60111, 60112), "lchown");
        must(::lchown(path(name).c_str(), static_cast<uid_t>(-1), 60113), "lchown");
    }
    disk().remount();
    for (const char *name : {"file", "folder", "link", "pipe"}) {
        EXPECT_EQ(statusOf(path(name)).st_uid, 60111U) << name;
        EXPECT_EQ(statusOf(path(name)).st_gid, 60113U) << name;
    }
}

} // namespace

} // namespace nimbrel::test
