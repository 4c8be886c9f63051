#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

class LinksTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }

    static std::string targetOf(const std::string &path)
    {
        std::string target(5000, '\0');
        const ssize_t size =
            must(::readlink(path.c_str(), target.data(), target.size()), "readlink " + path);
        target.resize(static_cast<std::size_t>(size));
        return target;
    }
};

TEST_F(LinksTest, SymbolicOnesKeepEveryTargetAndTellItsLength)
{
    MountedFolder disk;
    std::vector<std::string> targets{"file",
                                     "./file",
                                     "../elsewhere/file",
                                     "/etc/hostname",
                                     "/",
                                     ".",
                                     "a//b/",
                                     "nowhere at all",
                                     "März ✓",
                                     "line\nbreak",
                                     std::string(189, 'x'),
                                     std::string(255, 'y')};
    for (const std::size_t length : {500U, 1000U, 2000U, 2500U})
        targets.emplace_back(length, 'z');
    for (std::size_t i = 0; i < targets.size(); ++i)
        ASSERT_EQ(::symlink(targets[i].c_str(), (disk / std::to_string(i)).c_str()), 0) << i;
    for (const bool again : {false, true}) {
        if (again)
            disk.remount();
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const std::string link = disk / std::to_string(i);
            EXPECT_EQ(targetOf(link), targets[i]);
            EXPECT_EQ(statusOf(link).st_size, static_cast<off_t>(targets[i].size()));
            EXPECT_TRUE(S_ISLNK(statusOf(link).st_mode));
        }
    }
}

TEST_F(LinksTest, SymbolicOnesWithATooLongTargetAreRefusedAndLeaveNothing)
{
    const MountedFolder disk;
    const std::string target(4096, 'x');
    EXPECT_EQ(errnoOf([&] { return ::symlink(target.c_str(), (disk / "link").c_str()); }),
              ENAMETOOLONG);
    EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{});
}

TEST_F(LinksTest, SymbolicOnesLeadToTheirFiles)
{
    MountedFolder disk;
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    writeFile(disk / "folder/file", "text");
    ASSERT_EQ(::symlink("folder/file", (disk / "relative").c_str()), 0);
    ASSERT_EQ(::symlink((disk / "folder/file").c_str(), (disk / "absolute").c_str()), 0);
    ASSERT_EQ(::symlink("folder", (disk / "to folder").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", (disk / "dangling").c_str()), 0);
    disk.remount();
    EXPECT_EQ(readFile(disk / "relative"), "text");
    EXPECT_EQ(readFile(disk / "absolute"), "text");
    EXPECT_EQ(readFile(disk / "to folder/file"), "text");
    EXPECT_EQ(errnoOf([&] { return ::access((disk / "dangling").c_str(), F_OK); }), ENOENT);
    writeFile(disk / "dangling", "now there");
    EXPECT_EQ(readFile(disk / "nowhere"), "now there");
    EXPECT_EQ(errnoOf([&] {
                  return ::open((disk / "relative").c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
              }),
              ELOOP);
}

TEST_F(LinksTest, RemovingASymbolicOneLeavesItsFile)
{
    const MountedFolder disk;
    writeFile(disk / "file", "text");
    ASSERT_EQ(::symlink("file", (disk / "link").c_str()), 0);
    ASSERT_EQ(::rename((disk / "link").c_str(), (disk / "moved").c_str()), 0);
    EXPECT_EQ(targetOf(disk / "moved"), "file");
    ASSERT_EQ(::unlink((disk / "moved").c_str()), 0);
    EXPECT_EQ(readFile(disk / "file"), "text");
}

TEST_F(LinksTest, HardOnesShareContentAndCount)
{
    MountedFolder disk;
    writeFile(disk / "one", "text");
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    ASSERT_EQ(::link((disk / "one").c_str(), (disk / "two").c_str()), 0);
    ASSERT_EQ(::link((disk / "two").c_str(), (disk / "folder/three").c_str()), 0);
    for (const bool again : {false, true}) {
        if (again)
            disk.remount();
        for (const char *name : {"one", "two", "folder/three"}) {
            EXPECT_EQ(statusOf(disk / name).st_nlink, 3U) << name;
            EXPECT_EQ(statusOf(disk / name).st_ino, statusOf(disk / "one").st_ino) << name;
        }
    }
    OpenFile(disk / "two", O_WRONLY).writeAt("TEXT", 0);
    EXPECT_EQ(readFile(disk / "one"), "TEXT");
    EXPECT_EQ(readFile(disk / "folder/three"), "TEXT");
    ASSERT_EQ(::unlink((disk / "one").c_str()), 0);
    EXPECT_EQ(statusOf(disk / "two").st_nlink, 2U);
    disk.remount();
    EXPECT_EQ(readFile(disk / "folder/three"), "TEXT");
}

TEST_F(LinksTest, AChangeThroughOneHardOneIsSeenThroughTheOtherAtOnce)
{
    const MountedFolder disk;
    writeFile(disk / "one", noise(5000, 1));
    ASSERT_EQ(::link((disk / "one").c_str(), (disk / "two").c_str()), 0);
    const OpenFile one(disk / "one", O_RDWR);
    const OpenFile two(disk / "two", O_RDWR);
    EXPECT_TRUE(two.all() == noise(5000, 1));
    one.writeAt("changed", 3000);
    EXPECT_EQ(two.readAt(7, 3000), "changed");
    one.truncate(3003);
    EXPECT_EQ(two.size(), 3003);
    EXPECT_EQ(statusOf(disk / "two").st_size, 3003);
    ASSERT_EQ(::chmod((disk / "two").c_str(), 0600), 0);
    EXPECT_EQ(statusOf(disk / "one").st_mode & 07777U, 0600U);
}

TEST_F(LinksTest, AFileThatWasRenamedFirstIsStillOneFileUnderASecondName)
{
    const MountedFolder disk;
    writeFile(disk / "old", noise(5000, 1));
    ASSERT_EQ(::rename((disk / "old").c_str(), (disk / "one").c_str()), 0);
    const OpenFile one(disk / "one", O_RDWR);
    EXPECT_EQ(one.size(), 5000);
    ASSERT_EQ(::link((disk / "one").c_str(), (disk / "two").c_str()), 0);
    ASSERT_EQ(::truncate((disk / "two").c_str(), 100), 0);
    EXPECT_EQ(one.size(), 100);
    EXPECT_TRUE(one.all() == noise(5000, 1).substr(0, 100));
    OpenFile(disk / "two", O_WRONLY).writeAt("seen", 10);
    EXPECT_EQ(one.readAt(4, 10), "seen");
}

TEST_F(LinksTest, HardOnesToFoldersAndOverFilesAreRefused)
{
    const MountedFolder disk;
    writeFile(disk / "one", "1");
    writeFile(disk / "two", "2");
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    const auto error = [&](const char *from, const char *to) {
        return errnoOf([&] { return ::link((disk / from).c_str(), (disk / to).c_str()); });
    };
    EXPECT_EQ(error("one", "two"), EEXIST);
    EXPECT_EQ(error("folder", "other"), EPERM);
    EXPECT_EQ(error("nothing", "other"), ENOENT);
    EXPECT_EQ(readFile(disk / "two"), "2");
}

TEST_F(LinksTest, InodeNumbersStayOverRenamesAndRemounts)
{
    MountedFolder disk;
    writeFile(disk / "file", "text");
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    const ino_t file = statusOf(disk / "file").st_ino;
    const ino_t folder = statusOf(disk / "folder").st_ino;
    ASSERT_EQ(::rename((disk / "file").c_str(), (disk / "folder/moved").c_str()), 0);
    EXPECT_EQ(statusOf(disk / "folder/moved").st_ino, file);
    disk.remount();
    EXPECT_EQ(statusOf(disk / "folder/moved").st_ino, file);
    EXPECT_EQ(statusOf(disk / "folder").st_ino, folder);
}

} // namespace
} // namespace nimbrel::test
