#pragma once

#include "crypto/SecureBuffer.h"

#include <cstddef>
#include <optional>

namespace nimbrel {

// dataWithRandomBytesAndLength:
// `length` bytes of OpenSSL's generator; nothing when the generator fails, never zeros.
[[nodiscard]] std::optional<SecureBuffer> dataWithRandomBytesAndLength(std::size_t length);

} // namespace nimbrel
