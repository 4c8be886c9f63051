#include "fs/guards/GuardedFolder.h"
#include "fs/guards/StoreFaults.h"
#include "support/Files.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <limits>
#include <unistd.h>

namespace nimbrel::test {

namespace {

struct ReadResult
{
    int code;
    std::string text;
};

ReadResult readSome(GuardedFolder &folder, NBFileHandle &file, std::size_t size,
                    std::int64_t offset)
{
    std::string text(size, '?');
    const NBErrnoOr<std::size_t> got = folder.content().read(file, spanOf(text), offset);
    text.resize(got ? *got : 0);
    return {got.code(), text};
}

} // namespace

TEST(GuardedReadTest, EndsAtTheEndOfTheFile)
{
    GuardedFolder folder;
    const std::string text = noise(5000, 1);
    NBFileHandle file = folder.create("/file", text);
    EXPECT_EQ(readSome(folder, file, 8192, 100).text, text.substr(100));
    EXPECT_EQ(readSome(folder, file, 10, 4998).text, text.substr(4998));
}

TEST(GuardedReadTest, IsEmptyFromTheEndOn)
{
    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", "text");
    for (const std::int64_t offset :
         {std::int64_t{4}, std::int64_t{5}, std::numeric_limits<std::int64_t>::max()}) {
        const ReadResult result = readSome(folder, file, 10, offset);
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.text, "");
    }
}

TEST(GuardedReadTest, OfNothingIsNothing)
{
    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", "text");
    EXPECT_EQ(readSome(folder, file, 0, 0).code, 0);
}

TEST(GuardedReadTest, RefusesANegativeOffset)
{
    GuardedFolder folder;
    NBFileHandle file = folder.create("/file", "text");
    EXPECT_EQ(readSome(folder, file, 1, -1).code, EINVAL);
}

// What goes through the processor's cache in one piece is one call.
TEST(GuardedReadTest, OfManyBlocksIsOneCallAPiece)
{
    GuardedFolder folder;
    const std::string text = noise(1 << 20, 2);
    NBFileHandle file = folder.create("/file", text);
    for (const std::size_t pieces : {1U, 2U, 4U}) {
        const std::size_t before = readCalls();
        const std::size_t size = pieces << 17U;
        EXPECT_EQ(difference(text.substr(0, size), readSome(folder, file, size, 0).text), "");
        EXPECT_EQ(readCalls() - before, pieces);
    }
}

TEST(GuardedReadTest, GoesOnAfterShortReadsOfTheStore)
{
    GuardedFolder folder{{.blockSize = 64}};
    const std::string text = noise(1000, 3);
    NBFileHandle file = folder.create("/file", text);
    for (const std::size_t most : {64U, 65U, 127U, 130U, 999U}) {
        const ShortReads shortReads(most);
        for (const std::int64_t offset : {0, 1, 63, 64, 100}) {
            const ReadResult result = readSome(folder, file, 1000, offset);
            EXPECT_EQ(result.code, 0) << most << " at " << offset;
            EXPECT_EQ(difference(text.substr(static_cast<std::size_t>(offset)), result.text), "")
                << most << " at " << offset;
        }
    }
}

TEST(GuardedReadTest, FailsRatherThanEndingEarly)
{
    GuardedFolder folder{{.blockSize = 64}};
    NBFileHandle file = folder.create("/file", noise(1000, 4));
    {
        const ShortReads shortReads(63);
        EXPECT_EQ(readSome(folder, file, 1000, 0).code, EIO);
    }
    const ReadFault fault(500);
    EXPECT_EQ(readSome(folder, file, 1000, 0).code, EIO);
    EXPECT_EQ(readSome(folder, file, 64, 0).code, 0);
}

TEST(GuardedReadTest, HolesOfAnotherProgramAreZeros)
{
    GuardedFolder folder{{.blockSize = 64}};
    NBFileHandle file = folder.create("/file", noise(64, 5));
    ASSERT_EQ(::ftruncate(file.descriptor.get(), 64 * 4), 0);
    EXPECT_EQ(difference(noise(64, 5) + std::string(192, '\0'), folder.read(file)), "");
}

TEST(GuardedReadTest, HolesAreNoiseWhereTheConfigurationHasNone)
{
    GuardedFolder folder{{.blockSize = 64, .allowHoles = false}};
    NBFileHandle file = folder.create("/file", noise(64, 5));
    ASSERT_EQ(::ftruncate(file.descriptor.get(), 128), 0);
    EXPECT_NE(folder.read(file).substr(64), std::string(64, '\0'));
}

TEST(GuardedReadTest, AShortBlockOfZeroBytesIsDeciphered)
{
    GuardedFolder folder{{.blockSize = 64}};
    NBFileHandle file = folder.create("/file");
    ASSERT_EQ(::ftruncate(file.descriptor.get(), 40), 0);
    EXPECT_NE(folder.read(file), std::string(40, '\0'));
}

} // namespace nimbrel::test
