#include "crypto/TestKeys.h"

#include "crypto/Base64.h"
#include "support/Files.h"

namespace nimbrel::test {

namespace {

// The blob that holds `data` under an empty passphrase, made by hand: only opening one gives a key
// with chosen data.
std::string blobOf(ByteView data, std::int64_t keySize, ByteView salt)
{
    const NBEncryptionKey wrapping = NBEncryptionKey::withPassphrase("", keySize, salt, 1).value();
    const std::uint64_t checksum = NBCryptor::mac32(data, wrapping).value();
    Bytes wrapped(data.begin(), data.end());
    if (!NBCryptor::streamCrypt(wrapped, checksum, wrapping, CryptMode::Encrypt))
        return {};
    Bytes blob;
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        blob.push_back(static_cast<std::uint8_t>(checksum >> shift));
    blob.insert(blob.end(), wrapped.begin(), wrapped.end());
    return base64EncodedString(blob);
}

std::int64_t keySizeOf(ByteView data)
{
    return static_cast<std::int64_t>(data.size() - 16) * 8;
}

} // namespace

NBEncryptionKey keyWithData(ByteView data)
{
    const Bytes salt = noiseBytes(20);
    const std::int64_t keySize = keySizeOf(data);
    return NBEncryptionKey::withPassphrase("", blobOf(data, keySize, salt), salt, keySize, 1, true)
        .value();
}

NBCryptor cryptorWithData(ByteView data, std::int64_t blockSize)
{
    const Bytes salt = noiseBytes(20);
    const std::int64_t keySize = keySizeOf(data);
    const std::string blob = blobOf(data, keySize, salt);
    const std::string saltText = base64EncodedString(salt);
    return NBCryptor::withPassphrase("", {.encodedKeyData = blob,
                                          .keySize = keySize,
                                          .blockSize = blockSize,
                                          .saltData = saltText,
                                          .kdfIterations = 1})
        .value();
}

Bytes noiseKeyData(std::int64_t keySize, std::uint64_t seed)
{
    return noiseBytes(static_cast<std::size_t>(keySize / 8 + 16), seed);
}

Bytes noiseBytes(std::size_t size, std::uint64_t seed)
{
    const std::string text = noise(size, seed);
    return {text.begin(), text.end()};
}

} // namespace nimbrel::test
