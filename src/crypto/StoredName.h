#pragma once

#include "crypto/Bytes.h"

#include <string_view>

namespace nimbrel {

// True when `stored` is what an encoder writes: at least 3 characters, all of the file-name
// alphabet, with no bits set in the last character that no name byte fills. Two stored names that
// differ only in such bits would decode to one plain name, and only the one that the encoder writes
// can be opened by it.
[[nodiscard]] bool isCanonicalStoredName(std::string_view stored) noexcept;

// Three bytes make four characters, low bits first; left over bits make one more character, and
// are dropped when read. The same as changeBase2 and the alphabet give, without a buffer between.
[[nodiscard]] constexpr std::size_t storedNameLength(std::size_t bytes) noexcept
{
    return (bytes * 4 + 2) / 3;
}
[[nodiscard]] constexpr std::size_t storedNameBytes(std::size_t characters) noexcept
{
    return characters * 3 / 4;
}

// Writes storedNameLength characters. `bytes` may be the end of that very text.
void writeStoredName(ByteView bytes, char *stored) noexcept;
// `bytes` has storedNameBytes; a character outside the alphabet gives some value.
void readStoredName(std::string_view stored, ByteSpan bytes) noexcept;

} // namespace nimbrel
