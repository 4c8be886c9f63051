// What all operations with one key share. Stays inside crypto/.
#pragma once

#include "crypto/AesEngine.h"
#include "crypto/HmacSha1.h"

namespace nimbrel {

// Prepared once a key; used from one thread at a time.
class CipherContexts final
{
public:
    // Nothing where AesEngine::make gives nothing.
    [[nodiscard]] static std::unique_ptr<CipherContexts> forKey(ByteView key,
                                                                EngineKind kind = fastestEngine());

    [[nodiscard]] AesEngine &aes() noexcept { return *_aes; }
    [[nodiscard]] HmacSha1 &hmac() noexcept { return _hmac; }

private:
    CipherContexts(std::unique_ptr<AesEngine> aes, ByteView key, EngineKind kind);

    std::unique_ptr<AesEngine> _aes;
    HmacSha1 _hmac;
};

} // namespace nimbrel
