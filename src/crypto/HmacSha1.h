// HMAC-SHA1 (RFC 2104). Stays inside crypto/.
#pragma once

#include "crypto/AesEngine.h"
#include "crypto/SecureBuffer.h"

#include <array>

namespace nimbrel {

using MacDigest = std::array<std::uint8_t, 20>; // SHA-1's

// The codes of one key. What the key does to a code is done once: a code of a short text then costs
// two rounds of SHA-1 and nothing else, a fraction of the library's own HMAC, whose start alone is
// dearer than they are. Not thread-safe.
class HmacSha1 final
{
public:
    static constexpr std::size_t longestKey = 64;

    // The key has at most longestKey bytes. Wide takes sixteen numbers at a time.
    explicit HmacSha1(ByteView key, EngineKind kind = fastestEngine());

    // Over `first` followed by `second`.
    [[nodiscard]] MacDigest digest(ByteView first, ByteView second = {}) noexcept;

    // The starts of the codes over `material` followed by a number of 8 bytes, low byte first: the
    // numbers are `first` and those behind it, which wrap at 64 bits.
    void numbered(ByteView material, std::uint64_t first, std::span<Vector> starts) noexcept;

private:
    struct States;

    [[nodiscard]] States &states() noexcept;

    bool _wide;
    SecureBuffer _memory; // the states are as good as the key: nowhere but here
};

} // namespace nimbrel
