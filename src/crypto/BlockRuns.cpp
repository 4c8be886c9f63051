#include "crypto/BlockRuns.h"

namespace nimbrel {

bool encryptBlocks(ByteView data, std::size_t blockSize, std::span<const Vector> vectors,
                   std::uint8_t *out, CipherContexts &contexts)
{
    return blockSize % cipherBlock == 0 &&
           contexts.aes().encryptBlocks(data, blockSize, vectors, out);
}

bool decryptBlocks(ByteView data, std::size_t blockSize, std::span<const Vector> vectors,
                   std::uint8_t *out, CipherContexts &contexts)
{
    return blockSize % cipherBlock == 0 &&
           contexts.aes().decryptBlocks(data, blockSize, vectors, out);
}

} // namespace nimbrel
