// Keys and cryptors with chosen key data.
#pragma once

#include "crypto/NBCryptor.h"

#include <cstdint>
#include <string>

namespace nimbrel::test {

// `data`: 16, 24 or 32 key bytes, then 16 bytes of vector material.
[[nodiscard]] NBEncryptionKey keyWithData(ByteView data);
[[nodiscard]] NBCryptor cryptorWithData(ByteView data, std::int64_t blockSize);

// Key data of this size in bits that follows from `seed` alone.
[[nodiscard]] Bytes noiseKeyData(std::int64_t keySize, std::uint64_t seed = 1);
[[nodiscard]] Bytes noiseBytes(std::size_t size, std::uint64_t seed = 1);

} // namespace nimbrel::test
