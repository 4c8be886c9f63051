#include "mount/Calls.h"
#include "mount/Mapping.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

class SyncTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }
};

TEST_F(SyncTest, OfFilesWorks)
{
    MountedFolder disk;
    {
        const OpenFile file(disk / "file", O_RDWR | O_CREAT);
        file.writeAt(noise(10'000, 1), 0);
        EXPECT_EQ(::fsync(file.id()), 0);
        file.writeAt("more", 10'000);
        EXPECT_EQ(::fdatasync(file.id()), 0);
        EXPECT_EQ(::sync_file_range(file.id(), 0, 0, SYNC_FILE_RANGE_WRITE), 0);
        const OpenFile reader(disk / "file");
        EXPECT_EQ(::fsync(reader.id()), 0);
    }
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == noise(10'000, 1) + "more");
}

TEST_F(SyncTest, OfFoldersWorks)
{
    const MountedFolder disk;
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    for (const std::string &path : {disk.plain(), disk / "folder"}) {
        const OpenFile folder(path, O_RDONLY | O_DIRECTORY);
        EXPECT_EQ(::fsync(folder.id()), 0) << path;
        EXPECT_EQ(::fdatasync(folder.id()), 0) << path;
    }
}

TEST_F(SyncTest, OfARemovedFolderIsNoError)
{
    const MountedFolder disk;
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    const OpenFile folder(disk / "folder", O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::rmdir((disk / "folder").c_str()), 0);
    EXPECT_EQ(::fsync(folder.id()), 0);
}

TEST_F(SyncTest, OfTheWholeDiskWorks)
{
    const MountedFolder disk;
    const OpenFile file(disk / "file", O_RDWR | O_CREAT);
    file.writeAt("text", 0);
    EXPECT_EQ(::syncfs(file.id()), 0);
    const OpenFile folder(disk.plain(), O_RDONLY | O_DIRECTORY);
    EXPECT_EQ(::syncfs(folder.id()), 0);
}

TEST_F(SyncTest, BringsMappedChangesToTheStore)
{
    NIMBREL_NEED_ENCRYPTED_DISK();
    const MountedFolder disk;
    writeFile(disk / "file", std::string(8192, 'a'));
    const MountedFolder other({.existingFolder = disk.encrypted()});
    const OpenFile file(disk / "file", O_RDWR);
    const Mapping mapping(file.id(), 8192, PROT_READ | PROT_WRITE, MAP_SHARED);
    mapping.data()[5000] = 'b';
    ASSERT_EQ(::fsync(file.id()), 0);
    EXPECT_EQ(readFile(other / "file")[5000], 'b');
}

TEST_F(SyncTest, OpenedForSyncedWritesWorks)
{
    MountedFolder disk;
    {
        const OpenFile file(disk / "file", O_RDWR | O_CREAT | O_SYNC);
        file.write("first ");
        const OpenFile data(disk / "file", O_WRONLY | O_APPEND | O_DSYNC);
        data.write("second");
    }
    disk.remount();
    EXPECT_EQ(readFile(disk / "file"), "first second");
}

} // namespace
} // namespace nimbrel::test
