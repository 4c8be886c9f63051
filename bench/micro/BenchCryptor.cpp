#include "micro/BenchCryptor.h"

namespace nimbrel::bench {

NBCryptor usualCryptor()
{
    return NBCryptor::withKeySize({.blockSize = blockSize, .kdfIterations = 1}).value();
}

PageBytes::PageBytes(std::size_t size) : _memory(size + blockSize, 0x5A)
{
    const std::size_t past = reinterpret_cast<std::uintptr_t>(_memory.data()) % blockSize;
    _bytes = ByteSpan(_memory).subspan(blockSize - past, size);
}

} // namespace nimbrel::bench
