#include "crypto/NBEncryptionKey.h"

#include "crypto/Base64.h"
#include "crypto/NBCryptor.h"
#include "crypto/TestKeys.h"
#include "support/Files.h"

#include <gtest/gtest.h>

#include <array>

namespace nimbrel::test {

namespace {

using namespace std::string_view_literals;

struct Rfc6070Case
{
    std::string_view password;
    std::string_view salt;
    std::int64_t iterations;
    std::string_view derived; // hex
};

// The one with 16,777,216 iterations is left out: it takes many seconds.
constexpr std::array<Rfc6070Case, 5> rfc6070 = {
    {{"password", "salt", 1, "0c60c80f961f0e71f3a9b524af6012062fe037a6"},
     {"password", "salt", 2, "ea6c014dc72d6f8ccd1ed92ace1d41f0d8de8957"},
     {"password", "salt", 4096, "4b007901b765489abead49d926f721d065a429c1"},
     {"passwordPASSWORDpassword", "saltSALTsaltSALTsaltSALTsaltSALTsalt", 4096,
      "3d2eec4fe41c849b80c8d83662c0e44a8b291a964cf2f07038"},
     {"pass\0word"sv, "sa\0lt"sv, 4096, "56fa6aa75548099dcc37d7f03425e0c3"}}};

const Bytes salt = noiseBytes(20, 77);

std::string dataOf(const NBEncryptionKey &key)
{
    return toHex(key.data());
}

std::optional<NBEncryptionKey> opened(std::string_view passphrase, std::string_view blob,
                                      std::int64_t keySize = 256, bool checkKey = true)
{
    return NBEncryptionKey::withPassphrase(passphrase, blob, salt, keySize, 10, checkKey);
}

NBEncryptionKey freshKey(std::int64_t keySize = 256)
{
    return NBEncryptionKey::randomWithKeySize(keySize, 1).value();
}

std::string written(const NBEncryptionKey &key, std::string_view passphrase)
{
    return key.write(passphrase, salt, 10).value();
}

std::string withFlippedBit(const std::string &blob, std::size_t byte, unsigned bit)
{
    Bytes bytes = dataWithBase64String(blob);
    bytes.at(byte) = static_cast<std::uint8_t>(bytes.at(byte) ^ 1U << bit);
    return base64EncodedString(bytes);
}

} // namespace

TEST(NBEncryptionKeyTest, DerivesTheVectorsOfRfc6070)
{
    for (const Rfc6070Case &rfc : rfc6070) {
        const NBEncryptionKey key =
            NBEncryptionKey::withPassphrase(rfc.password, 256, bytesOf(rfc.salt), rfc.iterations)
                .value();
        EXPECT_EQ(dataOf(key).substr(0, rfc.derived.size()), rfc.derived);
    }
}

TEST(NBEncryptionKeyTest, TheKeyDataIsTheKeyAndSixteenBytesOfVectorMaterial)
{
    for (const std::int64_t keySize : {128, 192, 256}) {
        const NBEncryptionKey key = freshKey(keySize);
        EXPECT_EQ(key.keySize(), static_cast<std::size_t>(keySize / 8));
        EXPECT_EQ(key.ivLength(), 16U);
        EXPECT_EQ(key.data().size(), key.keySize() + 16);
        EXPECT_EQ(key.ivData().data(), key.data().data() + key.keySize());
        EXPECT_EQ(key.ivData().size(), 16U);
    }
}

TEST(NBEncryptionKeyTest, TwoHundredAndFiftySixBitsAreThreeBlocksOfTheDerivation)
{
    const NBEncryptionKey key = NBEncryptionKey::withPassphrase("nimbrel", 256, salt, 5000).value();
    EXPECT_EQ(key.data().size(), 48U);
    EXPECT_EQ(dataOf(NBEncryptionKey::withPassphrase("nimbrel", 128, salt, 5000).value()),
              dataOf(key).substr(0, 64));
}

TEST(NBEncryptionKeyTest, ThePassphraseIsItsBytesInAnyNormalisation)
{
    const auto key = [](std::string_view passphrase) {
        return dataOf(NBEncryptionKey::withPassphrase(passphrase, 256, salt, 10).value());
    };
    EXPECT_EQ(key("p\xC3\xA4ss"), key("päss"));
    EXPECT_NE(key("p\xC3\xA4ss"), key("pa\xCC\x88ss"));
}

TEST(NBEncryptionKeyTest, AnEmptyPassphraseAndSaltDeriveAKey)
{
    const auto key = NBEncryptionKey::withPassphrase("", 256, {}, 10);
    ASSERT_TRUE(key);
    EXPECT_NE(dataOf(*key), dataOf(NBEncryptionKey::withPassphrase(" ", 256, {}, 10).value()));
}

TEST(NBEncryptionKeyTest, IterationsBelowOneDeriveNoKey)
{
    for (const std::int64_t iterations : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-5000}}) {
        EXPECT_FALSE(NBEncryptionKey::withPassphrase("p", 256, salt, iterations));
        EXPECT_FALSE(NBEncryptionKey::randomWithKeySize(256, iterations));
        EXPECT_FALSE(freshKey().write("p", salt, iterations));
        EXPECT_FALSE(NBEncryptionKey::withPassphrase("p", written(freshKey(), "p"), salt, 256,
                                                     iterations, false));
    }
}

TEST(NBEncryptionKeyTest, IterationsCountInThirtyTwoBits)
{
    const auto key = [](std::int64_t iterations) {
        return NBEncryptionKey::withPassphrase("p", 256, salt, iterations);
    };
    constexpr std::int64_t beyond = std::int64_t{1} << 32U;
    EXPECT_EQ(dataOf(key(beyond + 7).value()), dataOf(key(7).value()));
    EXPECT_FALSE(key(beyond));
}

TEST(NBEncryptionKeyTest, SizesThatNoCipherHasGiveNoKey)
{
    for (const std::int64_t keySize :
         {std::int64_t{0}, std::int64_t{-256}, std::int64_t{8}, std::int64_t{64}, std::int64_t{129},
          std::int64_t{160}, std::int64_t{255}, std::int64_t{512}, std::int64_t{1} << 40U}) {
        EXPECT_FALSE(NBEncryptionKey::withPassphrase("p", keySize, salt, 1)) << keySize;
        EXPECT_FALSE(NBEncryptionKey::randomWithKeySize(keySize, 1)) << keySize;
        EXPECT_FALSE(opened("p", written(freshKey(), "p"), keySize, false)) << keySize;
    }
}

TEST(NBEncryptionKeyTest, ABlobHasTheLengthOfItsKeySize)
{
    const std::array<std::pair<std::int64_t, std::size_t>, 3> lengths = {
        {{128, 48}, {192, 60}, {256, 72}}};
    for (const auto &[keySize, characters] : lengths)
        EXPECT_EQ(written(freshKey(keySize), "p").size(), characters);
}

TEST(NBEncryptionKeyTest, WritingAndOpeningGivesTheSameKeyForEverySize)
{
    for (const std::int64_t keySize : {128, 192, 256}) {
        const NBEncryptionKey key = freshKey(keySize);
        EXPECT_EQ(dataOf(opened("p", written(key, "p"), keySize).value()), dataOf(key));
    }
}

TEST(NBEncryptionKeyTest, WritingTwiceGivesTheSameBlob)
{
    const NBEncryptionKey key = freshKey();
    const std::string before = dataOf(key);
    EXPECT_EQ(written(key, "p"), written(key, "p"));
    EXPECT_NE(written(key, "p"), written(key, "q"));
    EXPECT_EQ(dataOf(key), before);
}

TEST(NBEncryptionKeyTest, AWrongPassphraseDoesNotOpenACheckedKey)
{
    const std::string blob = written(freshKey(), "right");
    EXPECT_TRUE(opened("right", blob));
    EXPECT_FALSE(opened("wrong", blob));
}

TEST(NBEncryptionKeyTest, AWrongSaltOrCountDoesNotOpenACheckedKey)
{
    const std::string blob = written(freshKey(), "p");
    EXPECT_FALSE(NBEncryptionKey::withPassphrase("p", blob, noiseBytes(20), 256, 10, true));
    EXPECT_FALSE(NBEncryptionKey::withPassphrase("p", blob, salt, 256, 11, true));
}

TEST(NBEncryptionKeyTest, AChangedBodyOpensWithoutTheCheckOnly)
{
    const NBEncryptionKey key = freshKey();
    const std::string blob = written(key, "p");
    for (const std::size_t byte : {4U, 20U, 51U}) {
        const std::string changed = withFlippedBit(blob, byte, 0);
        EXPECT_FALSE(opened("p", changed)) << byte;
        const auto unchecked = opened("p", changed, 256, false);
        ASSERT_TRUE(unchecked) << byte;
        EXPECT_NE(dataOf(*unchecked), dataOf(key)) << byte;
    }
}

TEST(NBEncryptionKeyTest, AFlippedChecksumBitChangesVectorAndComparison)
{
    const NBEncryptionKey key = freshKey();
    const std::string blob = written(key, "p");
    for (std::size_t byte = 0; byte < 4; ++byte) {
        const std::string changed = withFlippedBit(blob, byte, 3);
        EXPECT_FALSE(opened("p", changed)) << byte;
        EXPECT_NE(dataOf(opened("p", changed, 256, false).value()), dataOf(key)) << byte;
    }
}

TEST(NBEncryptionKeyTest, ATooShortBlobIsNoKey)
{
    const Bytes whole = dataWithBase64String(written(freshKey(), "p"));
    for (const std::size_t size : {0U, 3U, 4U, 5U, 36U, 51U}) {
        const std::string blob = base64EncodedString(ByteView(whole).first(size));
        EXPECT_FALSE(opened("p", blob, 256, true)) << size;
        EXPECT_FALSE(opened("p", blob, 256, false)) << size;
    }
    EXPECT_FALSE(opened("p", "this isn't base64!", 256, false));
}

TEST(NBEncryptionKeyTest, RandomKeysDiffer)
{
    EXPECT_NE(dataOf(freshKey()), dataOf(freshKey()));
}

TEST(NBEncryptionKeyTest, KeepsItsDataWhenItMoves)
{
    NBEncryptionKey key = keyWithData(noiseKeyData(192));
    const std::string before = dataOf(key);
    const NBEncryptionKey moved = std::move(key);
    EXPECT_EQ(dataOf(moved), before);
    EXPECT_TRUE(NBCryptor::mac64(bytesOf("x"), moved));
}

} // namespace nimbrel::test
