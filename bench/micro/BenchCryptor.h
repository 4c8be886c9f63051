#pragma once

#include "crypto/NBCryptor.h"

namespace nimbrel::bench {

// A cryptor with a fresh 256-bit key and the usual block size.
[[nodiscard]] NBCryptor usualCryptor();

inline constexpr std::size_t blockSize = 4096;

// Memory that begins with a page, as the system's own buffers do.
class PageBytes final
{
public:
    explicit PageBytes(std::size_t size);

    [[nodiscard]] ByteSpan bytes() noexcept { return _bytes; }

private:
    Bytes _memory;
    ByteSpan _bytes;
};

} // namespace nimbrel::bench
