// Files that lost their name while open go on as if nothing had happened.
#include "mount/Calls.h"
#include "mount/Mapping.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <array>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

class UnlinkedTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>();
        _before = namesIn(_disk->encrypted());
    }

    // A file of `text` that has no name any more.
    [[nodiscard]] OpenFile unlinked(const std::string &text) const
    {
        OpenFile file(*_disk / "file", O_RDWR | O_CREAT | O_EXCL);
        file.writeAt(text, 0);
        must(::unlink((*_disk / "file").c_str()), "unlink");
        return file;
    }

    std::unique_ptr<MountedFolder> _disk;
    std::vector<std::string> _before;
};

TEST_F(UnlinkedTest, ReadsAndWrites)
{
    const std::string text = noise(20'000, 1);
    const OpenFile file = unlinked(text);
    EXPECT_TRUE(file.all() == text);
    file.writeAt("changed", 4093);
    file.writeAt(text, 20'000);
    EXPECT_EQ(file.size(), 40'000);
    EXPECT_TRUE(file.all() == std::string(text).replace(4093, 7, "changed") + text);
}

TEST_F(UnlinkedTest, ReadsFromTheStoreAndNotFromACache)
{
    const std::string text = noise(50'000, 2);
    const OpenFile file = unlinked(text);
    file.sync();
    ASSERT_EQ(::posix_fadvise(file.id(), 0, 0, POSIX_FADV_DONTNEED), 0);
    EXPECT_TRUE(file.all() == text);
}

TEST_F(UnlinkedTest, TellsItsStatus)
{
    const OpenFile file = unlinked("12345");
    const struct stat status = file.status();
    EXPECT_EQ(status.st_nlink, 0U);
    EXPECT_EQ(status.st_size, 5);
    EXPECT_TRUE(S_ISREG(status.st_mode));
}

TEST_F(UnlinkedTest, ChangesItsSize)
{
    const std::string text = noise(9000, 3);
    const OpenFile file = unlinked(text);
    file.truncate(4100);
    EXPECT_EQ(file.size(), 4100);
    file.truncate(12'000);
    EXPECT_TRUE(file.all() == text.substr(0, 4100) + std::string(7900, '\0'));
}

TEST_F(UnlinkedTest, ChangesItsMode)
{
    const OpenFile file = unlinked("text");
    ASSERT_EQ(::fchmod(file.id(), 0612), 0);
    EXPECT_EQ(file.status().st_mode & 07777U, 0612U);
}

TEST_F(UnlinkedTest, ChangesItsOwnerToTheSame)
{
    const OpenFile file = unlinked("text");
    EXPECT_EQ(::fchown(file.id(), ::geteuid(), ::getegid()), 0);
}

TEST_F(UnlinkedTest, ChangesItsTimes)
{
    const OpenFile file = unlinked("text");
    const std::array<timespec, 2> times{{{1'234'567'890, 987'654'321}, {1'111'111'111, 1}}};
    ASSERT_EQ(::futimens(file.id(), times.data()), 0);
    const struct stat status = file.status();
    EXPECT_EQ(status.st_atim.tv_sec, times[0].tv_sec);
    EXPECT_EQ(status.st_mtim.tv_sec, times[1].tv_sec);
    EXPECT_EQ(status.st_mtim.tv_nsec, times[1].tv_nsec);
}

TEST_F(UnlinkedTest, IsSyncedMappedAndLocated)
{
    const std::string text = noise(9000, 4);
    const OpenFile file = unlinked(text);
    EXPECT_EQ(::fsync(file.id()), 0);
    EXPECT_EQ(::fdatasync(file.id()), 0);
    const Mapping mapping(file.id(), text.size(), PROT_READ | PROT_WRITE, MAP_SHARED);
    EXPECT_TRUE(mapping.text() == text);
    mapping.data()[5000] = '!';
    mapping.sync();
    EXPECT_EQ(file.readAt(1, 5000), "!");
    EXPECT_EQ(::lseek(file.id(), 0, SEEK_DATA), 0);
    EXPECT_EQ(::lseek(file.id(), 0, SEEK_HOLE), 9000);
}

TEST_F(UnlinkedTest, LeavesNoHelperFileBehind)
{
    const OpenFile file = unlinked(noise(5000, 5));
    EXPECT_EQ(namesIn(_disk->encrypted()), _before);
    EXPECT_EQ(namesIn(_disk->plain()), std::vector<std::string>{});
    file.writeAt("more", 6000);
    file.truncate(3);
    EXPECT_EQ(namesIn(_disk->encrypted()), _before);
}

TEST_F(UnlinkedTest, TheFolderThatHeldItCanGo)
{
    ASSERT_EQ(::mkdir((*_disk / "folder").c_str(), 0755), 0);
    const OpenFile file(*_disk / "folder/file", O_RDWR | O_CREAT);
    file.writeAt("still here", 0);
    ASSERT_EQ(::unlink((*_disk / "folder/file").c_str()), 0);
    ASSERT_EQ(::rmdir((*_disk / "folder").c_str()), 0);
    EXPECT_EQ(file.all(), "still here");
    ASSERT_EQ(::fchmod(file.id(), 0600), 0);
    EXPECT_EQ(file.size(), 10);
}

TEST_F(UnlinkedTest, ANewFileOfItsNameIsAnotherFile)
{
    const OpenFile old = unlinked("the old one");
    const OpenFile fresh(*_disk / "file", O_RDWR | O_CREAT | O_EXCL);
    fresh.writeAt("new", 0);
    EXPECT_EQ(old.all(), "the old one");
    EXPECT_EQ(fresh.all(), "new");
    EXPECT_NE(old.status().st_ino, fresh.status().st_ino);
    old.truncate(3);
    ASSERT_EQ(::fchmod(old.id(), 0600), 0);
    ASSERT_EQ(::fchmod(fresh.id(), 0640), 0);
    EXPECT_EQ(old.status().st_mode & 07777U, 0600U);
    EXPECT_EQ(statusOf(*_disk / "file").st_mode & 07777U, 0640U);
    EXPECT_EQ(readFile(*_disk / "file"), "new");
    EXPECT_EQ(old.all(), "the");
}

TEST_F(UnlinkedTest, AFileReplacedByARenameLivesOnWhileOpen)
{
    writeFile(*_disk / "file", "the old one");
    writeFile(*_disk / "draft", "new");
    const OpenFile old(*_disk / "file", O_RDWR);
    ASSERT_EQ(::rename((*_disk / "draft").c_str(), (*_disk / "file").c_str()), 0);
    EXPECT_EQ(readFile(*_disk / "file"), "new");
    EXPECT_EQ(old.all(), "the old one");
    old.writeAt("THE", 0);
    old.truncate(7);
    EXPECT_EQ(old.status().st_nlink, 0U);
    EXPECT_EQ(old.all(), "THE old");
    EXPECT_EQ(readFile(*_disk / "file"), "new");
    EXPECT_EQ(namesIn(_disk->plain()), std::vector<std::string>{"file"});
}

TEST_F(UnlinkedTest, AFileWithASecondNameKeepsIt)
{
    {
        const OpenFile file(*_disk / "first", O_RDWR | O_CREAT);
        file.writeAt("text", 0);
        ASSERT_EQ(::link((*_disk / "first").c_str(), (*_disk / "second").c_str()), 0);
        ASSERT_EQ(::unlink((*_disk / "first").c_str()), 0);
        file.writeAt("TEXT and more", 0);
        EXPECT_EQ(file.status().st_nlink, 1U);
        ASSERT_EQ(::fchmod(file.id(), 0600), 0);
        EXPECT_EQ(statusOf(*_disk / "second").st_mode & 07777U, 0600U);
    }
    _disk->remount();
    EXPECT_EQ(readFile(*_disk / "second"), "TEXT and more");
}

} // namespace
} // namespace nimbrel::test
