#pragma once

#include "crypto/NBCryptor.h"

namespace nimbrel::bench {

// A cryptor with a fresh 256-bit key and the usual block size.
[[nodiscard]] NBCryptor usualCryptor();

inline constexpr std::size_t blockSize = 4096;

} // namespace nimbrel::bench
