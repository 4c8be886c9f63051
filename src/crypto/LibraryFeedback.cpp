#include "crypto/LibraryFeedback.h"

#include <algorithm>
#include <cstring>

#include <openssl/crypto.h>

namespace nimbrel {

namespace {

constexpr std::size_t pieceSize = 512;

void xorInto(std::uint8_t *data, const std::uint8_t *mask, std::size_t size) noexcept
{
    for (std::size_t i = 0; i < size; ++i)
        data[i] = static_cast<std::uint8_t>(data[i] ^ mask[i]);
}

} // namespace

bool libraryFeedback(ByteSpan data, const Vector &vector, CipherContext &engine)
{
    // The keystream of the next cipher block, then that of the blocks behind it.
    alignas(cipherBlock) std::array<std::uint8_t, cipherBlock + pieceSize> keystream;
    bool good = engine.update(vector, keystream.data());
    while (good && data.size() >= cipherBlock) {
        const std::size_t size = std::min(pieceSize, data.size() / cipherBlock * cipherBlock);
        good = engine.update(data.first(size), keystream.data() + cipherBlock);
        xorInto(data.data(), keystream.data(), size);
        std::memcpy(keystream.data(), keystream.data() + size, cipherBlock);
        data = data.subspan(size);
    }
    if (good)
        xorInto(data.data(), keystream.data(), data.size());
    OPENSSL_cleanse(keystream.data(), keystream.size());
    return good;
}

} // namespace nimbrel
