// The fast paths against the format's plain definition.
#include "crypto/NBCryptor.h"
#include "crypto/Reference.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

#include <limits>

namespace nimbrel::test {

namespace {

using reference::Direction;

constexpr std::uint64_t lastBlock = std::numeric_limits<std::uint64_t>::max();

enum class Place
{
    InPlace,
    Apart
};

class RunChecker
{
public:
    RunChecker(std::int64_t keySize, std::size_t blockSize)
        : _key{noiseKeyData(keySize)}, _blockSize(blockSize),
          _cryptor(cryptorWithData(_key.data, static_cast<std::int64_t>(blockSize)))
    {
    }

    void check(std::size_t size, std::uint64_t firstBlock) const
    {
        SCOPED_TRACE(testing::Message() << "block size " << _blockSize << ", " << size
                                        << " bytes, first block " << firstBlock);
        const Bytes data = noiseBytes(size, size + 1);
        const Bytes cipher = reference::run(data, _blockSize, firstBlock, _key, Direction::Encrypt);
        for (const Place place : {Place::Apart, Place::InPlace}) {
            EXPECT_EQ(crypted(data, firstBlock, place, &NBCryptor::encryptRun), cipher);
            EXPECT_EQ(crypted(cipher, firstBlock, place, &NBCryptor::decryptRun), data);
        }
    }

private:
    using Form = bool (NBCryptor::*)(ByteView, std::uint64_t, ByteSpan) const;

    Bytes crypted(const Bytes &data, std::uint64_t firstBlock, Place place, Form form) const
    {
        if (place == Place::InPlace) {
            Bytes bytes = data;
            EXPECT_TRUE((_cryptor.*form)(bytes, firstBlock, bytes));
            return bytes;
        }
        // Room before and behind that must stay untouched.
        constexpr std::size_t margin = 32;
        const Bytes before = data;
        Bytes out(data.size() + 2 * margin, 0xEE);
        EXPECT_TRUE((_cryptor.*form)(data, firstBlock, ByteSpan(out).subspan(margin, data.size())));
        EXPECT_EQ(data, before);
        const Bytes untouched(margin, 0xEE);
        EXPECT_EQ(Bytes(out.begin(), out.begin() + margin), untouched);
        EXPECT_EQ(Bytes(out.end() - margin, out.end()), untouched);
        return {out.begin() + margin, out.end() - margin};
    }

    reference::Key _key;
    std::size_t _blockSize;
    NBCryptor _cryptor;
};

} // namespace

TEST(BlockRunTest, EveryLengthUpToThreeBlocksOfSixteenBytes)
{
    const RunChecker checker(128, 16);
    for (std::size_t size = 0; size <= 48; ++size)
        checker.check(size, 5);
}

TEST(BlockRunTest, EveryLengthUpToThreeBlocksOfSixtyFourBytes)
{
    const RunChecker checker(192, 64);
    for (std::size_t size = 0; size <= 192; ++size)
        checker.check(size, 0);
}

TEST(BlockRunTest, EveryLengthUpToThreeBlocksOfAThousandAndTwentyFourBytes)
{
    const RunChecker checker(256, 1024);
    for (std::size_t size = 0; size <= 3072; ++size)
        checker.check(size, size);
}

TEST(BlockRunTest, SampledLengthsWithTheUsualBlockSize)
{
    const RunChecker checker(256, 4096);
    for (std::size_t size = 0; size <= 12288; size += 97)
        checker.check(size, size);
    for (const std::size_t around : {4096U, 8192U, 12288U})
        for (std::size_t size = around - 17; size <= around + 17; ++size)
            checker.check(size, 7);
}

TEST(BlockRunTest, OneToFortyBlocks)
{
    const RunChecker checker(256, 256);
    for (std::size_t blocks = 1; blocks <= 40; ++blocks) {
        checker.check(blocks * 256, 0);
        checker.check(blocks * 256 + 100, 1000);
    }
}

TEST(BlockRunTest, BlockSizesThatAreNoPowerOfTwo)
{
    for (const std::size_t blockSize : {16U, 48U, 80U, 144U, 1008U}) {
        const RunChecker checker(256, blockSize);
        for (std::size_t blocks = 1; blocks <= 40; blocks += 3)
            checker.check(blocks * blockSize + 5, 3);
    }
}

TEST(BlockRunTest, RunsAroundTheEndOfTheVectorTable)
{
    const RunChecker checker(256, 64);
    for (std::uint64_t firstBlock = 65536 - 41; firstBlock <= 65537; ++firstBlock)
        checker.check(40 * 64 + 9, firstBlock);
}

TEST(BlockRunTest, RunsFarBeyondTheVectorTable)
{
    const RunChecker checker(192, 64);
    for (const unsigned shift : {17U, 31U, 32U, 33U, 40U, 63U})
        for (const std::size_t blocks : {1U, 8U, 17U, 40U})
            checker.check(blocks * 64 + 1, (std::uint64_t{1} << shift) - 3);
}

TEST(BlockRunTest, BlockNumbersWrapAtSixtyFourBits)
{
    const RunChecker checker(128, 64);
    for (std::uint64_t back = 0; back < 40; ++back)
        checker.check(35 * 64 + 33, lastBlock - back);
}

TEST(BlockRunTest, ALargeRun)
{
    const RunChecker checker(256, 4096);
    checker.check(std::size_t{1} << 20U, 11);
    checker.check((std::size_t{1} << 20U) + 4095, 11);
}

TEST(BlockRunTest, ABlockLargerThanTheRunIsOnePiece)
{
    const RunChecker checker(256, std::size_t{1} << 30U);
    checker.check(5000, 2);
}

TEST(BlockRunTest, UnalignedMemory)
{
    const reference::Key key{noiseKeyData(256)};
    const NBCryptor cryptor = cryptorWithData(key.data, 64);
    const Bytes data = noiseBytes(20 * 64 + 30);
    const Bytes cipher = reference::run(data, 64, 4, key, Direction::Encrypt);
    for (std::size_t shift = 1; shift < 16; ++shift) {
        Bytes memory(data.size() + shift);
        const ByteSpan bytes = ByteSpan(memory).subspan(shift);
        std::ranges::copy(data, bytes.begin());
        ASSERT_TRUE(cryptor.encryptRun(bytes, 4, bytes));
        EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), cipher);
        ASSERT_TRUE(cryptor.decryptRun(bytes, 4, bytes));
        EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), data);
    }
}

TEST(BlockRunTest, RunsAreWhatTheBufferFormsGive)
{
    const NBCryptor cryptor = cryptorWithData(noiseKeyData(256), 64);
    const Bytes data = noiseBytes(19 * 64 + 7);
    Bytes run(data.size());
    ASSERT_TRUE(cryptor.encryptRun(data, 3, run));
    EXPECT_EQ(cryptor.encryptData(data, data.size(), std::int64_t{3} * 64), run);
    EXPECT_EQ(cryptor.decryptData(run, run.size(), std::int64_t{3} * 64), data);
}

TEST(BlockRunTest, AResultOfAnotherLengthIsRefused)
{
    const NBCryptor cryptor = cryptorWithData(noiseKeyData(256), 64);
    const Bytes data = noiseBytes(64);
    Bytes shorter(63);
    Bytes longer(65);
    EXPECT_FALSE(cryptor.encryptRun(data, 0, shorter));
    EXPECT_FALSE(cryptor.decryptRun(data, 0, longer));
}

TEST(BlockRunTest, WholeBlocksThatAreNoWholeNumberOfCipherBlocksAreRefused)
{
    const NBCryptor cryptor = cryptorWithData(noiseKeyData(256), 100);
    Bytes one = noiseBytes(100);
    Bytes many = noiseBytes(1000);
    EXPECT_FALSE(cryptor.encryptRun(one, 0, one));
    EXPECT_FALSE(cryptor.decryptRun(one, 0, one));
    EXPECT_FALSE(cryptor.encryptRun(many, 0, many));
    EXPECT_FALSE(cryptor.decryptRun(many, 0, many));
    Bytes piece = noiseBytes(99);
    EXPECT_TRUE(cryptor.encryptRun(piece, 0, piece));
}

} // namespace nimbrel::test
