#include "crypto/NBEncryptionKey.h"

#include "crypto/Base64.h"
#include "crypto/CipherContexts.h"
#include "crypto/KeyDerivation.h"
#include "crypto/NBCryptor.h"
#include "crypto/RandomBytes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nimbrel {

namespace {

constexpr std::size_t checksumSize = 4;
constexpr std::size_t randomPasswordSize = 32;
constexpr std::size_t randomSaltSize = 20;

// The format knows three sizes, and takes any other for 256; that one only goes with a key as long
// as its cipher needs.
std::optional<std::size_t> keyBytes(std::int64_t bits)
{
    const std::int64_t bytes = bits / 8;
    if (bits == 128 || bits == 192 || bytes == 32)
        return static_cast<std::size_t>(bytes);
    return std::nullopt;
}

std::uint64_t readChecksum(ByteView bytes)
{
    std::uint64_t checksum = 0;
    for (const std::uint8_t byte : bytes.first(checksumSize))
        checksum = checksum << 8U | byte;
    return checksum;
}

void appendChecksum(Bytes &blob, std::uint64_t checksum)
{
    for (unsigned shift = checksumSize * 8; shift > 0; shift -= 8)
        blob.push_back(static_cast<std::uint8_t>(checksum >> (shift - 8)));
}

} // namespace

NBEncryptionKey::NBEncryptionKey(std::size_t keySize, SecureBuffer data,
                                 std::unique_ptr<CipherContexts> contexts) noexcept
    : _keySize(keySize), _ivLength(data.size() - keySize), _data(std::move(data)),
      _contexts(std::move(contexts))
{
}

NBEncryptionKey::~NBEncryptionKey() = default;
NBEncryptionKey::NBEncryptionKey(NBEncryptionKey &&) noexcept = default;
NBEncryptionKey &NBEncryptionKey::operator=(NBEncryptionKey &&) noexcept = default;

std::optional<NBEncryptionKey> NBEncryptionKey::withData(std::size_t keySize, SecureBuffer data)
{
    std::unique_ptr<CipherContexts> contexts =
        CipherContexts::forKey(std::as_const(data).bytes().first(keySize));
    if (!contexts)
        return std::nullopt;
    return NBEncryptionKey(keySize, std::move(data), std::move(contexts));
}

std::optional<NBEncryptionKey> NBEncryptionKey::derived(ByteView password, std::int64_t keySize,
                                                        ByteView salt, std::int64_t kdfIterations)
{
    const std::optional<std::size_t> size = keyBytes(keySize);
    if (!size)
        return std::nullopt;
    std::optional<SecureBuffer> data =
        deriveKeyData(password, salt, kdfIterations, *size + cipherBlock);
    if (!data)
        return std::nullopt;
    return withData(*size, std::move(*data));
}

std::optional<NBEncryptionKey> NBEncryptionKey::withPassphrase(std::string_view passphrase,
                                                               std::int64_t keySize, ByteView salt,
                                                               std::int64_t kdfIterations)
{
    return derived(bytesOf(passphrase), keySize, salt, kdfIterations);
}

std::optional<NBEncryptionKey> NBEncryptionKey::withPassphrase(std::string_view passphrase,
                                                               std::string_view encodedKeyData,
                                                               ByteView salt, std::int64_t keySize,
                                                               std::int64_t kdfIterations,
                                                               bool checkKey)
{
    const std::optional<std::size_t> size = keyBytes(keySize);
    const Bytes blob = dataWithBase64String(encodedKeyData);
    if (!size || blob.size() < checksumSize + *size + cipherBlock)
        return std::nullopt;
    const std::optional<NBEncryptionKey> wrapping =
        withPassphrase(passphrase, keySize, salt, kdfIterations);
    if (!wrapping)
        return std::nullopt;
    const std::uint64_t checksum = readChecksum(blob);
    SecureBuffer data =
        SecureBuffer::copyOf(ByteView(blob).subspan(checksumSize, *size + cipherBlock));
    if (!NBCryptor::streamCrypt(data.bytes(), checksum, *wrapping, CryptMode::Decrypt))
        return std::nullopt;
    if (checkKey && NBCryptor::mac32(data.bytes(), *wrapping) != checksum)
        return std::nullopt;
    return withData(*size, std::move(data));
}

std::optional<NBEncryptionKey> NBEncryptionKey::randomWithKeySize(std::int64_t keySize,
                                                                  std::int64_t kdfIterations)
{
    const std::optional<SecureBuffer> password = dataWithRandomBytesAndLength(randomPasswordSize);
    const std::optional<SecureBuffer> salt = dataWithRandomBytesAndLength(randomSaltSize);
    if (!password || !salt)
        return std::nullopt;
    return derived(password->bytes(), keySize, salt->bytes(), kdfIterations);
}

std::optional<NBEncryptionKey> NBEncryptionKey::copy() const
{
    return withData(_keySize, SecureBuffer::copyOf(data()));
}

std::optional<std::string> NBEncryptionKey::write(std::string_view passphrase, ByteView salt,
                                                  std::int64_t kdfIterations) const
{
    const std::optional<NBEncryptionKey> wrapping =
        withPassphrase(passphrase, static_cast<std::int64_t>(_keySize) * 8, salt, kdfIterations);
    if (!wrapping)
        return std::nullopt;
    const std::optional<std::uint64_t> checksum = NBCryptor::mac32(data(), *wrapping);
    SecureBuffer wrapped = SecureBuffer::copyOf(data());
    if (!checksum ||
        !NBCryptor::streamCrypt(wrapped.bytes(), *checksum, *wrapping, CryptMode::Encrypt))
        return std::nullopt;
    Bytes blob;
    appendChecksum(blob, *checksum);
    blob.insert(blob.end(), wrapped.bytes().begin(), wrapped.bytes().end());
    return base64EncodedString(blob);
}

} // namespace nimbrel
