#include "fs/ResourceLimit.h"
#include "fs/TestDelegate.h"
#include "support/Files.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <unistd.h>

namespace nimbrel::test {

namespace {

std::ptrdiff_t openDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// 5000 bytes in blocks of 4096; by its handle and by its path.
class SizeTest : public testing::TestWithParam<bool>
{
protected:
    NBDone setSize(std::int64_t size)
    {
        return delegate->setAttributes({.size = size}, "/file", GetParam() ? &file : nullptr);
    }

    std::string plain = noise(5000, 11);
    TestDelegate delegate;
    NBFileHandle file = delegate.create("/file", plain);
};

TEST_P(SizeTest, ShrinkingIntoABlockWritesItsNewShortForm)
{
    ASSERT_TRUE(setSize(100));
    EXPECT_EQ(diskBytes(file),
              delegate->cryptor().encryptBlockData(bytesOf(plain).first(100), 100, 0));
}

TEST_P(SizeTest, ShrinkingToABlocksEndRewritesNothing)
{
    const Bytes before = diskBytes(file);
    ASSERT_TRUE(setSize(4096));
    EXPECT_EQ(diskBytes(file), Bytes(before.begin(), before.begin() + 4096));
}

TEST_P(SizeTest, GrowingPastTheShortBlockMakesItWhole)
{
    ASSERT_TRUE(setSize(20000));
    const Bytes disk = diskBytes(file);
    ASSERT_EQ(disk.size(), 20000U);
    Bytes block(4096);
    std::ranges::copy(bytesOf(plain).subspan(4096), block.begin());
    EXPECT_EQ(Bytes(disk.begin() + 4096, disk.begin() + 8192),
              delegate->cryptor().encryptBlockData(block, 4096, 1));
    EXPECT_EQ(Bytes(disk.begin() + 8192, disk.end()), Bytes(20000 - 8192));
    EXPECT_EQ(delegate.content(file).substr(0, 5000), plain);
}

TEST_P(SizeTest, GrowingWithinTheShortBlockEncodesItAnew)
{
    ASSERT_TRUE(setSize(6000));
    EXPECT_EQ(delegate.content(file), plain + std::string(1000, '\0'));
}

TEST_P(SizeTest, NothingIsAPlainCut)
{
    ASSERT_TRUE(setSize(0));
    EXPECT_EQ(sizeOf(file), 0);
}

TEST_P(SizeTest, ANegativeSizeGivesTheSystemsError)
{
    EXPECT_EQ(setSize(-1).code(), EINVAL);
    EXPECT_EQ(sizeOf(file), 5000);
}

TEST_P(SizeTest, TheSizeThatIsThereChangesNothing)
{
    const Bytes before = diskBytes(file);
    ASSERT_TRUE(setSize(5000));
    EXPECT_EQ(diskBytes(file), before);
}

TEST_P(SizeTest, ASizeThatTheStoreRefusesGivesItsErrorAndChangesNothing)
{
    const Bytes before = diskBytes(file);
    int error = 0;
    int errorWithoutBlock = 0;
    {
        const ResourceLimit limit(RLIMIT_FSIZE, 8192);
        error = setSize(20000).code();
    }
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(diskBytes(file), before);
    ASSERT_TRUE(setSize(4096));
    {
        const ResourceLimit limit(RLIMIT_FSIZE, 8192);
        errorWithoutBlock = setSize(20000).code();
    }
    EXPECT_EQ(errorWithoutBlock, EFBIG);
    EXPECT_EQ(sizeOf(file), 4096);
}

// Kept: the cut has happened, the block is in its old form, and no error says so.
TEST_P(SizeTest, AFailedRewriteAfterTheCutFailsWithoutAnError)
{
    bool done = true;
    int error = -1;
    {
        const ResourceLimit limit(RLIMIT_FSIZE, 4096);
        const NBDone result = setSize(4200);
        done = static_cast<bool>(result);
        error = result.code();
    }
    EXPECT_FALSE(done);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(sizeOf(file), 4200);
    EXPECT_EQ(file.lastWriteError, GetParam() ? EFBIG : 0);
}

std::string nameOfWay(const testing::TestParamInfo<bool> &way)
{
    return way.param ? "ByHandle" : "ByPath";
}

INSTANTIATE_TEST_SUITE_P(Ways, SizeTest, testing::Bool(), nameOfWay);

// Kept: what can't be looked at ends the operation with what counts as success.
TEST(OddSizeTest, AMissingFileCountsAsSuccess)
{
    const TestDelegate delegate;
    EXPECT_TRUE(
        delegate->setAttributes({.size = 10, .posixPermissions = 0600}, "/missing", nullptr));
    EXPECT_EQ(delegate->setAttributes({.size = 0}, "/missing", nullptr).code(), ENOENT);
    EXPECT_EQ(delegate->attributesOfItemAtPath("/missing").code(), ENOENT);
}

TEST(OddSizeTest, AFolderCountsAsSuccessAndKeepsItsPermissions)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createDirectoryAtPath("/folder", {.posixPermissions = 0755}));
    EXPECT_TRUE(
        delegate->setAttributes({.size = 10, .posixPermissions = 0700}, "/folder", nullptr));
    EXPECT_EQ(delegate->attributesOfItemAtPath("/folder")->st_mode & 0777U, 0755U);
}

TEST(OddSizeTest, ABadDescriptorCountsAsSuccessAndTheHandleKeepsItsError)
{
    const TestDelegate delegate;
    NBFileHandle none;
    EXPECT_TRUE(delegate->setAttributes({.size = 10}, "/", &none));
    EXPECT_EQ(none.lastWriteError, EBADF);
    EXPECT_EQ(delegate->setAttributes({.size = 0}, "/", &none).code(), EBADF);
}

// Kept: the one path on which the descriptor stays open; it ends with the delegate.
TEST(OddSizeTest, TheSameSizeByPathLeavesADescriptorOpen)
{
    const std::ptrdiff_t before = openDescriptors();
    {
        const TestDelegate delegate;
        delegate.create("/file", "0123456789");
        const std::ptrdiff_t made = openDescriptors();
        ASSERT_TRUE(delegate->setAttributes({.size = 10}, "/file", nullptr));
        EXPECT_EQ(openDescriptors(), made + 1);
        ASSERT_TRUE(delegate->setAttributes({.size = 9}, "/file", nullptr));
        EXPECT_EQ(openDescriptors(), made + 1);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(OddSizeTest, ABlockThatCannotBeReadIsNotGivenUp)
{
    const TestDelegate delegate;
    const NBFileHandle file = delegate.create("/file", "0123456789");
    NBFileHandle blind{UniqueFd(::open(delegate.onDisk("/file").c_str(), O_WRONLY | O_CLOEXEC))};
    EXPECT_EQ(delegate->setAttributes({.size = 5}, "/file", &blind).code(), EBADF);
    EXPECT_EQ(sizeOf(file), 10);
    EXPECT_EQ(delegate.contentAt("/file"), "0123456789");
}

TEST(OddSizeTest, AFileOpenForReadingAloneGivesTheSystemsError)
{
    const TestDelegate delegate;
    delegate.create("/file", "0123456789");
    NBErrnoOr<NBFileHandle> file = delegate->openFileAtPath("/file", O_RDONLY);
    ASSERT_TRUE(file);
    EXPECT_EQ(delegate->setAttributes({.size = 5}, "/file", &*file).code(), EINVAL);
}

TEST(OddSizeTest, ScratchMemoryHoldsNothingOfOtherFiles)
{
    const TestDelegate delegate;
    delegate.create("/other", noise(4096, 1));
    NBFileHandle file = delegate.create("/file", "abc");
    ASSERT_TRUE(delegate->setAttributes({.size = 2000}, "/file", &file));
    EXPECT_EQ(delegate.content(file), "abc" + std::string(1997, '\0'));
}

TEST(OddSizeTest, AnUnlinkedFileIsCutThroughItsHandle)
{
    const TestDelegate delegate;
    NBFileHandle file = delegate.create("/file", "0123456789");
    ASSERT_TRUE(delegate->removeItemAtPath("/file"));
    ASSERT_TRUE(delegate->setAttributes({.size = 4}, "/file", &file));
    EXPECT_EQ(delegate.content(file), "0123");
}

} // namespace

} // namespace nimbrel::test
