// The double pass of short pieces and names. Stays inside crypto/.
#pragma once

#include "crypto/CipherContexts.h"

namespace nimbrel {

struct StreamVectors
{
    Vector ofSeed;
    Vector ofNextSeed; // of the seed plus 1, which wraps at 64 bits
};

// In place, any length, the empty one too. False on failure, with `data` half processed.
[[nodiscard]] bool encryptStream(ByteSpan data, const StreamVectors &vectors,
                                 CipherContexts &contexts);
[[nodiscard]] bool decryptStream(ByteSpan data, const StreamVectors &vectors,
                                 CipherContexts &contexts);

} // namespace nimbrel
