#include "fs/ResourceLimit.h"
#include "fs/TestDelegate.h"
#include "support/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

class WritingTest : public testing::Test
{
protected:
    // The count that is reported.
    std::size_t write(std::string_view data, std::int64_t offset)
    {
        const NBErrnoOr<std::size_t> written =
            delegate->writeFileAtPath("/file", file, bytesOf(data), offset);
        EXPECT_EQ(written.code(), 0);
        return written ? *written : 0;
    }
    void make(std::size_t size)
    {
        plain = noise(size, 9);
        file = delegate.create("/file", plain);
    }

    TestDelegate delegate;
    std::string plain;
    NBFileHandle file;
};

TEST_F(WritingTest, AppendingRewritesTheShortBlockAtItsNewLength)
{
    make(5000);
    EXPECT_EQ(write("0123456789", 5000), 10U);
    EXPECT_EQ(sizeOf(file), 5010);
    plain += "0123456789";
    const Bytes disk = diskBytes(file);
    EXPECT_EQ(Bytes(disk.begin() + 4096, disk.end()),
              delegate->cryptor().encryptBlockData(bytesOf(plain).subspan(4096), 914, 1));
    EXPECT_EQ(delegate.content(file), plain);
}

TEST_F(WritingTest, AnOverwrittenPartMergesWithItsBlock)
{
    make(8192);
    const Bytes before = diskBytes(file);
    const std::string news(100, 'x');
    EXPECT_EQ(write(news, 0), 100U);
    const Bytes after = diskBytes(file);
    EXPECT_FALSE(std::equal(before.begin(), before.begin() + 4096, after.begin()));
    EXPECT_TRUE(std::equal(before.begin() + 4096, before.end(), after.begin() + 4096));
    EXPECT_EQ(delegate.content(file), news + plain.substr(100));
}

// Kept: the binding fills the gap.
TEST_F(WritingTest, AGapOfWholeBlocksReadsAsNoise)
{
    make(0);
    EXPECT_EQ(write(std::string(4096, 'x'), 4096), 4096U);
    const Bytes disk = diskBytes(file);
    ASSERT_EQ(disk.size(), 8192U);
    EXPECT_EQ(Bytes(disk.begin(), disk.begin() + 4096), Bytes(4096));
    const std::string content = delegate.content(file);
    EXPECT_NE(content.substr(0, 4096), std::string(4096, '\0'));
    EXPECT_EQ(content.substr(4096), std::string(4096, 'x'));
}

// Kept: the binding grows the file by the size operation first.
TEST_F(WritingTest, AWriteInALaterBlockSpoilsTheOldShortLastBlock)
{
    make(5000);
    EXPECT_EQ(write("x", 3 * 4096), 1U);
    const std::string content = delegate.content(file);
    EXPECT_EQ(content.substr(0, 4096), plain.substr(0, 4096));
    EXPECT_NE(content.substr(4096, 904), plain.substr(4096));
    EXPECT_EQ(content.back(), 'x');
}

// What stands before the new bytes is undefined by contract; it must be nobody's data.
TEST_F(WritingTest, ScratchMemoryHoldsNothingOfOtherFiles)
{
    const std::string secret = "the content of another file, which nobody else may see";
    NBFileHandle other = delegate.create("/other", secret);
    EXPECT_EQ(delegate.contentAt("/other"), secret);
    make(0);
    EXPECT_EQ(write("x", 1000), 1U);
    EXPECT_EQ(delegate.content(file), std::string(1000, '\0') + "x");
}

TEST_F(WritingTest, AShortLastBlockKeepsItsRestOrIsReplaced)
{
    make(5000);
    EXPECT_EQ(write(std::string(903, 'x'), 4096), 903U);
    EXPECT_EQ(delegate.content(file).substr(4096), std::string(903, 'x') + plain.back());
    EXPECT_EQ(write(std::string(904, 'y'), 4096), 904U);
    EXPECT_EQ(delegate.content(file).substr(4096), std::string(904, 'y'));
    EXPECT_EQ(write(std::string(905, 'z'), 4096), 905U);
    EXPECT_EQ(delegate.content(file).substr(4096), std::string(905, 'z'));
}

TEST_F(WritingTest, AShortBlockThatGrowsWholeTakesTheBlockForm)
{
    make(5000);
    EXPECT_EQ(write(std::string(3192, 'x'), 5000), 3192U);
    plain += std::string(3192, 'x');
    const Bytes disk = diskBytes(file);
    EXPECT_EQ(Bytes(disk.begin() + 4096, disk.end()),
              delegate->cryptor().encryptBlockData(bytesOf(plain).subspan(4096), 4096, 1));
}

TEST_F(WritingTest, ALargeWriteMergesAtBothEnds)
{
    make(1 << 20);
    const std::string news = noise(600001, 4);
    EXPECT_EQ(write(news, 70003), news.size());
    plain.replace(70003, news.size(), news);
    EXPECT_EQ(delegate.content(file), plain);
}

TEST_F(WritingTest, NothingIsWrittenForNothing)
{
    make(5000);
    const Bytes before = diskBytes(file);
    for (const std::int64_t offset : {0, 100, 4096, 5000, 8192})
        EXPECT_EQ(write("", offset), 0U);
    EXPECT_EQ(diskBytes(file), before);
}

TEST_F(WritingTest, ANegativeOffsetIsRefused)
{
    make(10);
    EXPECT_EQ(delegate->writeFileAtPath("/file", file, bytesOf("x"), -1).code(), EINVAL);
}

// Kept: the handle knows better.
TEST_F(WritingTest, AFailedWriteCountsAsCompleteAndTheHandleKeepsItsError)
{
    file.descriptor.reset(::open("/dev/full", O_RDWR | O_CLOEXEC));
    ASSERT_TRUE(file.descriptor);
    EXPECT_EQ(write("0123456789", 0), 10U);
    EXPECT_EQ(file.lastWriteError, ENOSPC);
}

TEST_F(WritingTest, AWriteWithoutADescriptorCountsAsCompleteToo)
{
    EXPECT_EQ(write("0123456789", 0), 10U);
    EXPECT_EQ(file.lastWriteError, EBADF);
}

TEST_F(WritingTest, ASuccessLeavesTheHandlesErrorToWhoReadsIt)
{
    make(10);
    file.lastWriteError = EDQUOT;
    EXPECT_EQ(write("x", 3), 1U);
    EXPECT_EQ(file.lastWriteError, EDQUOT);
}

TEST_F(WritingTest, AWritePastTheLimitOfTheFileSizeCountsAsComplete)
{
    make(0);
    std::size_t count = 0;
    {
        const ResourceLimit limit(RLIMIT_FSIZE, 4096);
        const std::string data(100, 'x');
        count = *delegate->writeFileAtPath("/file", file, bytesOf(data), 4096);
    }
    EXPECT_EQ(count, 100U);
    EXPECT_EQ(file.lastWriteError, EFBIG);
    EXPECT_EQ(sizeOf(file), 0);
}

TEST_F(WritingTest, APartialWriteTellsItsPart)
{
    make(0);
    std::size_t count = 0;
    {
        const ResourceLimit limit(RLIMIT_FSIZE, 8192);
        const std::string data(12288, 'x');
        count = *delegate->writeFileAtPath("/file", file, bytesOf(data), 0);
    }
    EXPECT_EQ(count, 8192U);
    EXPECT_EQ(file.lastWriteError, 0);
    EXPECT_EQ(sizeOf(file), 8192);
}

// The count can't tell: as many bytes as the caller gave went to the disk, but they are the block's
// first ones.
TEST_F(WritingTest, ATornBlockIsToldByTheHandle)
{
    make(4000);
    std::size_t count = 0;
    {
        const ResourceLimit limit(RLIMIT_FSIZE, 4010);
        count = *delegate->writeFileAtPath("/file", file, bytesOf(std::string(20, 'x')), 4000);
    }
    EXPECT_EQ(count, 20U);
    EXPECT_EQ(file.lastWriteError, ENOSPC);
}

TEST_F(WritingTest, AMergeThatCannotReadIsAnErrorAndWritesNothing)
{
    make(8192);
    const Bytes before = diskBytes(file);
    NBFileHandle blind{UniqueFd(::open(delegate.onDisk("/file").c_str(), O_WRONLY | O_CLOEXEC))};
    const std::string data(4196, 'x');
    EXPECT_EQ(delegate->writeFileAtPath("/file", blind, bytesOf("x"), 5).code(), EBADF);
    EXPECT_EQ(delegate->writeFileAtPath("/file", blind, bytesOf(data), 0).code(), EBADF);
    EXPECT_EQ(diskBytes(file), before);
}

} // namespace

} // namespace nimbrel::test
