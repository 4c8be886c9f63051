// AES on registers of one cipher block (AES-NI). Instructions take the same time for all data.
#include "crypto/AesKernels.h"

#if defined(__x86_64__)

#include <algorithm>
#include <cstring>

#include <immintrin.h>

// The instructions are asked for function by function: the rest of the program, and the standard
// library's templates in this file, have to run on any processor.
#define NIMBREL_AES __attribute__((target("aes,sse4.1")))
#define NIMBREL_AES_INLINE __attribute__((always_inline, target("aes,sse4.1"))) inline

namespace nimbrel::processor {

namespace {

constexpr std::size_t mostLanes = 8;

NIMBREL_AES_INLINE __m128i load(const std::uint8_t *bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes));
}

NIMBREL_AES_INLINE void store(std::uint8_t *bytes, __m128i word)
{
    _mm_storeu_si128(reinterpret_cast<__m128i *>(bytes), word);
}

// A last, incomplete cipher block, filled up with zeros.
NIMBREL_AES_INLINE __m128i loadPart(const std::uint8_t *bytes, std::size_t size)
{
    alignas(cipherBlock) std::array<std::uint8_t, cipherBlock> part{};
    std::memcpy(part.data(), bytes, size);
    return load(part.data());
}

NIMBREL_AES_INLINE void storePart(std::uint8_t *bytes, __m128i word, std::size_t size)
{
    alignas(cipherBlock) std::array<std::uint8_t, cipherBlock> part;
    store(part.data(), word);
    std::memcpy(bytes, part.data(), size);
}

template <std::size_t Rounds, std::size_t Lanes>
NIMBREL_AES_INLINE void encryptWords(__m128i (&words)[Lanes], const std::uint8_t *keys)
{
    const __m128i first = load(keys);
#pragma GCC unroll 8
    for (std::size_t lane = 0; lane < Lanes; ++lane)
        words[lane] = _mm_xor_si128(words[lane], first);
#pragma GCC unroll 16
    for (std::size_t round = 1; round < Rounds; ++round) {
        const __m128i key = load(keys + round * cipherBlock);
#pragma GCC unroll 8
        for (std::size_t lane = 0; lane < Lanes; ++lane)
            words[lane] = _mm_aesenc_si128(words[lane], key);
    }
    const __m128i last = load(keys + Rounds * cipherBlock);
#pragma GCC unroll 8
    for (std::size_t lane = 0; lane < Lanes; ++lane)
        words[lane] = _mm_aesenclast_si128(words[lane], last);
}

template <std::size_t Rounds, std::size_t Lanes>
NIMBREL_AES_INLINE void decryptWords(__m128i (&words)[Lanes], const std::uint8_t *keys)
{
    const __m128i first = load(keys);
#pragma GCC unroll 8
    for (std::size_t lane = 0; lane < Lanes; ++lane)
        words[lane] = _mm_xor_si128(words[lane], first);
#pragma GCC unroll 16
    for (std::size_t round = 1; round < Rounds; ++round) {
        const __m128i key = load(keys + round * cipherBlock);
#pragma GCC unroll 8
        for (std::size_t lane = 0; lane < Lanes; ++lane)
            words[lane] = _mm_aesdec_si128(words[lane], key);
    }
    const __m128i last = load(keys + Rounds * cipherBlock);
#pragma GCC unroll 8
    for (std::size_t lane = 0; lane < Lanes; ++lane)
        words[lane] = _mm_aesdeclast_si128(words[lane], last);
}

// Chains side by side, one a block: a chain is serial, and the processor has room for more. Lanes
// without a block of their own do the last block's work again.
template <std::size_t Rounds, std::size_t Lanes>
NIMBREL_AES void encryptLanes(const AesSchedule &schedule, const std::uint8_t *data,
                              std::size_t blockSize, std::span<const Vector> vectors,
                              std::uint8_t *out)
{
    __m128i chain[Lanes];
    std::size_t start[Lanes];
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
        const std::size_t block = std::min(lane, vectors.size() - 1);
        start[lane] = block * blockSize;
        chain[lane] = load(vectors[block].data());
    }
    for (std::size_t at = 0; at < blockSize; at += cipherBlock) {
#pragma GCC unroll 8
        for (std::size_t lane = 0; lane < Lanes; ++lane)
            chain[lane] = _mm_xor_si128(chain[lane], load(data + start[lane] + at));
        encryptWords<Rounds>(chain, schedule.encryption.data());
#pragma GCC unroll 8
        for (std::size_t lane = 0; lane < Lanes; ++lane)
            store(out + start[lane] + at, chain[lane]);
    }
}

// One piece of a chain; gives the cipher block that the next piece is chained to.
template <std::size_t Rounds, std::size_t Count>
NIMBREL_AES_INLINE __m128i decryptChain(const AesSchedule &schedule, const std::uint8_t *data,
                                        __m128i before, std::uint8_t *out)
{
    __m128i cipher[Count];
    __m128i words[Count];
#pragma GCC unroll 8
    for (std::size_t i = 0; i < Count; ++i)
        words[i] = cipher[i] = load(data + i * cipherBlock);
    decryptWords<Rounds>(words, schedule.decryption.data());
#pragma GCC unroll 8
    for (std::size_t i = 0; i < Count; ++i) {
        store(out + i * cipherBlock, _mm_xor_si128(words[i], before));
        before = cipher[i];
    }
    return before;
}

template <std::size_t Rounds>
NIMBREL_AES void decryptBlock(const AesSchedule &schedule, ByteView block, const Vector &vector,
                              std::uint8_t *out)
{
    constexpr std::size_t piece = mostLanes * cipherBlock;
    __m128i before = load(vector.data());
    std::size_t at = 0;
    for (; at + piece <= block.size(); at += piece)
        before = decryptChain<Rounds, mostLanes>(schedule, block.data() + at, before, out + at);
    for (; at < block.size(); at += cipherBlock)
        before = decryptChain<Rounds, 1>(schedule, block.data() + at, before, out + at);
}

// A serial chain, one cipher block after the other: all that can be done before a cipher block's
// turn is. `word` is what the chain came to, XOR the first key; the last key takes the plain text
// and that first key along, so that the chain is AES rounds and nothing else.
template <std::size_t Rounds>
NIMBREL_AES_INLINE __m128i feedbackStep(__m128i word, __m128i plain, const std::uint8_t *keys)
{
    const __m128i last =
        _mm_xor_si128(_mm_xor_si128(plain, load(keys)), load(keys + Rounds * cipherBlock));
#pragma GCC unroll 16
    for (std::size_t round = 1; round < Rounds; ++round)
        word = _mm_aesenc_si128(word, load(keys + round * cipherBlock));
    return _mm_aesenclast_si128(word, last);
}

template <std::size_t Rounds>
NIMBREL_AES void encryptFeedbackBytes(const AesSchedule &schedule, ByteSpan data,
                                      const Vector &vector)
{
    const std::uint8_t *keys = schedule.encryption.data();
    const __m128i first = load(keys);
    __m128i word = _mm_xor_si128(load(vector.data()), first);
    std::uint8_t *bytes = data.data();
    std::size_t left = data.size();
    for (; left >= cipherBlock; left -= cipherBlock, bytes += cipherBlock) {
        word = feedbackStep<Rounds>(word, load(bytes), keys);
        store(bytes, _mm_xor_si128(word, first));
    }
    if (left > 0) {
        word = feedbackStep<Rounds>(word, loadPart(bytes, left), keys);
        storePart(bytes, _mm_xor_si128(word, first), left);
    }
}

// `size` is above Count - 1 cipher blocks and at most Count of them.
template <std::size_t Rounds, std::size_t Count>
NIMBREL_AES_INLINE __m128i decryptFeedbackPiece(const AesSchedule &schedule, std::uint8_t *bytes,
                                                std::size_t size, __m128i before)
{
    constexpr std::size_t end = Count - 1;
    __m128i cipher[Count];
    __m128i words[Count] = {before};
#pragma GCC unroll 8
    for (std::size_t i = 0; i < end; ++i)
        words[i + 1] = cipher[i] = load(bytes + i * cipherBlock);
    const std::size_t lastSize = size - end * cipherBlock;
    std::uint8_t *lastBytes = bytes + end * cipherBlock;
    cipher[end] = lastSize == cipherBlock ? load(lastBytes) : loadPart(lastBytes, lastSize);
    encryptWords<Rounds>(words, schedule.encryption.data());
#pragma GCC unroll 8
    for (std::size_t i = 0; i < end; ++i)
        store(bytes + i * cipherBlock, _mm_xor_si128(words[i], cipher[i]));
    const __m128i last = _mm_xor_si128(words[end], cipher[end]);
    if (lastSize == cipherBlock)
        store(lastBytes, last);
    else
        storePart(lastBytes, last, lastSize);
    return cipher[end];
}

// All cipher text is there, so that the keystream of many cipher blocks is made at once.
template <std::size_t Rounds>
NIMBREL_AES void decryptFeedbackBytes(const AesSchedule &schedule, ByteSpan data,
                                      const Vector &vector)
{
    __m128i before = load(vector.data());
    std::uint8_t *bytes = data.data();
    std::size_t left = data.size();
    const auto advance = [&](std::size_t size) {
        bytes += size;
        left -= size;
    };
    for (; left >= 8 * cipherBlock; advance(8 * cipherBlock))
        before = decryptFeedbackPiece<Rounds, 8>(schedule, bytes, 8 * cipherBlock, before);
    if (left >= 4 * cipherBlock) {
        before = decryptFeedbackPiece<Rounds, 4>(schedule, bytes, 4 * cipherBlock, before);
        advance(4 * cipherBlock);
    }
    if (left > 3 * cipherBlock)
        decryptFeedbackPiece<Rounds, 4>(schedule, bytes, left, before);
    else if (left > 2 * cipherBlock)
        decryptFeedbackPiece<Rounds, 3>(schedule, bytes, left, before);
    else if (left > cipherBlock)
        decryptFeedbackPiece<Rounds, 2>(schedule, bytes, left, before);
    else if (left > 0)
        decryptFeedbackPiece<Rounds, 1>(schedule, bytes, left, before);
}

template <std::size_t Rounds>
void encryptRun(const AesSchedule &schedule, const std::uint8_t *data, std::size_t blockSize,
                std::span<const Vector> vectors, std::uint8_t *out)
{
    if (vectors.size() == 1)
        encryptLanes<Rounds, 1>(schedule, data, blockSize, vectors, out);
    else if (vectors.size() == 2)
        encryptLanes<Rounds, 2>(schedule, data, blockSize, vectors, out);
    else if (vectors.size() <= 4)
        encryptLanes<Rounds, 4>(schedule, data, blockSize, vectors, out);
    else
        encryptLanes<Rounds, 8>(schedule, data, blockSize, vectors, out);
}

// What each word of a schedule takes from the one before it: the S-box of its bytes, in the low
// half as they stand and in the high half rotated.
NIMBREL_AES std::uint64_t substituted(std::uint32_t word)
{
    const __m128i words = _mm_set1_epi32(static_cast<int>(word));
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_aeskeygenassist_si128(words, 0)));
}

NIMBREL_AES void invertKeys(AesSchedule &schedule)
{
    for (std::size_t i = 0; i <= schedule.rounds; ++i) {
        const std::size_t mirrored = schedule.rounds - i;
        const __m128i key = load(schedule.encryption.data() + mirrored * cipherBlock);
        const bool atEnd = i == 0 || i == schedule.rounds;
        store(schedule.decryption.data() + i * cipherBlock, atEnd ? key : _mm_aesimc_si128(key));
    }
}

} // namespace

// FIPS 197, 5.2; words lie in memory as their bytes follow.
void expandKey(ByteView key, AesSchedule &schedule)
{
    const std::size_t keyWords = key.size() / 4;
    schedule.rounds = keyWords + 6;
    std::uint8_t *bytes = schedule.encryption.data();
    std::memcpy(bytes, key.data(), key.size());
    std::uint32_t constant = 1;
    for (std::size_t i = keyWords; i < 4 * (schedule.rounds + 1); ++i) {
        std::uint32_t word = 0;
        std::uint32_t before = 0;
        std::memcpy(&before, bytes + (i - 1) * 4, 4);
        std::memcpy(&word, bytes + (i - keyWords) * 4, 4);
        if (i % keyWords == 0) {
            word ^= static_cast<std::uint32_t>(substituted(before) >> 32U) ^ constant;
            constant = constant < 0x80 ? constant << 1U : 0x1B;
        } else if (keyWords > 6 && i % keyWords == 4) {
            word ^= static_cast<std::uint32_t>(substituted(before));
        } else {
            word ^= before;
        }
        std::memcpy(bytes + i * 4, &word, 4);
    }
    invertKeys(schedule);
}

void encryptBlocks(const AesSchedule &schedule, ByteView data, std::size_t blockSize,
                   std::span<const Vector> vectors, std::uint8_t *out)
{
    withRounds(schedule.rounds, [&](auto rounds) {
        for (std::size_t block = 0; block < vectors.size();) {
            const std::size_t count = evenShare(vectors.size() - block, mostLanes);
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

void encryptFeedback(const AesSchedule &schedule, ByteSpan data, const Vector &vector)
{
    withRounds(schedule.rounds,
               [&](auto rounds) { encryptFeedbackBytes<rounds()>(schedule, data, vector); });
}

void decryptFeedback(const AesSchedule &schedule, ByteSpan data, const Vector &vector)
{
    withRounds(schedule.rounds,
               [&](auto rounds) { decryptFeedbackBytes<rounds()>(schedule, data, vector); });
}

} // namespace nimbrel::processor

#endif
