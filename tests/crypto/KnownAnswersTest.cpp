// The answers of tests/data/vectors.json, which were made independently of this code.
#include "crypto/Base64.h"
#include "crypto/ByteManipulations.h"
#include "crypto/NBCryptor.h"
#include "crypto/StoredName.h"
#include "crypto/TestKeys.h"
#include "support/Files.h"

#include <gtest/gtest.h>

#include <functional>

#include <nlohmann/json.hpp>
#include <openssl/evp.h>

namespace nimbrel::test {

namespace {

using Json = nlohmann::json;

const Json &vectors()
{
    static const Json json = Json::parse(readFile(dataFile("vectors.json")));
    return json;
}

std::string text(const Json &entry, const char *field)
{
    return entry.at(field).get<std::string>();
}

Bytes bytes(const Json &entry, const char *field)
{
    return fromHex(text(entry, field));
}

std::uint64_t number(const Json &entry, const char *field)
{
    return entry.at(field).get<std::uint64_t>();
}

using ForKey = std::function<void(const Json &answers, const NBEncryptionKey &key)>;

// Every key size has at least one answer: an empty list would test nothing.
void forEachKey(const char *list, const ForKey &check)
{
    ASSERT_EQ(vectors().at("keys").size(), 3U);
    for (const Json &entry : vectors().at("keys")) {
        const NBEncryptionKey key = keyWithData(bytes(entry, "key_data"));
        SCOPED_TRACE(testing::Message() << entry.at("bits") << " bits");
        ASSERT_EQ(key.keySize() * 8, number(entry, "bits"));
        ASSERT_FALSE(entry.at(list).empty());
        check(entry.at(list), key);
    }
}

std::string sha256(ByteView data)
{
    Bytes digest(32);
    EXPECT_EQ(EVP_Digest(data.data(), data.size(), digest.data(), nullptr, EVP_sha256(), nullptr),
              1);
    return toHex(digest);
}

// 4096 bytes: the SHA-256 digests of "b4096:0", "b4096:1" and so on, joined.
Bytes chainPattern()
{
    Bytes pattern;
    for (int i = 0; pattern.size() < 4096; ++i) {
        const Bytes digest = fromHex(sha256(bytesOf("b4096:" + std::to_string(i))));
        pattern.insert(pattern.end(), digest.begin(), digest.end());
    }
    return pattern;
}

template <class Form>
void expectBothWays(const Json &answer, const NBEncryptionKey &key, Form form)
{
    const Bytes plain = bytes(answer, "plain");
    Bytes data = plain;
    ASSERT_TRUE(form(data, number(answer, "seed"), key, CryptMode::Encrypt));
    EXPECT_EQ(toHex(data), text(answer, "cipher"));
    ASSERT_TRUE(form(data, number(answer, "seed"), key, CryptMode::Decrypt));
    EXPECT_EQ(data, plain);
}

} // namespace

TEST(KnownAnswersTest, Alphabet)
{
    Bytes values;
    for (std::uint8_t value = 0; value < 64; ++value)
        values.push_back(value);
    EXPECT_EQ(base64EncodedASCIIString(values), text(vectors().at("codings"), "alphabet"));
}

TEST(KnownAnswersTest, Regrouping)
{
    for (const Json &answer : vectors().at("codings").at("regroup_8_6"))
        EXPECT_EQ(toHex(changeBase2(bytes(answer, "in"), 8, 6, true)), text(answer, "out"));
    for (const Json &answer : vectors().at("codings").at("regroup_6_8"))
        EXPECT_EQ(toHex(changeBase2(bytes(answer, "in"), 6, 8, false)), text(answer, "out"));
}

TEST(KnownAnswersTest, Flipping)
{
    for (const Json &answer : vectors().at("codings").at("flip")) {
        Bytes data = bytes(answer, "in");
        flipBytes(data);
        EXPECT_EQ(toHex(data), text(answer, "out"));
        flipBytes(data);
        EXPECT_EQ(toHex(data), text(answer, "in"));
    }
}

TEST(KnownAnswersTest, Shuffling)
{
    for (const Json &answer : vectors().at("codings").at("shuffle")) {
        Bytes data = bytes(answer, "in");
        shuffleBytes(data);
        EXPECT_EQ(toHex(data), text(answer, "out"));
        unshuffleBytes(data);
        EXPECT_EQ(toHex(data), text(answer, "in"));
    }
}

TEST(KnownAnswersTest, Vectors)
{
    forEachKey("iv", [](const Json &answers, const NBEncryptionKey &key) {
        for (const Json &answer : answers)
            EXPECT_EQ(toHex(NBCryptor::getIv(number(answer, "seed"), key).value()),
                      text(answer, "iv"));
    });
}

TEST(KnownAnswersTest, AuthenticationCodes)
{
    forEachKey("mac", [](const Json &answers, const NBEncryptionKey &key) {
        for (const Json &answer : answers) {
            const Bytes data = bytes(answer, "in");
            EXPECT_EQ(NBCryptor::mac64(data, key), number(answer, "mac64"));
            EXPECT_EQ(NBCryptor::mac32(data, key), number(answer, "mac32"));
            EXPECT_EQ(NBCryptor::mac16(data, key), number(answer, "mac16"));
        }
    });
}

TEST(KnownAnswersTest, BlockForm)
{
    forEachKey("block", [](const Json &answers, const NBEncryptionKey &key) {
        for (const Json &answer : answers)
            expectBothWays(answer, key, NBCryptor::blockCrypt);
    });
}

TEST(KnownAnswersTest, BlocksOfTheUsualSize)
{
    const Bytes plain = chainPattern();
    forEachKey("block_4096", [&plain](const Json &answers, const NBEncryptionKey &key) {
        const NBCryptor cryptor = cryptorWithData(key.data(), 4096);
        for (const Json &answer : answers) {
            ASSERT_EQ(sha256(plain), text(answer, "plain_sha256"));
            const std::uint64_t seed = number(answer, "seed");
            Bytes data(plain.size());
            ASSERT_TRUE(cryptor.encryptRun(plain, seed, data));
            EXPECT_EQ(sha256(data), text(answer, "cipher_sha256"));
            ASSERT_TRUE(cryptor.decryptRun(data, seed, data));
            EXPECT_EQ(data, plain);
        }
    });
}

TEST(KnownAnswersTest, StreamForm)
{
    forEachKey("stream", [](const Json &answers, const NBEncryptionKey &key) {
        for (const Json &answer : answers)
            expectBothWays(answer, key, NBCryptor::streamCrypt);
    });
}

TEST(KnownAnswersTest, Names)
{
    forEachKey("names", [](const Json &answers, const NBEncryptionKey &key) {
        const NBCryptor cryptor = cryptorWithData(key.data(), 4096);
        for (const Json &answer : answers) {
            EXPECT_EQ(cryptor.encodeString(text(answer, "plain")), text(answer, "stored"));
            EXPECT_EQ(cryptor.decodeString(text(answer, "stored")), text(answer, "plain"));
            EXPECT_TRUE(isCanonicalStoredName(text(answer, "stored")));
        }
    });
}

TEST(KnownAnswersTest, KeyBlobs)
{
    forEachKey("blob", [](const Json &answers, const NBEncryptionKey &key) {
        for (const Json &answer : answers) {
            const std::string passphrase = text(answer, "passphrase");
            const Bytes salt = dataWithBase64String(text(answer, "salt_base64"));
            const auto iterations = answer.at("iterations").get<std::int64_t>();
            const auto keySize = static_cast<std::int64_t>(key.keySize()) * 8;
            const std::string blob = text(answer, "encoded_key_base64");
            const auto wrapping =
                NBEncryptionKey::withPassphrase(passphrase, keySize, salt, iterations);
            EXPECT_EQ(toHex(wrapping.value().data()), text(answer, "passphrase_key_data"));
            EXPECT_EQ(key.write(passphrase, salt, iterations), blob);
            const auto opened =
                NBEncryptionKey::withPassphrase(passphrase, blob, salt, keySize, iterations, true);
            EXPECT_EQ(toHex(opened.value().data()), toHex(key.data()));
        }
    });
}

} // namespace nimbrel::test
