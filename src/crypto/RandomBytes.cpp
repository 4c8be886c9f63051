#include "crypto/RandomBytes.h"

#include <limits>

#include <openssl/rand.h>

namespace nimbrel {

std::optional<SecureBuffer> dataWithRandomBytesAndLength(std::size_t length)
{
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return std::nullopt;
    SecureBuffer buffer(length);
    if (length > 0 && RAND_bytes(buffer.bytes().data(), static_cast<int>(length)) != 1)
        return std::nullopt;
    return buffer;
}

} // namespace nimbrel
