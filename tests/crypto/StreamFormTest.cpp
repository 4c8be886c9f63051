#include "crypto/NBCryptor.h"
#include "crypto/Reference.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

#include <limits>

namespace nimbrel::test {

namespace {

using reference::Direction;

constexpr std::uint64_t lastSeed = std::numeric_limits<std::uint64_t>::max();

} // namespace

TEST(StreamFormTest, IsTheReferenceForEveryLength)
{
    const reference::Key key{noiseKeyData(256)};
    const NBEncryptionKey ours = keyWithData(key.data);
    for (std::size_t size = 0; size < 300; ++size) {
        const Bytes plain = noiseBytes(size, size);
        const std::uint64_t seed = size * 77;
        Bytes bytes = plain;
        ASSERT_TRUE(NBCryptor::streamCrypt(bytes, seed, ours, CryptMode::Encrypt));
        ASSERT_EQ(bytes, reference::stream(plain, seed, key, Direction::Encrypt)) << size;
        Bytes back = plain;
        ASSERT_TRUE(NBCryptor::streamCrypt(back, seed, ours, CryptMode::Decrypt));
        ASSERT_EQ(back, reference::stream(plain, seed, key, Direction::Decrypt)) << size;
    }
}

TEST(StreamFormTest, LongPiecesAreTheReferenceToo)
{
    const reference::Key key{noiseKeyData(128)};
    const NBEncryptionKey ours = keyWithData(key.data);
    for (const std::size_t size : {4095U, 4097U, 65'537U, 1'000'003U}) {
        const Bytes plain = noiseBytes(size);
        Bytes bytes = plain;
        ASSERT_TRUE(NBCryptor::streamCrypt(bytes, 3, ours, CryptMode::Encrypt));
        ASSERT_EQ(bytes, reference::stream(plain, 3, key, Direction::Encrypt));
        ASSERT_TRUE(NBCryptor::streamCrypt(bytes, 3, ours, CryptMode::Decrypt));
        ASSERT_EQ(bytes, plain);
    }
}

TEST(StreamFormTest, AnEmptyPieceIsHarmless)
{
    const NBEncryptionKey key = keyWithData(noiseKeyData(256));
    Bytes none;
    EXPECT_TRUE(NBCryptor::streamCrypt(none, 1, key, CryptMode::Encrypt));
    EXPECT_TRUE(NBCryptor::streamCrypt(none, 1, key, CryptMode::Decrypt));
    EXPECT_TRUE(none.empty());
}

TEST(StreamFormTest, TheSameSeedGivesThePlainTextBackAndItsNeighbourDoesNot)
{
    const NBEncryptionKey key = keyWithData(noiseKeyData(256));
    const Bytes plain = noiseBytes(100);
    Bytes cipher = plain;
    ASSERT_TRUE(NBCryptor::streamCrypt(cipher, 9, key, CryptMode::Encrypt));
    EXPECT_NE(cipher, plain);
    for (const std::uint64_t seed : {8U, 9U, 10U}) {
        Bytes back = cipher;
        ASSERT_TRUE(NBCryptor::streamCrypt(back, seed, key, CryptMode::Decrypt));
        EXPECT_EQ(back == plain, seed == 9) << seed;
    }
}

TEST(StreamFormTest, TheSeedAfterTheLastOneIsZero)
{
    const reference::Key key{noiseKeyData(256)};
    const Bytes plain = noiseBytes(30);
    Bytes bytes = plain;
    ASSERT_TRUE(NBCryptor::streamCrypt(bytes, lastSeed, keyWithData(key.data), CryptMode::Encrypt));
    EXPECT_EQ(bytes, reference::stream(plain, lastSeed, key, Direction::Encrypt));
}

TEST(StreamFormTest, AModeThatIsNoNamedOneEncrypts)
{
    const NBEncryptionKey key = keyWithData(noiseKeyData(256));
    Bytes named = noiseBytes(50);
    Bytes other = named;
    ASSERT_TRUE(NBCryptor::streamCrypt(named, 1, key, CryptMode::Encrypt));
    ASSERT_TRUE(NBCryptor::streamCrypt(other, 1, key, static_cast<CryptMode>(-7)));
    EXPECT_EQ(other, named);
}

} // namespace nimbrel::test
