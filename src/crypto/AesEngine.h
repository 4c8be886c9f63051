// What enciphers with one AES key. Stays inside crypto/.
#pragma once

#include "crypto/Bytes.h"
#include "crypto/EngineKind.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace nimbrel {

inline constexpr std::size_t cipherBlock = 16; // bytes, of AES with every key size

using Vector = std::array<std::uint8_t, cipherBlock>;

// Not thread-safe. The round keys lie in memory that is wiped when the engine goes.
class AesEngine
{
public:
    // Nothing for a key that isn't 16, 24 or 32 bytes long, when the library refuses, and when the
    // processor can't do it.
    [[nodiscard]] static std::unique_ptr<AesEngine> make(ByteView key,
                                                         EngineKind kind = fastestEngine());

    AesEngine() = default;
    virtual ~AesEngine() = default;
    AesEngine(const AesEngine &) = delete;
    AesEngine &operator=(const AesEngine &) = delete;

    // CBC, each block a chain of its own behind its vector. `data` and `out` have `blockSize` bytes
    // for each vector, a whole number of cipher blocks, and are the same memory or apart. False
    // when the library fails, with `out` undefined.
    [[nodiscard]] virtual bool encryptBlocks(ByteView data, std::size_t blockSize,
                                             std::span<const Vector> vectors,
                                             std::uint8_t *out) = 0;
    [[nodiscard]] virtual bool decryptBlocks(ByteView data, std::size_t blockSize,
                                             std::span<const Vector> vectors,
                                             std::uint8_t *out) = 0;

    // CFB over 128 bits (NIST SP 800-38A), in place, any length.
    [[nodiscard]] virtual bool encryptFeedback(ByteSpan data, const Vector &vector) = 0;
    [[nodiscard]] virtual bool decryptFeedback(ByteSpan data, const Vector &vector) = 0;
};

} // namespace nimbrel
