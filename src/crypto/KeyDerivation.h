// PBKDF2 with HMAC-SHA1 (RFC 8018). Stays inside crypto/.
#pragma once

#include "crypto/SecureBuffer.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace nimbrel {

// `length` bytes from a password of any bytes. Nothing when the library refuses, as it does for an
// iteration count below 1. The format counts iterations in 32 bits: higher ones are cut off.
[[nodiscard]] std::optional<SecureBuffer>
deriveKeyData(ByteView password, ByteView salt, std::int64_t iterations, std::size_t length);

} // namespace nimbrel
