#include "crypto/NBCryptor.h"

#include "crypto/Base64.h"
#include "crypto/Reference.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

#include <limits>

namespace nimbrel::test {

namespace {

using reference::Direction;

class NBCryptorTest : public testing::Test
{
protected:
    static constexpr std::size_t blockSize = 64;

    reference::Key key{noiseKeyData(256)};
    NBCryptor cryptor = cryptorWithData(key.data, blockSize);

    [[nodiscard]] Bytes asBlock(const Bytes &data, std::uint64_t seed) const
    {
        return reference::cbc(data, reference::vectorOf(seed, key), key.cipherKey(),
                              Direction::Encrypt);
    }
    [[nodiscard]] Bytes asStream(const Bytes &data, std::uint64_t seed) const
    {
        return reference::stream(data, seed, key, Direction::Encrypt);
    }
};

Bytes joined(Bytes first, const Bytes &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Bytes part(const Bytes &data, std::size_t start, std::size_t size)
{
    const ByteView view = ByteView(data).subspan(start, size);
    return {view.begin(), view.end()};
}

} // namespace

TEST_F(NBCryptorTest, AnEmptyBufferGivesAnEmptyBuffer)
{
    EXPECT_EQ(cryptor.encrypt({}), Bytes());
    EXPECT_EQ(cryptor.decrypt({}), Bytes());
}

TEST_F(NBCryptorTest, ExactlyOneBlockTakesTheBlockForm)
{
    const Bytes data = noiseBytes(blockSize);
    EXPECT_EQ(cryptor.encrypt(data), asBlock(data, 0));
}

TEST_F(NBCryptorTest, ShortBlockTakesTheStreamForm)
{
    const Bytes data = noiseBytes(blockSize - 1);
    EXPECT_EQ(cryptor.encrypt(data), asStream(data, 0));
}

TEST_F(NBCryptorTest, TheBytesBehindAWholeBlockTakeTheStreamForm)
{
    const Bytes data = noiseBytes(blockSize + 1);
    EXPECT_EQ(cryptor.encrypt(data),
              joined(asBlock(part(data, 0, blockSize), 0), asStream(part(data, blockSize, 1), 1)));
}

TEST_F(NBCryptorTest, FiveThousandBytesAreOneBlockAndAStreamPiece)
{
    const NBCryptor usual = cryptorWithData(key.data, 4096);
    const Bytes data = noiseBytes(5000);
    EXPECT_EQ(usual.encrypt(data),
              joined(asBlock(part(data, 0, 4096), 0), asStream(part(data, 4096, 904), 1)));
}

TEST_F(NBCryptorTest, EncryptingAndDecryptingGivesThePlainTextBack)
{
    for (std::size_t size = 0; size < 5 * blockSize; ++size) {
        const Bytes data = noiseBytes(size, size);
        EXPECT_EQ(cryptor.decrypt(cryptor.encrypt(data).value()), data);
    }
}

TEST_F(NBCryptorTest, ARangeOfSizeZeroGivesAnEmptyResult)
{
    EXPECT_EQ(cryptor.encryptData(noiseBytes(100), 0, 0), Bytes());
    EXPECT_EQ(cryptor.decryptData(noiseBytes(100), 0, 640), Bytes());
    EXPECT_EQ(cryptor.encryptData({}, 0, 0), Bytes());
}

TEST_F(NBCryptorTest, ARangeStartsWithTheBlockOfItsOffset)
{
    const Bytes data = noiseBytes(blockSize + 10);
    EXPECT_EQ(cryptor.encryptData(data, data.size(), std::int64_t{7} * blockSize),
              joined(asBlock(part(data, 0, blockSize), 7), asStream(part(data, blockSize, 10), 8)));
}

TEST_F(NBCryptorTest, AnOffsetWithinABlockCountsAsTheBlocksStart)
{
    const Bytes data = noiseBytes(3 * blockSize);
    const auto aligned = cryptor.encryptData(data, data.size(), 2 * std::int64_t{blockSize});
    EXPECT_EQ(cryptor.encryptData(data, data.size(), 3 * std::int64_t{blockSize} - 1), aligned);
    EXPECT_NE(cryptor.encryptData(data, data.size(), 3 * std::int64_t{blockSize}), aligned);
}

TEST_F(NBCryptorTest, TheSizeOfARangeCountsAndNotTheBuffers)
{
    const Bytes data = noiseBytes(200);
    EXPECT_EQ(cryptor.encryptData(data, 70, 0), cryptor.encryptData(part(data, 0, 70), 70, 0));
    EXPECT_EQ(cryptor.encryptData(data, 64, 0), asBlock(part(data, 0, 64), 0));
}

TEST_F(NBCryptorTest, ASizeBeyondTheBufferGivesNothing)
{
    EXPECT_FALSE(cryptor.encryptData(noiseBytes(10), 11, 0));
    EXPECT_FALSE(cryptor.decryptData({}, 1, 0));
}

TEST_F(NBCryptorTest, OneBlockTakesItsNumberAsTheSeed)
{
    const Bytes data = noiseBytes(blockSize);
    for (const std::int64_t block : {std::int64_t{0}, std::int64_t{1}, std::int64_t{1} << 33})
        EXPECT_EQ(cryptor.encryptBlockData(data, blockSize, block),
                  asBlock(data, static_cast<std::uint64_t>(block)));
}

TEST_F(NBCryptorTest, TheSizeOfOneBlockOnlyChoosesItsForm)
{
    const Bytes block = noiseBytes(blockSize);
    EXPECT_EQ(cryptor.encryptBlockData(block, blockSize - 1, 3), asStream(block, 3));
    const Bytes two = noiseBytes(2 * blockSize);
    EXPECT_EQ(cryptor.encryptBlockData(two, blockSize, 3), asBlock(two, 3));
    EXPECT_FALSE(cryptor.encryptBlockData(noiseBytes(20), blockSize, 3));
}

TEST_F(NBCryptorTest, OneBlockComesBack)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{20}, blockSize}) {
        const Bytes data = noiseBytes(size);
        const Bytes cipher = cryptor.encryptBlockData(data, size, 12).value();
        EXPECT_EQ(cryptor.crypt(cipher, size, BlockIndex{12}, CryptMode::Decrypt), data);
    }
}

TEST_F(NBCryptorTest, TheSameBlockNumberGivesEqualOutputInEveryFile)
{
    const Bytes data = noiseBytes(blockSize);
    const auto first = cryptor.encryptBlockData(data, blockSize, 5);
    EXPECT_EQ(cryptor.encryptBlockData(data, blockSize, 5), first);
    EXPECT_NE(cryptor.encryptBlockData(data, blockSize, 6), first);
}

TEST_F(NBCryptorTest, AnAllZeroBlockIsDecryptedLikeAnyOther)
{
    const Bytes zeros(blockSize, 0);
    const Bytes expected =
        reference::cbc(zeros, reference::vectorOf(2, key), key.cipherKey(), Direction::Decrypt);
    EXPECT_EQ(cryptor.decryptData(zeros, blockSize, 2 * std::int64_t{blockSize}), expected);
    EXPECT_NE(expected, zeros);
}

TEST_F(NBCryptorTest, ABlockSizeOfZeroGivesNothing)
{
    const NBCryptor broken = cryptorWithData(key.data, 0);
    Bytes data = noiseBytes(64);
    EXPECT_FALSE(broken.encrypt(data));
    EXPECT_FALSE(broken.decrypt({}));
    EXPECT_FALSE(broken.encryptData(data, 64, 0));
    EXPECT_FALSE(broken.encryptBlockData(data, 0, 0));
    EXPECT_FALSE(broken.encryptRun(data, 0, data));
    EXPECT_FALSE(broken.decryptRun(data, 0, data));
}

TEST_F(NBCryptorTest, ABlockSizeThatIsNoWholeNumberOfCipherBlocksFailsInWholeBlocksOnly)
{
    const NBCryptor odd = cryptorWithData(key.data, 100);
    EXPECT_FALSE(odd.encrypt(noiseBytes(100)));
    EXPECT_FALSE(odd.encrypt(noiseBytes(250)));
    EXPECT_TRUE(odd.encrypt(noiseBytes(99)));
}

TEST_F(NBCryptorTest, ANegativeBlockSizeMakesEveryBufferOnePiece)
{
    const NBCryptor odd = cryptorWithData(key.data, -1);
    const Bytes data = noiseBytes(1000);
    EXPECT_EQ(odd.encrypt(data), asStream(data, 0));
}

TEST_F(NBCryptorTest, BlockFormWorksInPlaceOnWholeCipherBlocks)
{
    const NBEncryptionKey ours = keyWithData(key.data);
    const Bytes data = noiseBytes(4096);
    Bytes bytes = data;
    ASSERT_TRUE(NBCryptor::blockCrypt(bytes, 17, ours, CryptMode::Encrypt));
    EXPECT_EQ(bytes, asBlock(data, 17));
    ASSERT_TRUE(NBCryptor::blockCrypt(bytes, 17, ours, CryptMode::Decrypt));
    EXPECT_EQ(bytes, data);
    Bytes odd = noiseBytes(17);
    EXPECT_FALSE(NBCryptor::blockCrypt(odd, 0, ours, CryptMode::Encrypt));
    EXPECT_FALSE(NBCryptor::blockCrypt(odd, 0, ours, CryptMode::Decrypt));
    Bytes none;
    EXPECT_TRUE(NBCryptor::blockCrypt(none, 0, ours, CryptMode::Encrypt));
}

TEST_F(NBCryptorTest, KeepsItsKeyWhenItMoves)
{
    const std::string stored = cryptor.encodeString("name").value();
    NBCryptor moved = std::move(cryptor);
    EXPECT_EQ(moved.decodeString(stored), "name");
    NBCryptor other = cryptorWithData(noiseKeyData(128, 5), 16);
    other = std::move(moved);
    EXPECT_EQ(other.decodeString(stored), "name");
    EXPECT_EQ(other.blockSize(), blockSize);
}

TEST(NBCryptorConstructionTest, ANewCryptorHasARandomKeyAndSalt)
{
    const NBCryptor first = NBCryptor::withKeySize({.kdfIterations = 1}).value();
    const NBCryptor second = NBCryptor::withKeySize({.kdfIterations = 1}).value();
    EXPECT_EQ(first.salt().size(), 20U);
    EXPECT_NE(Bytes(first.salt().begin(), first.salt().end()),
              Bytes(second.salt().begin(), second.salt().end()));
    EXPECT_NE(textOf(first.key().data()), textOf(second.key().data()));
}

TEST(NBCryptorConstructionTest, KeepsItsSettings)
{
    const NBCryptor cryptor =
        NBCryptor::withKeySize(
            {.keySize = 192, .blockSize = 1024, .kdfIterations = 3, .checkKey = false})
            .value();
    EXPECT_EQ(cryptor.key().keySize(), 24U);
    EXPECT_EQ(cryptor.blockSize(), 1024U);
    EXPECT_EQ(cryptor.kdfIterations(), 3U);
    EXPECT_FALSE(cryptor.checkKey());
    EXPECT_EQ(cryptor.keyCheckSumBytes(), 0U);
}

TEST(NBCryptorConstructionTest, AKeySizeBelowOneIsTwoHundredAndFiftySix)
{
    for (const std::int64_t keySize : {std::int64_t{0}, std::int64_t{-128}}) {
        const auto fresh = NBCryptor::withKeySize({.keySize = keySize, .kdfIterations = 1});
        EXPECT_EQ(fresh.value().key().keySize(), 32U);
        const auto unchecked = NBCryptor::withPassphrase(
            "p", {.keySize = keySize, .kdfIterations = 1, .checkKey = false});
        EXPECT_EQ(unchecked.value().key().keySize(), 32U);
    }
}

TEST(NBCryptorConstructionTest, WithoutABlobAndACheckTheKeyIsAFreshOne)
{
    const NBCryptorSettings settings = {.saltData = "AAAA", .kdfIterations = 1, .checkKey = false};
    const NBCryptor first = NBCryptor::withPassphrase("p", settings).value();
    const NBCryptor second = NBCryptor::withPassphrase("p", settings).value();
    EXPECT_EQ(first.key().data().size(), 48U);
    EXPECT_NE(textOf(first.key().data()), textOf(second.key().data()));
}

TEST(NBCryptorConstructionTest, WithoutABlobButWithACheckThereIsNoCryptor)
{
    EXPECT_FALSE(NBCryptor::withPassphrase("p", {.kdfIterations = 1}));
}

TEST(NBCryptorConstructionTest, AMissingSaltIsTwentyFreshBytes)
{
    const NBCryptorSettings settings = {.kdfIterations = 1, .checkKey = false};
    const NBCryptor first = NBCryptor::withPassphrase("p", settings).value();
    const NBCryptor second = NBCryptor::withPassphrase("p", settings).value();
    EXPECT_EQ(first.salt().size(), 20U);
    EXPECT_NE(textOf(first.salt()), textOf(second.salt()));
}

TEST(NBCryptorConstructionTest, AGivenSaltIsDecoded)
{
    const NBCryptor cryptor =
        NBCryptor::withPassphrase("p", {.saltData = "AQID", .kdfIterations = 1, .checkKey = false})
            .value();
    EXPECT_EQ(Bytes(cryptor.salt().begin(), cryptor.salt().end()), (Bytes{1, 2, 3}));
    const NBCryptor empty =
        NBCryptor::withPassphrase("p", {.saltData = "", .kdfIterations = 1, .checkKey = false})
            .value();
    EXPECT_TRUE(empty.salt().empty());
}

TEST(NBCryptorConstructionTest, BadIterationsGiveNoCryptor)
{
    for (const std::int64_t iterations : {std::int64_t{0}, std::int64_t{-1}}) {
        EXPECT_FALSE(NBCryptor::withKeySize({.kdfIterations = iterations}));
        EXPECT_FALSE(
            NBCryptor::withPassphrase("p", {.kdfIterations = iterations, .checkKey = false}));
    }
}

TEST(NBCryptorConstructionTest, AKeyWrittenUnderAPassphraseOpensWithItOnly)
{
    const NBCryptor fresh =
        NBCryptor::withPassphrase("", {.kdfIterations = 10, .checkKey = false}).value();
    const std::string blob = fresh.writeKeyWithPassphrase("pässwörd ✓").value();
    const std::string salt = base64EncodedString(fresh.salt());
    const NBCryptorSettings settings = {
        .encodedKeyData = blob, .saltData = salt, .kdfIterations = 10};
    const NBCryptor opened = NBCryptor::withPassphrase("pässwörd ✓", settings).value();
    EXPECT_EQ(textOf(opened.key().data()), textOf(fresh.key().data()));
    EXPECT_FALSE(NBCryptor::withPassphrase("passwörd ✓", settings));
    EXPECT_FALSE(NBCryptor::withPassphrase("", settings));
}

TEST(NBCryptorConstructionTest, WithoutAKeyCheckAWrongPassphraseGoesUnnoticed)
{
    const NBCryptor fresh = NBCryptor::withKeySize({.kdfIterations = 1}).value();
    const std::string blob = fresh.writeKeyWithPassphrase("right").value();
    const std::string salt = base64EncodedString(fresh.salt());
    const auto opened = NBCryptor::withPassphrase(
        "wrong", {.encodedKeyData = blob, .saltData = salt, .kdfIterations = 1, .checkKey = false});
    ASSERT_TRUE(opened);
    EXPECT_NE(textOf(opened->key().data()), textOf(fresh.key().data()));
}

} // namespace nimbrel::test
