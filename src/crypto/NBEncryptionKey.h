// One AES key with its vector material, and the blob that wraps it under a passphrase.
#pragma once

#include "crypto/SecureBuffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

class CipherContexts; // what its operations share; stays inside crypto/

// A folder's volume key, or the short-lived key that a passphrase gives. Sizes in arguments are in
// bits, keySize() is in bytes. Not thread-safe: its contexts are shared by all operations.
class NBEncryptionKey final
{
public:
    // initWithPassphrase:keySize:salt:kdfIterations:
    // The passphrase key: PBKDF2 with HMAC-SHA1 (RFC 8018) over the passphrase's bytes. Nothing
    // when the derivation fails (an iteration count below 1, for instance).
    [[nodiscard]] static std::optional<NBEncryptionKey> withPassphrase(std::string_view passphrase,
                                                                       std::int64_t keySize,
                                                                       ByteView salt,
                                                                       std::int64_t kdfIterations);

    // initWithPassphrase:encodedKeyData:salt:keySize:kdfIterations:checkKey:
    // Opens a blob (base64). Nothing when `checkKey` is true and the checksum doesn't match, when
    // the blob is too short, or when the derivation fails.
    [[nodiscard]] static std::optional<NBEncryptionKey>
    withPassphrase(std::string_view passphrase, std::string_view encodedKeyData, ByteView salt,
                   std::int64_t keySize, std::int64_t kdfIterations, bool checkKey);

    // initRandomWithKeySize:kdfIterations:
    // A new key. Nothing when the random generator or the derivation fails.
    [[nodiscard]] static std::optional<NBEncryptionKey>
    randomWithKeySize(std::int64_t keySize, std::int64_t kdfIterations);

    ~NBEncryptionKey();
    NBEncryptionKey(NBEncryptionKey &&) noexcept;
    NBEncryptionKey &operator=(NBEncryptionKey &&) noexcept;
    NBEncryptionKey(const NBEncryptionKey &) = delete;
    NBEncryptionKey &operator=(const NBEncryptionKey &) = delete;

    // The same key with contexts of its own, for another thread. Nothing when the library refuses.
    [[nodiscard]] std::optional<NBEncryptionKey> copy() const;

    // write:salt:kdfIterations:
    // The blob (base64) that wraps this key under `passphrase`. No randomness enters it: equal
    // arguments give an equal blob. Nothing when the derivation fails.
    [[nodiscard]] std::optional<std::string> write(std::string_view passphrase, ByteView salt,
                                                   std::int64_t kdfIterations) const;

    [[nodiscard]] std::size_t keySize() const noexcept { return _keySize; }   // bytes
    [[nodiscard]] std::size_t ivLength() const noexcept { return _ivLength; } // bytes, 16
    [[nodiscard]] ByteView data() const noexcept { return _data.bytes(); }    // key, then vector
    [[nodiscard]] ByteView ivData() const noexcept { return data().subspan(_keySize); }
    [[nodiscard]] CipherContexts &contexts() const noexcept { return *_contexts; }

private:
    NBEncryptionKey(std::size_t keySize, SecureBuffer data,
                    std::unique_ptr<CipherContexts> contexts) noexcept;
    // initContextsWithData:
    // `keySize` in bytes. Nothing when the library refuses.
    [[nodiscard]] static std::optional<NBEncryptionKey> withData(std::size_t keySize,
                                                                 SecureBuffer data);
    // From a password of any bytes.
    [[nodiscard]] static std::optional<NBEncryptionKey>
    derived(ByteView password, std::int64_t keySize, ByteView salt, std::int64_t kdfIterations);

    std::size_t _keySize;
    std::size_t _ivLength;
    SecureBuffer _data;
    std::unique_ptr<CipherContexts> _contexts;
};

} // namespace nimbrel
