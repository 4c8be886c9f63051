#include "fs/guards/GuardedFolder.h"
#include "fs/guards/StoreFaults.h"
#include "support/Files.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

struct GuardedSizeTest : testing::TestWithParam<bool>
{
    GuardedFolder folder{{.blockSize = 64, .allowHoles = GetParam()}};

    int setSize(NBFileHandle &file, std::int64_t size)
    {
        return folder.content().setSize(file, size).code();
    }
};

} // namespace

TEST_P(GuardedSizeTest, RefusesANegativeSize)
{
    NBFileHandle file = folder.create("/file", "text");
    EXPECT_EQ(setSize(file, -1), EINVAL);
    EXPECT_EQ(folder.read(file), "text");
}

TEST_P(GuardedSizeTest, RefusesWhatTheStoreCannotHold)
{
    const std::string old = noise(100, 1);
    NBFileHandle file = folder.create("/file", old);
    // Whatever the store's reason: too large for a file, or for the space it has.
    EXPECT_NE(setSize(file, std::numeric_limits<std::int64_t>::max()), 0);
    EXPECT_EQ(difference(old, folder.readAt("/file")), "");
}

TEST_P(GuardedSizeTest, TheSameSizeSetsTheTime)
{
    NBFileHandle file = folder.create("/file", noise(100, 2));
    NBItemAttributes attributes;
    attributes.modificationDate = timespec{1000, 0};
    ASSERT_TRUE(folder.tree().setAttributes(file, attributes));
    EXPECT_EQ(setSize(file, 100), 0);
    EXPECT_NE(folder.tree().attributes(file)->st_mtim.tv_sec, 1000);
    EXPECT_EQ(folder.read(file), noise(100, 2));
}

TEST_P(GuardedSizeTest, CutsInsideAHole)
{
    NBFileHandle file = folder.create("/file", "begin");
    ASSERT_EQ(setSize(file, 1000), 0);
    ASSERT_EQ(setSize(file, 500), 0);
    EXPECT_EQ(difference("begin" + std::string(495, '\0'), folder.readAt("/file")), "");
}

TEST_P(GuardedSizeTest, GrowsFromAShortLastBlockToAnother)
{
    NBFileHandle file = folder.create("/file", noise(70, 3));
    for (const std::int64_t size : {71, 127, 128, 129, 200, 1000}) {
        ASSERT_EQ(setSize(file, size), 0);
        EXPECT_EQ(difference(noise(70, 3) + std::string(static_cast<std::size_t>(size - 70), '\0'),
                             folder.readAt("/file")),
                  "")
            << size;
    }
}

TEST_P(GuardedSizeTest, CutBytesDoNotComeBack)
{
    NBFileHandle file = folder.create("/file", noise(200, 4));
    ASSERT_EQ(setSize(file, 75), 0);
    ASSERT_EQ(setSize(file, 200), 0);
    EXPECT_EQ(
        difference(noise(200, 4).substr(0, 75) + std::string(125, '\0'), folder.readAt("/file")),
        "");
}

TEST_P(GuardedSizeTest, WorksWhereTheStoreCannotReserve)
{
    const NoAllocation none;
    NBFileHandle file = folder.create("/file", noise(100, 5));
    ASSERT_EQ(setSize(file, 1000), 0);
    ASSERT_EQ(setSize(file, 90), 0);
    EXPECT_EQ(difference(noise(100, 5).substr(0, 90), folder.readAt("/file")), "");
}

INSTANTIATE_TEST_SUITE_P(Holes, GuardedSizeTest, testing::Bool(), nameOfHoles);

TEST(GuardedHolesTest, GrowingLeavesHoles)
{
    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", "begin");
    ASSERT_TRUE(folder.content().setSize(file, (std::int64_t{1} << 32) + 5));
    EXPECT_LT(folder.tree().attributes(file)->st_blocks, 1000);
    std::string end(100, '?');
    ASSERT_EQ(*folder.content().read(file, spanOf(end), (std::int64_t{1} << 32) - 95), 100U);
    EXPECT_EQ(end, std::string(100, '\0'));
}

TEST(GuardedOddBlocksTest, WithoutABlockSizeContentIsRefused)
{
    for (const std::int64_t blockSize : {0, -16}) {
        GuardedFolder folder{{.blockSize = blockSize}};
        NBFileHandle file = memoryFile();
        ASSERT_EQ(::pwrite(file.descriptor.get(), "stored", 6, 0), 6);
        std::string buffer(10, '?');
        EXPECT_EQ(folder.content().read(file, spanOf(buffer), 0).code(), EINVAL);
        EXPECT_EQ(folder.content().write(file, bytesOf("x"), 0).code(), EINVAL);
        EXPECT_EQ(folder.content().append(file, bytesOf("x")).code(), EINVAL);
        EXPECT_EQ(folder.content().setSize(file, 3).code(), EINVAL);
        EXPECT_EQ(folder.content().allocate(file, 0, 0, 10).code(), EINVAL);
        EXPECT_EQ(folder.content().seek(file, 0, SEEK_DATA).code(), EINVAL);
        EXPECT_EQ(sizeOf(file), 6);
    }
}

TEST(GuardedOddBlocksTest, AHugeBlockIsAShortBlock)
{
    GuardedFolder folder{{.blockSize = std::int64_t{1} << 62}};
    NBFileHandle file = folder.create("/file", noise(5000, 7));
    ASSERT_TRUE(folder.content().write(file, bytesOf("end"), 6000));
    ASSERT_TRUE(folder.content().setSize(file, 7000));
    ASSERT_TRUE(folder.content().setSize(file, 6001));
    EXPECT_EQ(difference(noise(5000, 7) + std::string(1000, '\0') + "e", folder.readAt("/file")),
              "");
}

// What lies on disk is what the delegate leaves, so other programs of the format read it.
TEST(GuardedHolesTest, ACutFileIsOnDiskAsTheDelegateCutsIt)
{
    for (const std::int64_t size : {0, 1, 63, 64, 65, 100, 128, 150}) {
        GuardedFolder folder{{.blockSize = 64}};
        NBFileHandle guarded = folder.create("/guarded", noise(200, 6));
        NBFileHandle bareFile = folder.create("/bare", noise(200, 6));
        ASSERT_TRUE(folder.content().setSize(guarded, size));
        NBItemAttributes attributes;
        attributes.size = size;
        ASSERT_TRUE(folder.bareDelegate()->setAttributes(attributes, "/bare", &bareFile));
        EXPECT_EQ(readFile(folder.onDisk("/guarded")), readFile(folder.onDisk("/bare"))) << size;
    }
}

} // namespace nimbrel::test
