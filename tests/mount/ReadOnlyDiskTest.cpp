// Disks that may be read and not changed, because they are mounted so or lie on such a store.
#include "mount/OrdinaryDisk.h"
#include "mount/ReadOnlyOperations.h"
#include "mount/SmallVolume.h"
#include "mount/Tree.h"

#include <cerrno>
#include <sys/statvfs.h>

namespace nimbrel::test {

namespace {

// A folder with the items in it, mounted again with --read-only.
class ReadOnlyDiskTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
        _maker = std::make_unique<MountedFolder>();
        makeItemsToChange(*_maker);
        ASSERT_TRUE(_maker->unmount());
        _before = treeOf(_maker->encrypted(), TreeDetail::All);
        MountedFolderOptions options;
        options.existingFolder = _maker->encrypted();
        options.mountArguments = {"--read-only"};
        _disk = std::make_unique<MountedFolder>(options);
    }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string changesInTheEncryptedFolder() const
    {
        return differences(_before, treeOf(_maker->encrypted(), TreeDetail::All));
    }

private:
    std::unique_ptr<MountedFolder> _maker;
    std::unique_ptr<MountedFolder> _disk;
    Tree _before;
};

TEST_F(ReadOnlyDiskTest, IsRead)
{
    expectUnchangedItems(disk());
    EXPECT_EQ(namesIn(disk().plain()).size(), 3U);
}

TEST_F(ReadOnlyDiskTest, RefusesEveryChange)
{
    for (const Change &change : changesOf(disk()))
        EXPECT_EQ(errnoOf(change.make), EROFS) << change.what;
    EXPECT_EQ(errnoOf([&] { return ::access((disk() / "file").c_str(), W_OK); }), EROFS);
    expectUnchangedItems(disk());
    EXPECT_EQ(changesInTheEncryptedFolder(), "");
}

TEST_F(ReadOnlyDiskTest, IsToldToPrograms)
{
    struct statvfs space = {};
    must(::statvfs(disk().plain().c_str(), &space), "statvfs");
    EXPECT_NE(space.f_flag & ST_RDONLY, 0U);
}

class ReadOnlyStoreTest : public testing::TestWithParam<SmallVolumeKind>
{
};

TEST_P(ReadOnlyStoreTest, ItsErrorReachesThePrograms)
{
    NIMBREL_NEED_FUSE();
    std::unique_ptr<SmallVolume> store;
    try {
        store = std::make_unique<SmallVolume>(GetParam());
    } catch (const NoSmallVolume &reason) {
        GTEST_SKIP() << reason.what();
    }
    MountedFolderOptions options;
    options.backing = store->path();
    MountedFolder disk(options);
    makeItemsToChange(disk);
    store->makeReadOnly();
    for (const Change &change : changesOf(disk))
        EXPECT_EQ(errnoOf(change.make), EROFS) << change.what;
    expectUnchangedItems(disk);
    disk.remount(); // a disk on such a store can be mounted, too
    expectUnchangedItems(disk);
    for (const Change &change : changesOf(disk))
        EXPECT_EQ(errnoOf(change.make), EROFS) << change.what;
}

INSTANTIATE_TEST_SUITE_P(OnEach, ReadOnlyStoreTest,
                         testing::Values(SmallVolumeKind::Memory, SmallVolumeKind::Disk));

} // namespace

} // namespace nimbrel::test
