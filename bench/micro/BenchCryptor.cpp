#include "micro/BenchCryptor.h"

namespace nimbrel::bench {

NBCryptor usualCryptor()
{
    return NBCryptor::withKeySize({.blockSize = blockSize, .kdfIterations = 1}).value();
}

} // namespace nimbrel::bench
