// Many short codes at once. Stays inside crypto/.
#pragma once

#include "crypto/AesEngine.h"

namespace nimbrel {

using Sha1Words = std::array<std::uint32_t, 5>;

// What a key makes of SHA-1's start, as good as the key itself.
struct HmacWords
{
    Sha1Words inner;
    Sha1Words outer;
};

#if defined(__x86_64__)
namespace wide {

inline constexpr std::size_t hmacLanes = 16;

// HmacSha1::numbered for 16 bytes of material and at most hmacLanes numbers, one a lane of a
// register (AVX-512).
void numberedHmac(const HmacWords &words, ByteView material, std::uint64_t first,
                  std::span<Vector> starts) noexcept;

} // namespace wide
#endif

} // namespace nimbrel
