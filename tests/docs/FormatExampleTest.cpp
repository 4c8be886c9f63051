// The worked example of docs/FORMAT.md, enciphered by the product.
#include "crypto/Base64.h"
#include "crypto/NBCryptor.h"
#include "support/Files.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

// Under the empty passphrase and one iteration the wrapped key is as good as plain: this gives a
// cryptor with the example's volume key.
NBCryptor exampleCryptor()
{
    const Bytes keyData = fromHex("eb3828a69bedec5e11cd9d74d7a3821ce6e1881e0c5bd67c5241702d53a2758a"
                                  "cff79270712484827f7eec6abdd0f342");
    const Bytes salt(20, 7);
    auto passphraseKey = NBEncryptionKey::withPassphrase("example", 256, salt, 1);
    const std::uint64_t checksum = NBCryptor::mac32(keyData, passphraseKey.value()).value();
    Bytes wrapped = keyData;
    EXPECT_TRUE(NBCryptor::streamCrypt(wrapped, checksum, *passphraseKey, CryptMode::Encrypt));
    Bytes blob{static_cast<std::uint8_t>(checksum >> 24U),
               static_cast<std::uint8_t>(checksum >> 16U),
               static_cast<std::uint8_t>(checksum >> 8U), static_cast<std::uint8_t>(checksum)};
    blob.insert(blob.end(), wrapped.begin(), wrapped.end());
    const std::string encodedKey = base64EncodedString(blob);
    const std::string encodedSalt = base64EncodedString(salt);
    return NBCryptor::withPassphrase(
               "example",
               {.encodedKeyData = encodedKey, .saltData = encodedSalt, .kdfIterations = 1})
        .value();
}

Bytes pattern(std::size_t size)
{
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>(i % 251);
    return bytes;
}

bool documentHolds(const std::string &text)
{
    const std::string path = std::string(NIMBREL_SOURCE_FOLDER) + "/docs/FORMAT.md";
    return readFile(path).find(text) != std::string::npos;
}

} // namespace

TEST(FormatExampleTest, AFileOfOneByteIsThatOfTheDocument)
{
    const auto stored = exampleCryptor().encrypt(bytesOf("N"));
    EXPECT_EQ(toHex(stored.value()), "d1");
    EXPECT_TRUE(documentHolds("\nd1\n"));
}

TEST(FormatExampleTest, AFileOfFiveThousandBytesIsThatOfTheDocument)
{
    const Bytes stored = exampleCryptor().encrypt(pattern(5000)).value();
    ASSERT_EQ(stored.size(), 5000U);
    for (const std::size_t offset : {0U, 4080U, 4096U, 4984U})
        EXPECT_TRUE(documentHolds("offset " + std::to_string(offset)) &&
                    documentHolds(toHex(ByteView(stored).subspan(offset, 16))))
            << offset;
}

TEST(FormatExampleTest, TheNameIsThatOfTheDocument)
{
    const std::string stored = exampleCryptor().encodeString("Reports").value();
    EXPECT_TRUE(documentHolds("\n" + stored + "\n"));
}

TEST(FormatExampleTest, AnEmptyFileStaysEmpty)
{
    EXPECT_TRUE(exampleCryptor().encrypt({}).value().empty());
}

} // namespace nimbrel::test
