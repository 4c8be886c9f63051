// The binding in this process, as the desktop program uses it.
#include "fs/UserFileSystem.h"
#include "fs/MountTable.h"
#include "fs/Unmounting.h"
#include "mount/MountedFolder.h"
#include "support/Files.h"

#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <mutex>
#include <unistd.h>

namespace nimbrel::test {

namespace {

// A disk of this process with a record of what it told.
class Disk
{
public:
    Disk() : folder(_temp.makeFolder("folder")), point(_temp.makeFolder("point")) { make(); }

    void make()
    {
        std::shared_ptr<NBNimbrelFS> delegate = NBNimbrelFS::withRootPath(folder);
        delegate->setAreFilenamesEncrypted(true);
        filesystem = std::make_unique<UserFileSystem>(
            std::move(delegate),
            UserFileSystemNotifications{[this] { ++mounts; }, [this] { ++unmounts; },
                                        [this](const MountFailure &failure) {
                                            const std::lock_guard lock(_mutex);
                                            _failures.push_back(failure);
                                        }});
    }

    std::vector<MountFailure> failures()
    {
        const std::lock_guard lock(_mutex);
        return _failures;
    }

    [[nodiscard]] std::string path(const std::string &name) const { return point + "/" + name; }
    [[nodiscard]] const TempFolder &temp() const { return _temp; }

private:
    TempFolder _temp;
    std::mutex _mutex;
    std::vector<MountFailure> _failures;

public:
    std::string folder;
    std::string point;
    std::atomic<int> mounts = 0;
    std::atomic<int> unmounts = 0;
    std::unique_ptr<UserFileSystem> filesystem; // last: it calls the above until it ends
};

} // namespace

TEST(UserFileSystemTest, AMountAndItsEndAreToldOnceEach)
{
    NIMBREL_NEED_FUSE();
    Disk disk;
    disk.filesystem->mountAtPath(disk.point, {});
    ASSERT_TRUE(eventually([&] { return disk.mounts == 1; }));
    EXPECT_TRUE(disk.filesystem->isMounted());
    writeFile(disk.path("a.txt"), "hello");
    EXPECT_EQ(readFile(disk.path("a.txt")), "hello");
    EXPECT_TRUE(disk.filesystem->unmount());
    ASSERT_TRUE(eventually([&] { return disk.unmounts == 1; }));
    EXPECT_FALSE(disk.filesystem->isMounted());
    EXPECT_EQ(disk.mounts, 1);
    EXPECT_TRUE(disk.failures().empty());
    EXPECT_FALSE(mountAt(disk.point));
}

TEST(UserFileSystemTest, AnUnmountFromOutsideIsToldToo)
{
    NIMBREL_NEED_FUSE();
    Disk disk;
    disk.filesystem->mountAtPath(disk.point, {});
    ASSERT_TRUE(eventually([&] { return disk.mounts == 1; }));
    ASSERT_TRUE(unmountDisk(disk.point));
    EXPECT_TRUE(eventually([&] { return disk.unmounts == 1; }));
}

TEST(UserFileSystemTest, ADiskInUseStaysAndSaysBusy)
{
    NIMBREL_NEED_FUSE();
    Disk disk;
    disk.filesystem->mountAtPath(disk.point, {});
    ASSERT_TRUE(eventually([&] { return disk.mounts == 1; }));
    writeFile(disk.path("a.txt"), "hello");
    const int file = ::open(disk.path("a.txt").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    EXPECT_EQ(disk.filesystem->unmount().code(), EBUSY);
    EXPECT_TRUE(disk.filesystem->isMounted());
    EXPECT_EQ(readFile(disk.path("a.txt")), "hello");
    ::close(file);
    // The kernel tells of the close a moment later.
    EXPECT_TRUE(eventually([&] { return static_cast<bool>(disk.filesystem->unmount()); }));
    EXPECT_TRUE(eventually([&] { return disk.unmounts == 1; }));
}

TEST(UserFileSystemTest, TheObjectsEndTakesADiskInUseAlong)
{
    NIMBREL_NEED_FUSE();
    Disk disk;
    disk.filesystem->mountAtPath(disk.point, {});
    ASSERT_TRUE(eventually([&] { return disk.mounts == 1; }));
    writeFile(disk.path("a.txt"), "hello");
    const int file = ::open(disk.path("a.txt").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    disk.filesystem.reset();
    EXPECT_EQ(disk.unmounts, 1);
    EXPECT_FALSE(mountAt(disk.point));
    ::close(file);
}

TEST(UserFileSystemTest, AnUnmountWithoutAMountSaysSo)
{
    Disk disk;
    EXPECT_EQ(disk.filesystem->unmount().code(), ENOTCONN);
}

TEST(UserFileSystemTest, AFailureNamesTheMountPointAndChangesNothing)
{
    NIMBREL_NEED_FUSE();
    Disk disk;
    writeFile(disk.path("already here"), "x");
    disk.filesystem->mountAtPath(disk.point, {});
    ASSERT_EQ(disk.failures().size(), 1U);
    EXPECT_EQ(disk.failures()[0].cause, MountFailure::Cause::MountPoint);
    EXPECT_NE(disk.failures()[0].message.find(disk.point), std::string::npos);
    EXPECT_EQ(readFile(disk.path("already here")), "x");
    EXPECT_EQ(disk.mounts, 0);
    EXPECT_EQ(disk.unmounts, 0);
}

TEST(UserFileSystemTest, AnUnknownOptionFailsWithLibfusesReason)
{
    NIMBREL_NEED_FUSE();
    Disk disk;
    disk.filesystem->mountAtPath(disk.point, {"no_such_option=1"});
    ASSERT_EQ(disk.failures().size(), 1U);
    EXPECT_EQ(disk.failures()[0].cause, MountFailure::Cause::Fuse);
    EXPECT_NE(disk.failures()[0].message.find("no_such_option"), std::string::npos)
        << disk.failures()[0].message;
    EXPECT_FALSE(mountAt(disk.point));
}

TEST(UserFileSystemTest, TwoDisksOfOneProcessHaveUmasksOfTheirOwn)
{
    NIMBREL_NEED_FUSE();
    Disk one;
    Disk two;
    one.filesystem->mountAtPath(one.point, {});
    two.filesystem->mountAtPath(two.point, {});
    ASSERT_TRUE(eventually([&] { return one.mounts == 1 && two.mounts == 1; }));
    const mode_t before = ::umask(0027);
    for (Disk *disk : {&one, &two}) {
        const int file = ::open(disk->path("f").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
        ASSERT_GE(file, 0);
        struct stat attributes = {};
        EXPECT_EQ(::fstat(file, &attributes), 0);
        EXPECT_EQ(attributes.st_mode & 0777U, 0640U);
        ::close(file);
    }
    EXPECT_EQ(::umask(before), 0027U) << "the process's own umask was changed";
}

TEST(UserFileSystemTest, AnObjectMountsAgainAfterItsDiskHasGone)
{
    NIMBREL_NEED_FUSE();
    Disk disk;
    for (int round = 1; round <= 3; ++round) {
        disk.filesystem->mountAtPath(disk.point, {});
        ASSERT_TRUE(eventually([&] { return disk.mounts == round; }));
        ASSERT_TRUE(eventually([&] { return static_cast<bool>(disk.filesystem->unmount()); }));
        ASSERT_TRUE(eventually([&] { return disk.unmounts == round; }));
        disk.make();
    }
}

} // namespace nimbrel::test
