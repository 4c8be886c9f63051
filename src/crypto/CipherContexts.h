// The prepared OpenSSL contexts of one key. Stays inside crypto/.
#pragma once

#include "crypto/Bytes.h"
#include "crypto/CHandle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include <openssl/evp.h>

namespace nimbrel {

inline constexpr std::size_t cipherBlock = 16; // bytes, of AES with every key size

using Vector = std::array<std::uint8_t, cipherBlock>;
using MacDigest = std::array<std::uint8_t, 20>; // SHA-1's

// One AES context, keyed once, that takes whole cipher blocks (no padding).
class CipherContext final
{
public:
    enum class Form
    {
        CbcEncryption,
        CbcDecryption,
        EcbEncryption
    };

    // Nothing when the library refuses, as it does for a key that isn't 16, 24 or 32 bytes long.
    [[nodiscard]] static std::optional<CipherContext> make(Form form, ByteView key);

    // A fresh CBC chain behind `vector`; whatever ran before is forgotten.
    [[nodiscard]] bool start(const Vector &vector);
    // Carries on where the last call ended. `out` has the length of `in`, a whole number of cipher
    // blocks, and is `in` itself or apart from it.
    [[nodiscard]] bool update(ByteView in, std::uint8_t *out);

private:
    using Handle = CHandle<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free>;

    explicit CipherContext(Handle handle) noexcept : _handle(std::move(handle)) {}

    Handle _handle;
};

// What all operations with one key share. They run one after the other: a chain that was started
// and left has no effect on the next one.
class CipherContexts final
{
public:
    // Nothing when the library refuses.
    [[nodiscard]] static std::unique_ptr<CipherContexts> forKey(ByteView key);

    CipherContext cbcEncryption;
    CipherContext cbcDecryption;
    CipherContext ecbEncryption;

    // HMAC-SHA1 over `first` followed by `second`.
    [[nodiscard]] std::optional<MacDigest> hmac(ByteView first, ByteView second = {});

private:
    using MacHandle = CHandle<EVP_MAC_CTX, EVP_MAC_CTX_free>;

    CipherContexts(CipherContext encryption, CipherContext decryption, CipherContext codebook,
                   MacHandle mac) noexcept;
    [[nodiscard]] static MacHandle makeMac(ByteView key);

    MacHandle _mac;
};

} // namespace nimbrel
