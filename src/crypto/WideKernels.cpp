// AES on registers of four cipher blocks (VAES with AVX-512). Instructions take the same time for
// all data.
#include "crypto/AesKernels.h"

#if defined(__x86_64__)

#include <algorithm>
#include <atomic>

#include <immintrin.h>

#if !defined(__clang__)
// The compiler's own header makes registers of no value from themselves.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

// See ProcessorKernels.cpp.
#define NIMBREL_WIDE __attribute__((target("aes,vaes,avx512f,avx512dq")))
#define NIMBREL_WIDE_INLINE                                                                        \
    __attribute__((always_inline, target("aes,vaes,avx512f,avx512dq"))) inline

namespace nimbrel::wide {

namespace {

constexpr std::size_t wordSize = 64; // bytes of a register
constexpr std::size_t wordBlocks = wordSize / cipherBlock;
constexpr std::size_t mostGroups = 4; // registers at a time: they hide an instruction's latency

NIMBREL_WIDE_INLINE __m512i everywhere(const std::uint8_t *block)
{
    return _mm512_broadcast_i32x4(_mm_loadu_si128(reinterpret_cast<const __m128i *>(block)));
}

// The first `size` bytes, whole cipher blocks, of a register's memory.
NIMBREL_WIDE_INLINE __mmask8 maskOf(std::size_t size)
{
    return static_cast<__mmask8>(size >= wordSize ? 0xFFU : (1U << size / 8) - 1);
}

template <std::size_t Rounds, std::size_t Groups>
NIMBREL_WIDE_INLINE void encryptWords(__m512i (&words)[Groups], const std::uint8_t *keys)
{
    // Keys come from their memory each time; kept over the steps they would end on the stack.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    const __m512i first = everywhere(keys);
#pragma GCC unroll 4
    for (std::size_t group = 0; group < Groups; ++group)
        words[group] = _mm512_xor_si512(words[group], first);
#pragma GCC unroll 16
    for (std::size_t round = 1; round < Rounds; ++round) {
        const __m512i key = everywhere(keys + round * cipherBlock);
#pragma GCC unroll 4
        for (std::size_t group = 0; group < Groups; ++group)
            words[group] = _mm512_aesenc_epi128(words[group], key);
    }
    const __m512i last = everywhere(keys + Rounds * cipherBlock);
#pragma GCC unroll 4
    for (std::size_t group = 0; group < Groups; ++group)
        words[group] = _mm512_aesenclast_epi128(words[group], last);
}

template <std::size_t Rounds, std::size_t Groups>
NIMBREL_WIDE_INLINE void decryptWords(__m512i (&words)[Groups], const std::uint8_t *keys)
{
    const __m512i first = everywhere(keys);
#pragma GCC unroll 4
    for (std::size_t group = 0; group < Groups; ++group)
        words[group] = _mm512_xor_si512(words[group], first);
#pragma GCC unroll 16
    for (std::size_t round = 1; round < Rounds; ++round) {
        const __m512i key = everywhere(keys + round * cipherBlock);
#pragma GCC unroll 4
        for (std::size_t group = 0; group < Groups; ++group)
            words[group] = _mm512_aesdec_epi128(words[group], key);
    }
    const __m512i last = everywhere(keys + Rounds * cipherBlock);
#pragma GCC unroll 4
    for (std::size_t group = 0; group < Groups; ++group)
        words[group] = _mm512_aesdeclast_epi128(words[group], last);
}

// Four registers as a square of cipher blocks: rows become columns.
NIMBREL_WIDE_INLINE void transpose(__m512i &a, __m512i &b, __m512i &c, __m512i &d)
{
    const __m512i lowAB = _mm512_shuffle_i64x2(a, b, 0x44);
    const __m512i highAB = _mm512_shuffle_i64x2(a, b, 0xEE);
    const __m512i lowCD = _mm512_shuffle_i64x2(c, d, 0x44);
    const __m512i highCD = _mm512_shuffle_i64x2(c, d, 0xEE);
    a = _mm512_shuffle_i64x2(lowAB, lowCD, 0x88);
    b = _mm512_shuffle_i64x2(lowAB, lowCD, 0xDD);
    c = _mm512_shuffle_i64x2(highAB, highCD, 0x88);
    d = _mm512_shuffle_i64x2(highAB, highCD, 0xDD);
}

// Chains side by side, one a block and four to a register. Lanes without a block of their own do
// the last block's work again.
template <std::size_t Groups>
struct Lanes
{
    static constexpr std::size_t count = Groups * wordBlocks;

    std::size_t start[count];
    __m512i chain[Groups];
};

template <std::size_t Groups>
NIMBREL_WIDE_INLINE Lanes<Groups> lanesOf(std::size_t blockSize, std::span<const Vector> vectors)
{
    Lanes<Groups> lanes;
    alignas(wordSize) std::array<Vector, Lanes<Groups>::count> first;
    for (std::size_t lane = 0; lane < lanes.count; ++lane) {
        const std::size_t block = std::min(lane, vectors.size() - 1);
        lanes.start[lane] = block * blockSize;
        first[lane] = vectors[block];
    }
    for (std::size_t group = 0; group < Groups; ++group)
        lanes.chain[group] = _mm512_loadu_si512(first[group * wordBlocks].data());
    return lanes;
}

// One register's memory of each lane: four steps of the chains. At a block's end fewer bytes may be
// left, and the steps behind them work on zeros for nothing.
template <std::size_t Rounds, std::size_t Groups>
NIMBREL_WIDE_INLINE void encryptRow(const AesSchedule &schedule, Lanes<Groups> &lanes,
                                    const std::uint8_t *data, std::uint8_t *out, __mmask8 mask)
{
    __m512i steps[wordBlocks][Groups];
#pragma GCC unroll 4
    for (std::size_t group = 0; group < Groups; ++group) {
#pragma GCC unroll 4
        for (std::size_t i = 0; i < wordBlocks; ++i)
            steps[i][group] =
                _mm512_maskz_loadu_epi64(mask, data + lanes.start[group * wordBlocks + i]);
        transpose(steps[0][group], steps[1][group], steps[2][group], steps[3][group]);
    }
#pragma GCC unroll 4
    for (std::size_t i = 0; i < wordBlocks; ++i) { // NOLINT(modernize-loop-convert): unrolled
#pragma GCC unroll 4
        for (std::size_t group = 0; group < Groups; ++group)
            lanes.chain[group] = _mm512_xor_si512(lanes.chain[group], steps[i][group]);
        encryptWords<Rounds>(lanes.chain, schedule.encryption.data());
#pragma GCC unroll 4
        for (std::size_t group = 0; group < Groups; ++group)
            steps[i][group] = lanes.chain[group];
    }
#pragma GCC unroll 4
    for (std::size_t group = 0; group < Groups; ++group) {
        transpose(steps[0][group], steps[1][group], steps[2][group], steps[3][group]);
#pragma GCC unroll 4
        for (std::size_t i = 0; i < wordBlocks; ++i)
            _mm512_mask_storeu_epi64(out + lanes.start[group * wordBlocks + i], mask,
                                     steps[i][group]);
    }
}

template <std::size_t Rounds, std::size_t Groups>
NIMBREL_WIDE void encryptLanes(const AesSchedule &schedule, const std::uint8_t *data,
                               std::size_t blockSize, std::span<const Vector> vectors,
                               std::uint8_t *out)
{
    Lanes<Groups> lanes = lanesOf<Groups>(blockSize, vectors);
    const std::size_t whole = blockSize / wordSize * wordSize;
    for (std::size_t at = 0; at < whole; at += wordSize)
        encryptRow<Rounds>(schedule, lanes, data + at, out + at, 0xFF);
    if (whole < blockSize)
        encryptRow<Rounds>(schedule, lanes, data + whole, out + whole, maskOf(blockSize - whole));
}

// The last cipher block of `before`, then all of `word` but its last one.
NIMBREL_WIDE_INLINE __m512i shifted(__m512i before, __m512i word)
{
    return _mm512_alignr_epi64(word, before, 6);
}

// One piece of a chain, at most Groups registers; `before` ends with the cipher block in front.
template <std::size_t Rounds, std::size_t Groups>
NIMBREL_WIDE_INLINE void decryptChain(const AesSchedule &schedule, const std::uint8_t *data,
                                      std::uint8_t *out, __m512i &before, __mmask8 mask)
{
    __m512i previous[Groups];
    __m512i words[Groups];
#pragma GCC unroll 4
    for (std::size_t group = 0; group < Groups; ++group) {
        words[group] = _mm512_maskz_loadu_epi64(mask, data + group * wordSize);
        previous[group] = shifted(before, words[group]);
        before = words[group];
    }
    decryptWords<Rounds>(words, schedule.decryption.data());
#pragma GCC unroll 4
    for (std::size_t group = 0; group < Groups; ++group)
        _mm512_mask_storeu_epi64(out + group * wordSize, mask,
                                 _mm512_xor_si512(words[group], previous[group]));
}

template <std::size_t Rounds>
NIMBREL_WIDE void decryptBlock(const AesSchedule &schedule, ByteView block, const Vector &vector,
                               std::uint8_t *out)
{
    constexpr std::size_t piece = mostGroups * wordSize;
    __m512i before = everywhere(vector.data());
    std::size_t at = 0;
    for (; at + piece <= block.size(); at += piece)
        decryptChain<Rounds, mostGroups>(schedule, block.data() + at, out + at, before, 0xFF);
    for (; at < block.size(); at += wordSize)
        decryptChain<Rounds, 1>(schedule, block.data() + at, out + at, before,
                                maskOf(block.size() - at));
}

// Pieces of four registers; gives how many bytes they were.
template <std::size_t Rounds>
NIMBREL_WIDE std::size_t decryptFeedbackPieces(const AesSchedule &schedule, ByteSpan data,
                                               Vector &vector)
{
    constexpr std::size_t piece = mostGroups * wordSize;
    __m512i before = everywhere(vector.data());
    std::size_t at = 0;
    for (; at + piece <= data.size(); at += piece) {
        __m512i cipher[mostGroups];
        __m512i words[mostGroups];
#pragma GCC unroll 4
        for (std::size_t group = 0; group < mostGroups; ++group) {
            cipher[group] = _mm512_loadu_si512(data.data() + at + group * wordSize);
            words[group] = shifted(before, cipher[group]);
            before = cipher[group];
        }
        encryptWords<Rounds>(words, schedule.encryption.data());
#pragma GCC unroll 4
        for (std::size_t group = 0; group < mostGroups; ++group)
            _mm512_storeu_si512(data.data() + at + group * wordSize,
                                _mm512_xor_si512(words[group], cipher[group]));
    }
    _mm_storeu_si128(reinterpret_cast<__m128i *>(vector.data()),
                     _mm512_extracti32x4_epi32(before, 3));
    return at;
}

template <std::size_t Rounds>
void encryptRun(const AesSchedule &schedule, const std::uint8_t *data, std::size_t blockSize,
                std::span<const Vector> vectors, std::uint8_t *out)
{
    if (vectors.size() <= wordBlocks)
        encryptLanes<Rounds, 1>(schedule, data, blockSize, vectors, out);
    else if (vectors.size() <= 2 * wordBlocks)
        encryptLanes<Rounds, 2>(schedule, data, blockSize, vectors, out);
    else if (vectors.size() <= 3 * wordBlocks)
        encryptLanes<Rounds, 3>(schedule, data, blockSize, vectors, out);
    else
        encryptLanes<Rounds, mostGroups>(schedule, data, blockSize, vectors, out);
}

} // namespace

void encryptBlocks(const AesSchedule &schedule, ByteView data, std::size_t blockSize,
                   std::span<const Vector> vectors, std::uint8_t *out)
{
    if (vectors.size() == 1)
        return processor::encryptBlocks(schedule, data, blockSize, vectors, out);
    withRounds(schedule.rounds, [&](auto rounds) {
        for (std::size_t block = 0; block < vectors.size();) {
            const std::size_t count = evenShare(vectors.size() - block, mostGroups * wordBlocks);
            encryptRun<rounds()>(schedule, data.data() + block * blockSize, blockSize,
                                 vectors.subspan(block, count), out + block * blockSize);
            block += count;
        }
    });
}

void decryptBlocks(const AesSchedule &schedule, ByteView data, std::size_t blockSize,
                   std::span<const Vector> vectors, std::uint8_t *out)
{
    withRounds(schedule.rounds, [&](auto rounds) {
        for (std::size_t block = 0; block < vectors.size(); ++block)
            decryptBlock<rounds()>(schedule, data.subspan(block * blockSize, blockSize),
                                   vectors[block], out + block * blockSize);
    });
}

void decryptFeedback(const AesSchedule &schedule, ByteSpan data, const Vector &vector)
{
    if (data.size() < mostGroups * wordSize)
        return processor::decryptFeedback(schedule, data, vector);
    withRounds(schedule.rounds, [&](auto rounds) {
        Vector next = vector;
        const std::size_t done = decryptFeedbackPieces<rounds()>(schedule, data, next);
        processor::decryptFeedback(schedule, data.subspan(done), next);
    });
}

} // namespace nimbrel::wide

#endif
