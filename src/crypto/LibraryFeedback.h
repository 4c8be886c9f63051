// Stays inside crypto/.
#pragma once

#include "crypto/CipherContext.h"

namespace nimbrel {

// CFB over 128 bits, in place, any length, on an engine that is started with a vector of zeros (CBC
// encryption, to encrypt) or that is a codebook (to decrypt). Its keystream is the cipher of the
// vector, then of each block of cipher text. Reading, all cipher text is there: a codebook engine
// takes many blocks at once. Writing, cipher text is plain text XOR keystream, so that the
// keystream is a CBC chain over the vector and the plain text. In both cases the engine is fed with
// the data as it stands before the pass. Reading is so about four times as fast as the library's
// own CFB, writing a little faster.
[[nodiscard]] bool libraryFeedback(ByteSpan data, const Vector &vector, CipherContext &engine);

} // namespace nimbrel
