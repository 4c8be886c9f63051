// Many whole blocks in one go. Stays inside crypto/.
#pragma once

#include "crypto/CipherContexts.h"

#include <span>

namespace nimbrel {

// `vectors` has one vector for each block of `blockSize` bytes; `data` and `out` have that many
// blocks and are the same memory or apart. CBC, each block a chain of its own.
// False on failure, as with a block size that isn't a whole number of cipher blocks.
[[nodiscard]] bool encryptBlocks(ByteView data, std::size_t blockSize,
                                 std::span<const Vector> vectors, std::uint8_t *out,
                                 CipherContexts &contexts);
[[nodiscard]] bool decryptBlocks(ByteView data, std::size_t blockSize,
                                 std::span<const Vector> vectors, std::uint8_t *out,
                                 CipherContexts &contexts);

} // namespace nimbrel
