// OpenSSL's AES. Stays inside crypto/.
#pragma once

#include "crypto/AesEngine.h"
#include "crypto/CHandle.h"

#include <optional>
#include <utility>

#include <openssl/evp.h>

namespace nimbrel {

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

} // namespace nimbrel
