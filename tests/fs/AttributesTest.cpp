#include "fs/TestDelegate.h"
#include "support/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

using Status = struct stat;

Status attributesAt(const TestDelegate &delegate, const std::string &path)
{
    const NBErrnoOr<struct stat> attributes = delegate->attributesOfItemAtPath(path);
    EXPECT_EQ(attributes.code(), 0) << path;
    return attributes ? *attributes : Status{};
}

// The errno of setting the file's own flags anew; 0 where the store takes flags.
int errorOfFlags(const NBFileHandle &file, unsigned &flags)
{
    if (::ioctl(file.descriptor.get(), FS_IOC_GETFLAGS, &flags) != 0)
        return errno;
    return ::ioctl(file.descriptor.get(), FS_IOC_SETFLAGS, &flags) == 0 ? 0 : errno;
}

TEST(AttributesTest, TheSizeShownIsThePlainSize)
{
    const TestDelegate delegate;
    delegate.create("/file", noise(5000, 1));
    EXPECT_EQ(attributesAt(delegate, "/file").st_size, 5000);
    EXPECT_EQ(delegate->attributesOfItemAtPath("/missing").code(), ENOENT);
}

TEST(AttributesTest, AttributesAreTheOnDiskItems)
{
    const TestDelegate delegate;
    delegate.create("/file", "x");
    struct stat direct = {};
    ASSERT_EQ(::lstat(delegate.onDisk("/file").c_str(), &direct), 0);
    const struct stat told = attributesAt(delegate, "/file");
    EXPECT_EQ(told.st_ino, direct.st_ino);
    EXPECT_EQ(told.st_mode, direct.st_mode);
    EXPECT_EQ(told.st_mtim.tv_nsec, direct.st_mtim.tv_nsec);
}

TEST(AttributesTest, TheFileSystemIsTheStores)
{
    const TestDelegate delegate;
    struct statvfs direct = {};
    ASSERT_EQ(::statvfs(delegate.root().c_str(), &direct), 0);
    const NBErrnoOr<struct statvfs> told = delegate->attributesOfFileSystemForPath("/");
    ASSERT_TRUE(told);
    EXPECT_EQ(told->f_blocks, direct.f_blocks);
    EXPECT_EQ(told->f_bsize, direct.f_bsize);
    EXPECT_EQ(delegate->attributesOfFileSystemForPath("/missing").code(), ENOENT);
}

TEST(AttributesTest, PermissionsAreSetPastTheUmask)
{
    const TestDelegate delegate;
    delegate.create("/file");
    ASSERT_TRUE(delegate->setAttributes({.posixPermissions = 0666}, "/file", nullptr));
    EXPECT_EQ(attributesAt(delegate, "/file").st_mode & 07777U, 0666U);
}

TEST(AttributesTest, ADateIsSetByItselfToTheNanosecond)
{
    const TestDelegate delegate;
    delegate.create("/file");
    ASSERT_TRUE(delegate->setAttributes(
        {.accessDate = timespec{111, 222}, .modificationDate = timespec{333, 444}}, "/file",
        nullptr));
    ASSERT_TRUE(
        delegate->setAttributes({.modificationDate = timespec{555, 666}}, "/file", nullptr));
    struct stat status = attributesAt(delegate, "/file");
    EXPECT_EQ(status.st_atim.tv_sec, 111);
    EXPECT_EQ(status.st_atim.tv_nsec, 222);
    EXPECT_EQ(status.st_mtim.tv_sec, 555);
    EXPECT_EQ(status.st_mtim.tv_nsec, 666);
    ASSERT_TRUE(delegate->setAttributes({.accessDate = timespec{0, UTIME_NOW}}, "/file", nullptr));
    status = attributesAt(delegate, "/file");
    EXPECT_GT(status.st_atim.tv_sec, 1000000000);
    EXPECT_EQ(status.st_mtim.tv_sec, 555);
}

TEST(AttributesTest, AChangedOwnerDoesNotTakeTheSetUserBitThatIsAskedFor)
{
    const TestDelegate delegate;
    delegate.create("/file");
    const uid_t owner = ::geteuid() == 0 ? 65534 : ::geteuid();
    const gid_t group = ::geteuid() == 0 ? 65533 : ::getegid();
    ASSERT_TRUE(delegate->setAttributes({.posixPermissions = 04755, .owner = owner, .group = group},
                                        "/file", nullptr));
    const struct stat status = attributesAt(delegate, "/file");
    EXPECT_EQ(status.st_mode & 07777U, 04755U);
    EXPECT_EQ(status.st_uid, owner);
    EXPECT_EQ(status.st_gid, group);
}

TEST(AttributesTest, AGroupAloneLeavesTheOwner)
{
    const TestDelegate delegate;
    delegate.create("/file");
    ASSERT_TRUE(delegate->setAttributes({.group = ::getegid()}, "/file", nullptr));
    EXPECT_EQ(attributesAt(delegate, "/file").st_uid, ::geteuid());
}

TEST(AttributesTest, AFailedStageEndsTheOperation)
{
    const TestDelegate delegate;
    NBFileHandle file = delegate.create("/file", "0123456789");
    ASSERT_TRUE(delegate->moveItemAtPath("/file", "/other"));
    // The size goes to the handle; the permissions go to the path, which isn't there.
    EXPECT_EQ(delegate
                  ->setAttributes(
                      {.size = 4, .posixPermissions = 0600, .modificationDate = timespec{1, 0}},
                      "/file", &file)
                  .code(),
              ENOENT);
    EXPECT_EQ(sizeOf(file), 4);
    EXPECT_EQ(delegate->setAttributes({.owner = ::geteuid()}, "/file", nullptr).code(), ENOENT);
    EXPECT_EQ(delegate->setAttributes({.accessDate = timespec{1, 0}}, "/file", nullptr).code(),
              ENOENT);
}

TEST(AttributesTest, NothingToSetIsDone)
{
    const TestDelegate delegate;
    delegate.create("/file");
    EXPECT_TRUE(delegate->setAttributes({}, "/file", nullptr));
}

// Where the store has no flags, its own error comes back.
TEST(AttributesTest, FlagsAreSetByPathAndByDescriptor)
{
    const TestDelegate delegate;
    NBFileHandle file = delegate.create("/file");
    unsigned flags = 0;
    const int expected = errorOfFlags(file, flags);
    if (expected == 0)
        flags |= static_cast<unsigned>(FS_NODUMP_FL);
    EXPECT_EQ(delegate->setAttributes({.flags = flags}, "/file", nullptr).code(), expected);
    unsigned now = 0;
    if (expected == 0) {
        ASSERT_EQ(::ioctl(file.descriptor.get(), FS_IOC_GETFLAGS, &now), 0);
        EXPECT_EQ(now, flags);
        flags &= ~static_cast<unsigned>(FS_NODUMP_FL);
    }
    // The path leads nowhere: the descriptor is what counts.
    EXPECT_EQ(delegate->setAttributes({.flags = flags}, "/missing", &file).code(), expected);
    if (expected == 0) {
        ASSERT_EQ(::ioctl(file.descriptor.get(), FS_IOC_GETFLAGS, &now), 0);
        EXPECT_EQ(now, flags);
    }
    EXPECT_EQ(delegate->setAttributes({.flags = flags}, "/missing", nullptr).code(), ENOENT);
}

TEST(AttributesTest, WhatHasNoFlagsGivesItsErrorUnchanged)
{
    const TestDelegate delegate;
    NBFileHandle device{UniqueFd(::open("/dev/null", O_RDWR | O_CLOEXEC))};
    EXPECT_EQ(delegate->setAttributes({.flags = 0}, "/", &device).code(), ENOTTY);
}

TEST(AttributesTest, FlagsAreNotSetThroughALink)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createSymbolicLinkAtPath("/link", "x"));
    EXPECT_EQ(delegate->setAttributes({.flags = 0}, "/link", nullptr).code(), ELOOP);
}

} // namespace

} // namespace nimbrel::test
