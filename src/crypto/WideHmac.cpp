#include "crypto/WideHmac.h"

#if defined(__x86_64__)

#include <algorithm>
#include <cstring>

#include <immintrin.h>

#if !defined(__clang__)
// See WideKernels.cpp.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

// See ProcessorKernels.cpp.
#define NIMBREL_LANES __attribute__((target("avx512f")))
#define NIMBREL_LANES_INLINE __attribute__((always_inline, target("avx512f"))) inline

namespace nimbrel::wide {

namespace {

constexpr std::uint32_t endMark = 0x80000000;

// One word of SHA-1 of every lane.
using Lanes = __m512i;

NIMBREL_LANES_INLINE Lanes everywhere(std::uint32_t word)
{
    return _mm512_set1_epi32(static_cast<int>(word));
}

// Truth tables of FIPS 180-4's three functions.
enum class Mix : std::uint8_t
{
    Choose = 0xCA,
    Parity = 0x96,
    Majority = 0xE8
};

template <Mix Function>
NIMBREL_LANES_INLINE void sha1Step(Lanes (&state)[5], Lanes word, Lanes constant)
{
    const Lanes mixed =
        _mm512_ternarylogic_epi32(state[1], state[2], state[3], static_cast<int>(Function));
    const Lanes sum =
        _mm512_add_epi32(_mm512_add_epi32(state[4], word), _mm512_add_epi32(mixed, constant));
    state[4] = state[3];
    state[3] = state[2];
    state[2] = _mm512_rol_epi32(state[1], 30);
    state[1] = state[0];
    state[0] = _mm512_add_epi32(_mm512_rol_epi32(state[0], 5), sum);
}

// The word of step `step`, which takes the place of the one sixteen steps before.
NIMBREL_LANES_INLINE Lanes nextWord(Lanes (&words)[16], std::size_t step)
{
    const Lanes sum = _mm512_ternarylogic_epi32(words[(step + 13) % 16], words[(step + 8) % 16],
                                                words[(step + 2) % 16], 0x96);
    words[step % 16] = _mm512_rol_epi32(_mm512_xor_si512(sum, words[step % 16]), 1);
    return words[step % 16];
}

template <Mix Function>
NIMBREL_LANES_INLINE void twentySteps(Lanes (&state)[5], Lanes (&words)[16], std::size_t first,
                                      std::uint32_t constant)
{
    const Lanes added = everywhere(constant);
#pragma GCC unroll 20
    for (std::size_t step = first; step < first + 20; ++step)
        sha1Step<Function>(state, step < 16 ? words[step] : nextWord(words, step), added);
}

// One block of SHA-1 behind `start`.
NIMBREL_LANES void compress(const Sha1Words &start, const Lanes (&text)[16], Lanes (&result)[5])
{
    Lanes words[16]; // both fit in the registers, as the arguments' memory can't
    Lanes state[5];
#pragma GCC unroll 16
    for (std::size_t i = 0; i < 16; ++i)
        words[i] = text[i];
#pragma GCC unroll 5
    for (std::size_t i = 0; i < 5; ++i)
        state[i] = everywhere(start[i]);
    twentySteps<Mix::Choose>(state, words, 0, 0x5A827999);
    twentySteps<Mix::Parity>(state, words, 20, 0x6ED9EBA1);
    twentySteps<Mix::Majority>(state, words, 40, 0x8F1BBCDC);
    twentySteps<Mix::Parity>(state, words, 60, 0xCA62C1D6);
#pragma GCC unroll 5
    for (std::size_t i = 0; i < 5; ++i)
        result[i] = _mm512_add_epi32(state[i], everywhere(start[i]));
}

// The end of a text of `size` bytes behind one block; words before `end` are the text's.
NIMBREL_LANES_INLINE void finish(Lanes (&words)[16], std::size_t end, std::uint32_t size)
{
    words[end] = everywhere(endMark);
    for (std::size_t i = end + 1; i < 15; ++i)
        words[i] = _mm512_setzero_si512();
    words[15] = everywhere((64 + size) * 8);
}

using LaneWords = std::array<std::uint32_t, hmacLanes>;

std::uint32_t swapped(std::uint64_t word) noexcept
{
    return __builtin_bswap32(static_cast<std::uint32_t>(word));
}

NIMBREL_LANES_INLINE Lanes loaded(const LaneWords &words)
{
    return _mm512_loadu_si512(words.data());
}

NIMBREL_LANES_INLINE void setText(Lanes (&words)[16], ByteView material, std::uint64_t first)
{
    for (std::size_t i = 0; i < 4; ++i) {
        std::uint32_t word = 0;
        std::memcpy(&word, material.data() + 4 * i, sizeof word);
        words[i] = everywhere(swapped(word));
    }
    LaneWords low;
    LaneWords high;
    for (std::size_t lane = 0; lane < hmacLanes; ++lane) {
        low[lane] = swapped(first + lane);
        high[lane] = swapped((first + lane) >> 32U);
    }
    words[4] = loaded(low);
    words[5] = loaded(high);
    finish(words, 6, 24);
}

} // namespace

NIMBREL_LANES void numberedHmac(const HmacWords &keyed, ByteView material, std::uint64_t first,
                                std::span<Vector> starts) noexcept
{
    Lanes words[16];
    Lanes state[5];
    setText(words, material, first);
    compress(keyed.inner, words, state);
    std::copy(std::begin(state), std::end(state), std::begin(words));
    finish(words, 5, 20);
    compress(keyed.outer, words, state);
    std::array<LaneWords, 4> codes;
    for (std::size_t i = 0; i < codes.size(); ++i)
        _mm512_storeu_si512(codes[i].data(), state[i]);
    for (std::size_t lane = 0; lane < starts.size(); ++lane) {
        const std::array<std::uint32_t, 4> code = {swapped(codes[0][lane]), swapped(codes[1][lane]),
                                                   swapped(codes[2][lane]),
                                                   swapped(codes[3][lane])};
        std::memcpy(starts[lane].data(), code.data(), starts[lane].size());
    }
}

} // namespace nimbrel::wide

#endif
