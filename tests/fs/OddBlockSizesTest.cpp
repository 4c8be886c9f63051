// Block sizes that no folder of ours has, but that a dictionary may bring.
#include "fs/TestDelegate.h"
#include "support/Files.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

TEST(OddBlockSizesTest, WithoutAUsableBlockSizeContentIsRefused)
{
    for (const std::int64_t blockSize : {0, -16}) {
        const TestDelegate delegate(blockSize);
        NBErrnoOr<NBFileHandle> made = delegate->createFileAtPath("/file", 0644);
        ASSERT_TRUE(made);
        setDiskBytes(*made, bytesOf("stored"));
        std::string buffer(10, '\0');
        EXPECT_EQ(delegate->readFileAtPath("/file", *made, spanOf(buffer), 0).code(), EINVAL);
        EXPECT_EQ(delegate->writeFileAtPath("/file", *made, bytesOf("x"), 0).code(), EINVAL);
        EXPECT_EQ(delegate->setAttributes({.size = 3}, "/file", &*made).code(), EINVAL);
        EXPECT_EQ(sizeOf(*made), 6);
    }
}

TEST(OddBlockSizesTest, ABlockLargerThanAnyMemoryIsJustAShortBlock)
{
    const TestDelegate delegate(std::int64_t{1} << 62);
    const std::string plain = noise(5000, 5);
    NBFileHandle file = delegate.create("/file", plain);
    ASSERT_TRUE(delegate->writeFileAtPath("/file", file, bytesOf("abc"), 100));
    ASSERT_TRUE(delegate->writeFileAtPath("/file", file, bytesOf("def"), 4999));
    std::string expected = plain.substr(0, 4999) + "def";
    expected.replace(100, 3, "abc");
    EXPECT_EQ(delegate.content(file), expected);
    ASSERT_TRUE(delegate->setAttributes({.size = 200}, "/file", &file));
    EXPECT_EQ(delegate.content(file), expected.substr(0, 200));
    ASSERT_TRUE(delegate->setAttributes({.size = 300}, "/file", &file));
    EXPECT_EQ(delegate.content(file), expected.substr(0, 200) + std::string(100, '\0'));
}

// Kept: a block that the cipher refuses adds nothing, and the rest lands at its place.
TEST(OddBlockSizesTest, BlocksThatTheCipherRefusesAddNothing)
{
    const TestDelegate delegate(24);
    NBErrnoOr<NBFileHandle> file = delegate->createFileAtPath("/file", 0644);
    ASSERT_TRUE(file);
    const std::string plain = noise(30, 6);
    const NBErrnoOr<std::size_t> written =
        delegate->writeFileAtPath("/file", *file, bytesOf(plain), 0);
    ASSERT_TRUE(written);
    EXPECT_EQ(*written, 6U);
    EXPECT_EQ(file->lastWriteError, EIO);
    EXPECT_EQ(diskBytes(*file),
              delegate->cryptor().encryptBlockData(bytesOf(plain).subspan(24), 6, 1));
}

// Kept: what can't be deciphered is counted all the same.
TEST(OddBlockSizesTest, BlocksThatTheCipherRefusesAreCountedAndNotFilled)
{
    const TestDelegate delegate(24);
    NBErrnoOr<NBFileHandle> file = delegate->createFileAtPath("/file", 0644);
    ASSERT_TRUE(file);
    setDiskBytes(*file, bytesOf(noise(48, 6)));
    std::string inside(20, 'u');
    const NBErrnoOr<std::size_t> count =
        delegate->readFileAtPath("/file", *file, spanOf(inside), 1);
    ASSERT_TRUE(count);
    EXPECT_EQ(*count, 20U);
    EXPECT_EQ(inside, std::string(20, 'u'));
    std::string whole(48, 'u');
    const NBErrnoOr<std::size_t> direct =
        delegate->readFileAtPath("/file", *file, spanOf(whole), 0);
    ASSERT_TRUE(direct);
    EXPECT_EQ(*direct, 48U);
    EXPECT_EQ(whole, std::string(48, '\0'));
}

TEST(OddBlockSizesTest, ACutThatTheCipherRefusesToFollowFailsWithoutAnError)
{
    const TestDelegate delegate(24);
    NBErrnoOr<NBFileHandle> file = delegate->createFileAtPath("/file", 0644);
    ASSERT_TRUE(file);
    setDiskBytes(*file, bytesOf(noise(10, 6)));
    const NBDone done = delegate->setAttributes({.size = 48}, "/file", &*file);
    EXPECT_FALSE(done);
    EXPECT_EQ(done.code(), 0);
    EXPECT_EQ(file->lastWriteError, EIO);
}

TEST(OddBlockSizesTest, HolesThatTheCipherRefusesAreNoError)
{
    const TestDelegate delegate(24);
    delegate->setReadsHolesAsZeros(true);
    NBErrnoOr<NBFileHandle> file = delegate->createFileAtPath("/file", 0644);
    ASSERT_TRUE(file);
    Bytes disk(72);
    disk[3] = 1;
    setDiskBytes(*file, disk);
    std::string buffer(72, 'u');
    const NBErrnoOr<std::size_t> count =
        delegate->readFileAtPath("/file", *file, spanOf(buffer), 0);
    ASSERT_TRUE(count);
    EXPECT_EQ(*count, 72U);
}

// Kept: the field alone changes. Pieces are cut by the field, their form is the cryptor's affair.
TEST(OddBlockSizesTest, AChangedFieldCutsPiecesThatTheCryptorTakesForShortOnes)
{
    const TestDelegate delegate;
    delegate->setBlockSize(32);
    const std::string plain = noise(70, 8);
    const NBFileHandle file = delegate.create("/file", plain);
    Bytes expected;
    for (std::int64_t block = 0; block < 3; ++block) {
        const auto from = static_cast<std::size_t>(block) * 32;
        const ByteView piece =
            bytesOf(plain).subspan(from, std::min<std::size_t>(32, plain.size() - from));
        const Bytes part = delegate->cryptor().encryptBlockData(piece, piece.size(), block).value();
        expected.insert(expected.end(), part.begin(), part.end());
    }
    EXPECT_EQ(diskBytes(file), expected);
}

} // namespace

} // namespace nimbrel::test
