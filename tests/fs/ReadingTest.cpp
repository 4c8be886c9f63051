#include "fs/ResourceLimit.h"
#include "fs/TestDelegate.h"
#include "support/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

// What the process has mapped, in bytes.
std::size_t addressSpace()
{
    return std::stoul(readFile("/proc/self/statm")) * static_cast<std::size_t>(::getpagesize());
}

// 5000 bytes in blocks of 4096: a whole block and a short one of 904 bytes.
class ReadingTest : public testing::Test
{
protected:
    NBErrnoOr<std::size_t> read(std::size_t size, std::int64_t offset)
    {
        got.assign(size, '\x55');
        return delegate->readFileAtPath("/file", file, spanOf(got), offset);
    }
    void expectPlain(std::size_t size, std::int64_t offset)
    {
        EXPECT_EQ(got.substr(0, size), plain.substr(static_cast<std::size_t>(offset), size));
    }

    std::string plain = noise(5000, 7);
    std::string got;
    TestDelegate delegate;
    NBFileHandle file = delegate.create("/file", plain);
};

TEST_F(ReadingTest, TheShortLastBlockHasTheStreamForm)
{
    const Bytes disk = diskBytes(file);
    const ByteView bytes = bytesOf(plain);
    EXPECT_EQ(Bytes(disk.begin(), disk.begin() + 4096),
              delegate->cryptor().encryptBlockData(bytes.first(4096), 4096, 0));
    EXPECT_EQ(Bytes(disk.begin() + 4096, disk.end()),
              delegate->cryptor().encryptBlockData(bytes.subspan(4096), 904, 1));
}

TEST_F(ReadingTest, ARequestPastTheEndGivesWhatIsThere)
{
    const NBErrnoOr<std::size_t> count = read(8192, 0);
    ASSERT_TRUE(count);
    EXPECT_EQ(*count, 5000U);
    expectPlain(5000, 0);
    EXPECT_EQ(got.substr(5000), std::string(3192, '\x55')); // not a byte more was touched
}

TEST_F(ReadingTest, TheEndAndBeyondGiveNothing)
{
    for (const std::int64_t offset : {5000, 5001, 1 << 30}) {
        const NBErrnoOr<std::size_t> count = read(100, offset);
        ASSERT_TRUE(count);
        EXPECT_EQ(*count, 0U);
        EXPECT_EQ(got, std::string(100, '\x55'));
    }
}

TEST_F(ReadingTest, APartOfTheShortBlockIsRead)
{
    const NBErrnoOr<std::size_t> count = read(100, 4096);
    ASSERT_TRUE(count);
    EXPECT_EQ(*count, 100U);
    expectPlain(100, 4096);
}

// Kept: the count is that of the run, which doesn't fit behind the offset.
TEST_F(ReadingTest, ARequestFromInsideABlockPastTheEndFails)
{
    EXPECT_EQ(read(8192, 100).code(), EIO);
    EXPECT_EQ(got, std::string(8192, '\x55'));
    EXPECT_EQ(read(4901, 100).code(), EIO);
}

TEST_F(ReadingTest, ARequestFromInsideABlockToTheEndSucceeds)
{
    const NBErrnoOr<std::size_t> count = read(4900, 100);
    ASSERT_TRUE(count);
    EXPECT_EQ(*count, 4900U);
    expectPlain(4900, 100);
}

TEST_F(ReadingTest, ARequestOverABlocksEndIsRead)
{
    const NBErrnoOr<std::size_t> count = read(200, 4000);
    ASSERT_TRUE(count);
    EXPECT_EQ(*count, 200U);
    expectPlain(200, 4000);
}

TEST_F(ReadingTest, NothingIsReadForNothing)
{
    for (const std::int64_t offset : {0, 100, 4096}) {
        const NBErrnoOr<std::size_t> count = read(0, offset);
        ASSERT_TRUE(count);
        EXPECT_EQ(*count, 0U);
    }
}

TEST_F(ReadingTest, ANegativeOffsetIsRefused)
{
    EXPECT_EQ(read(10, -1).code(), EINVAL);
}

TEST_F(ReadingTest, AReleasedFileGivesItsError)
{
    delegate->releaseFileAtPath("/file", file);
    EXPECT_FALSE(file.descriptor);
    EXPECT_EQ(read(10, 0).code(), EBADF);
}

TEST_F(ReadingTest, AFileThatCannotBeReadGivesItsError)
{
    file.descriptor.reset(::open(delegate.onDisk("/file").c_str(), O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(read(10, 100).code(), EBADF); // through the scratch run
    EXPECT_EQ(read(8192, 0).code(), EBADF); // into the buffer
}

TEST_F(ReadingTest, OpeningForWritingOpensForReadingToo)
{
    for (const int mode : {O_WRONLY, O_WRONLY | O_APPEND, O_RDWR}) {
        const NBErrnoOr<NBFileHandle> opened = delegate->openFileAtPath("/file", mode);
        ASSERT_TRUE(opened);
        const int flags = ::fcntl(opened->descriptor.get(), F_GETFL);
        EXPECT_EQ(flags & O_ACCMODE, O_RDWR);
        EXPECT_EQ(flags & O_APPEND, mode & O_APPEND);
    }
    const NBErrnoOr<NBFileHandle> opened = delegate->openFileAtPath("/file", O_RDONLY);
    ASSERT_TRUE(opened);
    EXPECT_EQ(::fcntl(opened->descriptor.get(), F_GETFL) & O_ACCMODE, O_RDONLY);
}

TEST_F(ReadingTest, OpeningTakesTheFlagsAsGiven)
{
    ASSERT_TRUE(delegate->createSymbolicLinkAtPath("/link", "x"));
    EXPECT_EQ(delegate->openFileAtPath("/link", O_RDONLY | O_NOFOLLOW).code(), ELOOP);
    EXPECT_EQ(delegate->openFileAtPath("/missing", O_RDONLY).code(), ENOENT);
    ASSERT_TRUE(delegate->openFileAtPath("/file", O_WRONLY | O_TRUNC));
    EXPECT_EQ(sizeOf(file), 0);
}

TEST_F(ReadingTest, NoMemoryForTheRunIsAnError)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers end the process when there is no memory";
#else
    constexpr std::int64_t blockSize = 256LL << 20;
    const TestDelegate large(blockSize);
    NBFileHandle sparse = large.create("/sparse");
    ASSERT_EQ(::ftruncate(sparse.descriptor.get(), blockSize), 0);
    std::string buffer(10, '\0');
    int readError = 0;
    int writeError = 0;
    int sizeError = 0;
    {
        const ResourceLimit limit(RLIMIT_AS, addressSpace() + (64U << 20));
        readError = large->readFileAtPath("/sparse", sparse, spanOf(buffer), 1).code();
        writeError = large->writeFileAtPath("/sparse", sparse, bytesOf(buffer), 1).code();
        sizeError = large->setAttributes({.size = blockSize - 1}, "/sparse", &sparse).code();
    }
    EXPECT_EQ(readError, ENOMEM);
    EXPECT_EQ(writeError, ENOMEM);
    EXPECT_EQ(sizeError, ENOMEM);
    EXPECT_EQ(sizeOf(sparse), blockSize);
#endif
}

// Kept: a gap is deciphered like everything else.
TEST(HoleTest, AWholeBlockOfZerosOnDiskReadsAsNoise)
{
    const TestDelegate delegate;
    NBFileHandle file = delegate.create("/file");
    ASSERT_EQ(::ftruncate(file.descriptor.get(), 8192), 0);
    const std::string content = delegate.content(file);
    EXPECT_NE(content, std::string(8192, '\0'));
    EXPECT_EQ(bytesOf(content).size(), 8192U);
    const Bytes zeros(8192);
    const Bytes noise = delegate->cryptor().decryptData(zeros, 8192, 0).value();
    EXPECT_EQ(content, textOf(noise));
}

TEST(HoleTest, TheReadingOfHolesAsZerosIsOffAtFirst)
{
    const TestDelegate delegate;
    EXPECT_FALSE(delegate->readsHolesAsZeros());
    delegate->setReadsHolesAsZeros(true);
    EXPECT_TRUE(delegate->readsHolesAsZeros());
}

// Every pattern of holes among five blocks and a short one.
TEST(HoleTest, HolesReadAsZerosAmongBlocksThatDont)
{
    const TestDelegate delegate(32);
    delegate->setReadsHolesAsZeros(true);
    const std::string plain = noise(5 * 32 + 7, 3);
    NBFileHandle file = delegate.create("/file", plain);
    const Bytes disk = diskBytes(file);
    for (unsigned pattern = 0; pattern < 32; ++pattern) {
        Bytes holed = disk;
        std::string expected = plain;
        for (unsigned block = 0; block < 5; ++block)
            if ((pattern >> block & 1U) != 0) {
                std::fill_n(holed.begin() + block * 32, 32, std::uint8_t{0});
                expected.replace(block * 32, 32, 32, '\0');
            }
        setDiskBytes(file, holed);
        EXPECT_EQ(delegate.content(file), expected) << pattern;
        std::string inside(100, '\0'); // through the scratch run
        ASSERT_TRUE(delegate->readFileAtPath("/file", file, spanOf(inside), 5));
        EXPECT_EQ(inside, expected.substr(5, 100)) << pattern;
    }
}

TEST(HoleTest, AMergeIntoAHoleKeepsItsZeros)
{
    const TestDelegate delegate(32);
    delegate->setReadsHolesAsZeros(true);
    NBFileHandle file = delegate.create("/file");
    ASSERT_EQ(::ftruncate(file.descriptor.get(), 96), 0);
    ASSERT_TRUE(delegate->writeFileAtPath("/file", file, bytesOf("abc"), 40));
    EXPECT_EQ(delegate.content(file), std::string(40, '\0') + "abc" + std::string(53, '\0'));
}

TEST(HoleTest, AShortBlockOfZerosIsNoHole)
{
    const TestDelegate delegate(32);
    delegate->setReadsHolesAsZeros(true);
    NBFileHandle file = delegate.create("/file");
    ASSERT_EQ(::ftruncate(file.descriptor.get(), 32 + 20), 0);
    const std::string content = delegate.content(file);
    EXPECT_EQ(content.substr(0, 32), std::string(32, '\0'));
    EXPECT_NE(content.substr(32), std::string(20, '\0'));
}

TEST(HoleTest, ABlockThatOnlyBeginsWithZerosIsNoHole)
{
    const TestDelegate delegate(32);
    delegate->setReadsHolesAsZeros(true);
    NBFileHandle file = delegate.create("/file");
    for (const std::size_t first : {8U, 16U, 31U}) {
        Bytes disk(32);
        disk[first] = 1;
        setDiskBytes(file, disk);
        const Bytes expected = delegate->cryptor().decryptData(disk, 32, 0).value();
        EXPECT_EQ(delegate.content(file), textOf(expected)) << first;
    }
}

} // namespace

} // namespace nimbrel::test
