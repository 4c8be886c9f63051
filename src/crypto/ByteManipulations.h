// The in-place scramblings of the stream form's double pass. Their output is part of the on-disk
// format.
#pragma once

#include "crypto/Bytes.h"

namespace nimbrel {

// Reverses the bytes within each run of 64 bytes, the last run by itself. Its own inverse.
void flipBytes(ByteSpan bytes) noexcept;

// Makes each byte the XOR of itself and all bytes before it.
void shuffleBytes(ByteSpan bytes) noexcept;

// Undoes shuffleBytes.
void unshuffleBytes(ByteSpan bytes) noexcept;

} // namespace nimbrel
