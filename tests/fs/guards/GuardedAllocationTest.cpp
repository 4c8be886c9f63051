#include "fs/guards/GuardedFolder.h"
#include "fs/guards/StoreFaults.h"
#include "support/Files.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr int punch = FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE;
constexpr std::int64_t megabyte = 1 << 20;

struct GuardedAllocationTest : testing::TestWithParam<bool>
{
    GuardedFolder folder{{.allowHoles = GetParam()}};

    int allocate(NBFileHandle &file, int mode, std::int64_t offset, std::int64_t length)
    {
        return folder.content().allocate(file, mode, offset, length).code();
    }
    std::int64_t spaceOf(const NBFileHandle &file)
    {
        return folder.tree().attributes(file)->st_blocks * 512;
    }
};

} // namespace

TEST_P(GuardedAllocationTest, RefusesRangesThatCannotBe)
{
    NBFileHandle file = folder.create("/file", "text");
    EXPECT_EQ(allocate(file, 0, -1, 10), EINVAL);
    EXPECT_EQ(allocate(file, 0, 0, 0), EINVAL);
    EXPECT_EQ(allocate(file, 0, 0, -5), EINVAL);
    EXPECT_EQ(allocate(file, 0, 10, std::numeric_limits<std::int64_t>::max()), EFBIG);
    EXPECT_EQ(folder.read(file), "text");
}

TEST_P(GuardedAllocationTest, RefusesOtherModes)
{
    NBFileHandle file = folder.create("/file", "text");
    for (const int mode : {FALLOC_FL_COLLAPSE_RANGE, FALLOC_FL_INSERT_RANGE, FALLOC_FL_PUNCH_HOLE,
                           FALLOC_FL_UNSHARE_RANGE, FALLOC_FL_ZERO_RANGE | FALLOC_FL_PUNCH_HOLE})
        EXPECT_EQ(allocate(file, mode, 0, 4096), EOPNOTSUPP) << mode;
}

TEST_P(GuardedAllocationTest, GrowsLikeTheSizeOperationAndHasTheRoom)
{
    NBFileHandle file = folder.create("/file", "text");
    ASSERT_EQ(allocate(file, 0, 100, megabyte), 0);
    EXPECT_EQ(sizeOf(file), megabyte + 100);
    EXPECT_GE(spaceOf(file), megabyte);
    EXPECT_EQ(difference("text" + std::string(megabyte + 96, '\0'), folder.readAt("/file")), "");
    ASSERT_EQ(allocate(file, 0, 0, 10), 0); // never cuts
    EXPECT_EQ(sizeOf(file), megabyte + 100);
}

TEST_P(GuardedAllocationTest, KeepsTheSizeAndHasTheRoom)
{
    NBFileHandle file = folder.create("/file", "text");
    ASSERT_EQ(allocate(file, FALLOC_FL_KEEP_SIZE, 0, megabyte), 0);
    EXPECT_EQ(folder.readAt("/file"), "text");
    EXPECT_GE(spaceOf(file), megabyte);
}

TEST_P(GuardedAllocationTest, PunchedBytesAreZeros)
{
    const std::string old = noise(5 * 4096 + 100, 1);
    for (const auto &[from, to] : {std::pair<int, int>{0, 4096},
                                   {4096, 3 * 4096},
                                   {10, 20},
                                   {100, 5000},
                                   {4096, 20000},
                                   {5 * 4096, 5 * 4096 + 100},
                                   {5 * 4096 + 10, 100'000},
                                   {0, 1'000'000},
                                   {30000, 40000}}) {
        const std::string path = "/file" + std::to_string(from) + "-" + std::to_string(to);
        NBFileHandle file = folder.create(path, old);
        ASSERT_EQ(allocate(file, punch, from, to - from), 0);
        PlainModel model;
        model.write(old, 0);
        model.clear(from, to);
        EXPECT_EQ(difference(model.text(), folder.readAt(path)), "") << path;
    }
}

TEST_P(GuardedAllocationTest, ZeroedRangesGrowTheFileUnlessToldNot)
{
    const std::string old = noise(10000, 2);
    for (const bool keepsSize : {false, true}) {
        const std::string path = keepsSize ? "/keeps" : "/grows";
        NBFileHandle file = folder.create(path, old);
        const int mode = FALLOC_FL_ZERO_RANGE | (keepsSize ? FALLOC_FL_KEEP_SIZE : 0);
        ASSERT_EQ(allocate(file, mode, 5000, 20000), 0);
        EXPECT_EQ(difference(old.substr(0, 5000) + std::string(keepsSize ? 5000 : 20000, '\0'),
                             folder.readAt(path)),
                  "");
        EXPECT_GE(spaceOf(file), 25000);
    }
}

TEST_P(GuardedAllocationTest, WorksOnAStoreWithoutHoles)
{
    const NoAllocation none;
    const std::string old = noise(5 * 4096, 3);
    NBFileHandle file = folder.create("/file", old);
    EXPECT_EQ(allocate(file, 0, 0, megabyte), EOPNOTSUPP);
    EXPECT_EQ(sizeOf(file), 5 * 4096);
    ASSERT_EQ(allocate(file, punch, 4000, 10000), 0);
    ASSERT_EQ(allocate(file, FALLOC_FL_ZERO_RANGE, 20000, 5000), 0);
    PlainModel model;
    model.write(old, 0);
    model.clear(4000, 14000);
    model.setSize(25000);
    model.clear(20000, 25000);
    EXPECT_EQ(difference(model.text(), folder.readAt("/file")), "");
}

INSTANTIATE_TEST_SUITE_P(Holes, GuardedAllocationTest, testing::Bool(), nameOfHoles);

TEST(GuardedSpaceTest, PunchingGivesSpaceBack)
{
    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", noise(megabyte, 4));
    if (::fallocate(file.descriptor.get(), punch, 0, 4096) != 0)
        GTEST_SKIP() << "this store has no holes";
    const auto before = folder.tree().attributes(file)->st_blocks;
    ASSERT_TRUE(folder.content().allocate(file, punch, 1, megabyte - 2));
    EXPECT_LT(folder.tree().attributes(file)->st_blocks, before / 10);
}

TEST(GuardedSeekTest, FindsDataAndHolesInWholeBlocks)
{
    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", noise(3 * megabyte + 100, 5));
    if (::fallocate(file.descriptor.get(), punch, 0, 4096) != 0)
        GTEST_SKIP() << "this store has no holes";
    // Data up to 1 MiB, a hole up to 2 MiB, data to the end.
    ASSERT_TRUE(folder.content().write(file, bytesOf(noise(megabyte, 6)), 0));
    ASSERT_TRUE(folder.content().allocate(file, punch, megabyte, megabyte));
    ASSERT_TRUE(folder.content().sync(file, false));
    const auto seek = [&](std::int64_t offset, int whence) {
        const NBErrnoOr<std::int64_t> found = folder.content().seek(file, offset, whence);
        return found ? *found : -found.code();
    };
    EXPECT_EQ(seek(5, SEEK_DATA), 5);
    EXPECT_EQ(seek(5, SEEK_HOLE), megabyte);
    EXPECT_EQ(seek(megabyte + 5, SEEK_HOLE), megabyte + 5);
    EXPECT_EQ(seek(megabyte + 5, SEEK_DATA), 2 * megabyte);
    EXPECT_EQ(seek(2 * megabyte + 5, SEEK_HOLE), 3 * megabyte + 100);
    EXPECT_EQ(seek(3 * megabyte + 99, SEEK_DATA), 3 * megabyte + 99);
    EXPECT_EQ(seek(3 * megabyte + 100, SEEK_DATA), -ENXIO);
    EXPECT_EQ(seek(3 * megabyte + 100, SEEK_HOLE), -ENXIO);
    EXPECT_EQ(seek(-1, SEEK_DATA), -ENXIO);
    EXPECT_EQ(seek(0, SEEK_SET), -EINVAL);
}

// A block larger than the store's own has a hole in it and still is data.
TEST(GuardedSeekTest, ABlockWithAnyDataIsData)
{
    constexpr std::int64_t blockSize = 4 * 65536;
    GuardedFolder folder{{.blockSize = blockSize}};
    NBFileHandle file = folder.create("/file", noise(4 * blockSize, 7));
    ASSERT_TRUE(folder.content().allocate(file, punch, blockSize, 2 * blockSize));
    const std::uint8_t byte = 1;
    const std::int64_t inside = 2 * blockSize - 100;
    ASSERT_EQ(::pwrite(file.descriptor.get(), &byte, 1, inside), 1);
    if (::lseek(file.descriptor.get(), blockSize, SEEK_HOLE) != blockSize)
        GTEST_SKIP() << "this store has no holes";
    EXPECT_EQ(*folder.content().seek(file, blockSize + 10, SEEK_DATA), blockSize + 10);
    EXPECT_EQ(*folder.content().seek(file, blockSize + 10, SEEK_HOLE), 2 * blockSize);
    EXPECT_EQ(*folder.content().seek(file, 2 * blockSize + 10, SEEK_DATA), 3 * blockSize);
}

TEST(GuardedSeekTest, AShortLastBlockInAHoleIsData)
{
    GuardedFolder folder;
    NBFileHandle file = folder.create("/file");
    ASSERT_EQ(::ftruncate(file.descriptor.get(), 3 * 4096 + 100), 0); // by another program
    if (::lseek(file.descriptor.get(), 0, SEEK_HOLE) != 0)
        GTEST_SKIP() << "this store has no holes";
    EXPECT_EQ(*folder.content().seek(file, 0, SEEK_HOLE), 0);
    EXPECT_EQ(*folder.content().seek(file, 0, SEEK_DATA), 3 * 4096);
    EXPECT_EQ(*folder.content().seek(file, 3 * 4096 + 5, SEEK_HOLE), 3 * 4096 + 100);
}

TEST(GuardedSeekTest, EverythingIsDataWithoutHoles)
{
    GuardedFolder folder{{.allowHoles = false}};
    NBFileHandle file = folder.create("/file");
    ASSERT_EQ(::ftruncate(file.descriptor.get(), megabyte), 0);
    EXPECT_EQ(*folder.content().seek(file, 10, SEEK_DATA), 10);
    EXPECT_EQ(*folder.content().seek(file, 10, SEEK_HOLE), megabyte);
    EXPECT_EQ(folder.content().seek(file, megabyte, SEEK_HOLE).code(), ENXIO);
}

} // namespace nimbrel::test
