#include "crypto/KeyDerivation.h"

#include <limits>

#include <openssl/evp.h>

namespace nimbrel {

namespace {

bool fitsInt(std::size_t size)
{
    return size <= static_cast<std::size_t>(std::numeric_limits<int>::max());
}

} // namespace

std::optional<SecureBuffer> deriveKeyData(ByteView password, ByteView salt, std::int64_t iterations,
                                          std::size_t length)
{
    const auto count = static_cast<std::int32_t>(iterations);
    if (count < 1 || !fitsInt(password.size()) || !fitsInt(salt.size()) || !fitsInt(length))
        return std::nullopt;
    SecureBuffer derived(length);
    const int done = PKCS5_PBKDF2_HMAC(reinterpret_cast<const char *>(password.data()),
                                       static_cast<int>(password.size()), salt.data(),
                                       static_cast<int>(salt.size()), count, EVP_sha1(),
                                       static_cast<int>(length), derived.bytes().data());
    if (done != 1)
        return std::nullopt;
    return derived;
}

} // namespace nimbrel
