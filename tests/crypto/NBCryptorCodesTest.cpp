#include "crypto/NBCryptor.h"
#include "crypto/Reference.h"
#include "crypto/TestKeys.h"
#include "support/Files.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace nimbrel::test {

namespace {

struct Rfc2202Case
{
    std::size_t keySize; // bytes, of our key
    std::string key;     // hex
    std::string data;    // hex
    std::string_view digest;
};

std::string repeated(std::string_view hex, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += hex;
    return text;
}

// HMAC fills a short key up with zero bytes, so that a key of ours, filled up likewise, is the
// RFC's key of 4, 20 or 25 bytes. Its last cases have keys that are longer than ours can be.
std::array<Rfc2202Case, 5> rfc2202()
{
    return {
        {{24, repeated("0b", 20), toHex(bytesOf("Hi There")),
          "b617318655057264e28bc0b6fb378c8ef146be00"},
         {16, toHex(bytesOf("Jefe")), toHex(bytesOf("what do ya want for nothing?")),
          "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79"},
         {24, repeated("aa", 20), repeated("dd", 50), "125d7342b9ac11cd91a39af48aa17b4f63f175d3"},
         {32, "0102030405060708090a0b0c0d0e0f10111213141516171819", repeated("cd", 50),
          "4c9007f4026250c6bc8414f9bf50c86c2d7235da"},
         {24, repeated("0c", 20), toHex(bytesOf("Test With Truncation")),
          "4c1a03424b55e07fe7f27be1d58bb9324a9a5a04"}}};
}

NBEncryptionKey keyOf(const Rfc2202Case &rfc)
{
    Bytes data = fromHex(rfc.key);
    data.resize(rfc.keySize);
    data.resize(rfc.keySize + 16, 0x55); // the vector material takes no part
    return keyWithData(data);
}

} // namespace

TEST(NBCryptorCodesTest, TheLongCodeIsTheFoldOfTheDigestsOfRfc2202)
{
    for (const Rfc2202Case &rfc : rfc2202())
        EXPECT_EQ(NBCryptor::mac64(fromHex(rfc.data), keyOf(rfc)),
                  reference::fold64(fromHex(rfc.digest)))
            << rfc.digest;
}

TEST(NBCryptorCodesTest, TheFoldLeavesTheLastByteOfTheDigestOut)
{
    // b617318655057264 ^ e28bc0b6fb378c8e ^ f146be: done by hand.
    const Rfc2202Case rfc = rfc2202()[0];
    EXPECT_EQ(NBCryptor::mac64(fromHex(rfc.data), keyOf(rfc)), 0xA5DA4F30AE32FEEAU);
}

TEST(NBCryptorCodesTest, ShorterCodesFoldTheLongOne)
{
    const NBEncryptionKey key = keyWithData(noiseKeyData(256));
    for (std::size_t size = 0; size < 100; ++size) {
        const Bytes data = noiseBytes(size, size);
        const std::uint64_t code = NBCryptor::mac64(data, key).value();
        const std::uint64_t half = (code >> 32U) ^ (code & 0xFFFFFFFFU);
        EXPECT_EQ(NBCryptor::mac32(data, key), half);
        EXPECT_EQ(NBCryptor::mac16(data, key), (half >> 16U) ^ (half & 0xFFFFU));
    }
}

TEST(NBCryptorCodesTest, TheSameNameHasTheSameCodeOnEveryCall)
{
    const NBEncryptionKey key = keyWithData(noiseKeyData(256));
    const auto code = NBCryptor::mac16(bytesOf("Reports"), key);
    for (int i = 0; i < 10; ++i) {
        (void)NBCryptor::mac16(bytesOf("something else"), key);
        EXPECT_EQ(NBCryptor::mac16(bytesOf("Reports"), key), code);
    }
    EXPECT_EQ(NBCryptor::mac16(bytesOf("Reports"), keyWithData(noiseKeyData(256))), code);
}

TEST(NBCryptorCodesTest, VectorsAreTheReference)
{
    for (const std::int64_t keySize : {128, 192, 256}) {
        const reference::Key key{noiseKeyData(keySize)};
        const NBEncryptionKey ours = keyWithData(key.data);
        for (const std::uint64_t seed : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{0x0102},
                                         std::numeric_limits<std::uint64_t>::max()}) {
            const NBCryptor::Vector vector = NBCryptor::getIv(seed, ours).value();
            EXPECT_EQ(Bytes(vector.begin(), vector.end()), reference::vectorOf(seed, key));
        }
    }
}

} // namespace nimbrel::test
