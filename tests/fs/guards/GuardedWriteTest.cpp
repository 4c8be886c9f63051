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

struct GuardedWriteTest : testing::TestWithParam<bool>
{
    GuardedFolder folder{{.blockSize = 64, .allowHoles = GetParam()}};

    NBErrnoOr<std::size_t> write(NBFileHandle &file, std::string_view text, std::int64_t offset)
    {
        return folder.content().write(file, bytesOf(text), offset);
    }
};

} // namespace

TEST_P(GuardedWriteTest, OfNothingDoesNothing)
{
    NBFileHandle file = folder.create("/file", "text");
    EXPECT_EQ(*write(file, "", 100), 0U);
    EXPECT_EQ(sizeOf(file), 4);
}

TEST_P(GuardedWriteTest, RefusesOffsetsThatCannotBe)
{
    NBFileHandle file = folder.create("/file", "text");
    EXPECT_EQ(write(file, "x", -1).code(), EINVAL);
    EXPECT_EQ(write(file, "xy", std::numeric_limits<std::int64_t>::max() - 1).code(), EFBIG);
    EXPECT_EQ(folder.read(file), "text");
}

TEST_P(GuardedWriteTest, AppendsAtTheEndAsItIsNow)
{
    NBFileHandle file = folder.create("/file", "one");
    NBFileHandle other = folder.open("/file");
    ASSERT_TRUE(folder.content().append(other, bytesOf(" two")));
    EXPECT_EQ(*folder.content().append(file, bytesOf(" three")), 6U);
    EXPECT_EQ(folder.read(file), "one two three");
}

TEST_P(GuardedWriteTest, ManyAppendsMakeOneFile)
{
    NBFileHandle file = folder.create("/file");
    std::string wanted;
    for (std::size_t i = 0; i < 200; ++i) {
        const std::string piece = noise(i % 23, i);
        ASSERT_TRUE(folder.content().append(file, bytesOf(piece)));
        wanted += piece;
    }
    EXPECT_EQ(difference(wanted, folder.readAt("/file")), "");
}

TEST_P(GuardedWriteTest, AGapReadsAsZeros)
{
    const std::string old = noise(100, 1);
    for (const std::int64_t offset : {101, 127, 128, 129, 192, 300, 100'000}) {
        const std::string path = "/file" + std::to_string(offset);
        NBFileHandle file = folder.create(path, old);
        ASSERT_EQ(*write(file, "end", offset), 3U);
        PlainModel model;
        model.write(old, 0);
        model.write("end", offset);
        EXPECT_EQ(difference(model.text(), folder.readAt(path)), "") << offset;
    }
}

TEST_P(GuardedWriteTest, ManyWholeBlocksAreOneCall)
{
    NBFileHandle file = folder.create("/file");
    const std::string text = noise(64 * 1000, 2);
    const std::size_t before = writeCalls();
    ASSERT_TRUE(write(file, text, 0));
    ASSERT_TRUE(write(file, text, 64 * 100));
    ASSERT_TRUE(write(file, text, 64 * 1100 + 3));
    EXPECT_LE(writeCalls() - before, 4U); // the last one grows the file first
    EXPECT_EQ(difference(text, folder.read(file).substr(64 * 1100 + 3)), "");
}

TEST_P(GuardedWriteTest, ABlockThatCannotBeReadIsNotWrittenOver)
{
    const std::string old = noise(200, 3);
    NBFileHandle file = folder.create("/file", old);
    {
        const ReadFault fault(70);
        EXPECT_EQ(write(file, "new", 80).code(), EIO);
        EXPECT_EQ(write(file, noise(80, 4), 0).code(), EIO); // its tail is in that block
        EXPECT_EQ(folder.content().setSize(file, 100).code(), EIO);
    }
    EXPECT_EQ(difference(old, folder.readAt("/file")), "");
    const ReadFault fault(199);
    EXPECT_EQ(folder.content().setSize(file, 300).code(), EIO);
    EXPECT_EQ(write(file, "new", 1000).code(), EIO);
    EXPECT_EQ(sizeOf(file), 200);
}

TEST_P(GuardedWriteTest, FailureIsToldByTheCallAndOnceBySync)
{
    NBFileHandle file = folder.create("/file", "old");
    {
        const WriteFault fault(0, 1, EDQUOT);
        EXPECT_EQ(write(file, "new", 0).code(), EDQUOT);
    }
    EXPECT_TRUE(write(file, "NEW", 0)); // a later success doesn't hide it
    EXPECT_EQ(folder.content().sync(file, false).code(), EDQUOT);
    EXPECT_TRUE(folder.content().sync(file, false));
    EXPECT_TRUE(folder.content().sync(file, true));
    EXPECT_EQ(folder.read(file), "NEW");
}

TEST_P(GuardedWriteTest, ASignalIsNoFailure)
{
    NBFileHandle file = folder.create("/file", noise(100, 5));
    const WriteFault fault(70, 1, EINTR);
    const std::string text = noise(150, 6);
    EXPECT_EQ(*write(file, text, 0), text.size());
    EXPECT_TRUE(fault.hasStruck());
    EXPECT_EQ(difference(text, folder.readAt("/file")), "");
}

TEST_P(GuardedWriteTest, WhatAStoreTakesAtTheSecondTryIsDone)
{
    NBFileHandle file = folder.create("/file", noise(100, 7));
    const WriteFault fault(70, 0, ENOSPC);
    const std::string text = noise(150, 8);
    EXPECT_EQ(*write(file, text, 10), text.size());
    EXPECT_TRUE(fault.hasStruck());
    EXPECT_EQ(difference(noise(100, 7).substr(0, 10) + text, folder.readAt("/file")), "");
}

TEST_P(GuardedWriteTest, AStoreThatGivesUpHalfwayHasTakenAPart)
{
    NBFileHandle file = folder.create("/file");
    const std::string text = noise(500, 9);
    {
        const WriteFault fault(200, 1, ENOSPC);
        EXPECT_EQ(*write(file, text, 0), 192U); // three blocks
    }
    EXPECT_TRUE(folder.content().sync(file, false)); // the count has told it
    EXPECT_EQ(difference(text.substr(0, 192), folder.readAt("/file")), "");
}

TEST_P(GuardedWriteTest, SyncTellsTheStoresError)
{
    NBFileHandle file = folder.create("/file");
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const UniqueFd other(ends[1]);
    NBFileHandle pipe{.descriptor = UniqueFd(ends[0])};
    EXPECT_EQ(folder.content().sync(pipe, false).code(), EINVAL); // fsync(2) of a pipe
    EXPECT_EQ(folder.content().sync(pipe, true).code(), EINVAL);
}

TEST_P(GuardedWriteTest, GoesOnInAFileWithoutAName)
{
    NBFileHandle file = folder.create("/file", noise(100, 10));
    ASSERT_TRUE(folder.tree().removeFile("/file"));
    ASSERT_TRUE(write(file, "more", 300));
    ASSERT_TRUE(folder.content().setSize(file, 302));
    EXPECT_EQ(folder.read(file).substr(298), std::string("\0\0mo", 4));
    EXPECT_TRUE(folder.list("/")->empty());
}

INSTANTIATE_TEST_SUITE_P(Holes, GuardedWriteTest, testing::Bool(), nameOfHoles);

TEST(GuardedHolesTest, AGapStaysAHole)
{
    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", "begin");
    ASSERT_TRUE(folder.content().write(file, bytesOf("end"), std::int64_t{1} << 30));
    EXPECT_LT(folder.tree().attributes(file)->st_blocks, 1000);
    EXPECT_EQ(sizeOf(file), (std::int64_t{1} << 30) + 3);
}

TEST(GuardedHolesTest, WithoutHolesAGapIsEncipheredZeros)
{
    GuardedFolder folder{{.allowHoles = false}};
    NBFileHandle file = folder.create("/file");
    constexpr std::int64_t offset = 3 << 20;
    ASSERT_TRUE(folder.content().write(file, bytesOf("end"), offset));
    EXPECT_GE(folder.tree().attributes(file)->st_blocks, offset / 512);
    // So every program of the format reads zeros there.
    const std::unique_ptr<NBNimbrelFS> bare = folder.bareDelegate();
    std::string text(offset, '?');
    ASSERT_EQ(*bare->readFileAtPath("", file, spanOf(text), 0), text.size());
    EXPECT_EQ(text.find_first_not_of('\0'), std::string::npos);
}

} // namespace nimbrel::test
