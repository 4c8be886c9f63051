#include "crypto/CipherContexts.h"

#include <utility>

namespace nimbrel {

CipherContexts::CipherContexts(std::unique_ptr<AesEngine> aes, ByteView key, EngineKind kind)
    : _aes(std::move(aes)), _hmac(key, kind)
{
}

std::unique_ptr<CipherContexts> CipherContexts::forKey(ByteView key, EngineKind kind)
{
    std::unique_ptr<AesEngine> aes = AesEngine::make(key, kind);
    if (!aes)
        return nullptr;
    return std::unique_ptr<CipherContexts>(new CipherContexts(std::move(aes), key, kind));
}

} // namespace nimbrel
