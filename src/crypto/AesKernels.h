// The loops that run on the processor's AES instructions. Stays inside crypto/.
#pragma once

#include "crypto/AesEngine.h"

#include <type_traits>

namespace nimbrel {

// The round keys of one key, in the order in which each direction takes them.
struct AesSchedule
{
    static constexpr std::size_t mostKeys = 15;
    using Keys = std::array<std::uint8_t, mostKeys * cipherBlock>;

    Keys encryption;
    Keys decryption;
    std::size_t rounds; // 10, 12 or 14; one key more
};

// Sizes and memory are AesEngine's.
struct AesKernels
{
    using Blocks = void (*)(const AesSchedule &schedule, ByteView data, std::size_t blockSize,
                            std::span<const Vector> vectors, std::uint8_t *out);
    using Feedback = void (*)(const AesSchedule &schedule, ByteSpan data, const Vector &vector);

    void (*expandKey)(ByteView key, AesSchedule &schedule);
    Blocks encryptBlocks;
    Blocks decryptBlocks;
    Feedback encryptFeedback;
    Feedback decryptFeedback;
};

// Nothing when this processor lacks the instructions, and for the library's kind.
[[nodiscard]] const AesKernels *aesKernels(EngineKind kind) noexcept;

#if defined(__x86_64__)
namespace processor {

void expandKey(ByteView key, AesSchedule &schedule);
void encryptBlocks(const AesSchedule &schedule, ByteView data, std::size_t blockSize,
                   std::span<const Vector> vectors, std::uint8_t *out);
void decryptBlocks(const AesSchedule &schedule, ByteView data, std::size_t blockSize,
                   std::span<const Vector> vectors, std::uint8_t *out);
void encryptFeedback(const AesSchedule &schedule, ByteSpan data, const Vector &vector);
void decryptFeedback(const AesSchedule &schedule, ByteSpan data, const Vector &vector);

} // namespace processor

namespace wide {

void encryptBlocks(const AesSchedule &schedule, ByteView data, std::size_t blockSize,
                   std::span<const Vector> vectors, std::uint8_t *out);
void decryptBlocks(const AesSchedule &schedule, ByteView data, std::size_t blockSize,
                   std::span<const Vector> vectors, std::uint8_t *out);
void decryptFeedback(const AesSchedule &schedule, ByteSpan data, const Vector &vector);

} // namespace wide
#endif

// Calls `form` with the schedule's number of rounds as a constant: the loops over them unroll.
template <class Form>
void withRounds(std::size_t rounds, Form form)
{
    switch (rounds) {
    case 10:
        return form(std::integral_constant<std::size_t, 10>());
    case 12:
        return form(std::integral_constant<std::size_t, 12>());
    default:
        return form(std::integral_constant<std::size_t, 14>());
    }
}

// How many of `left` blocks to take at once, at most `most`: runs of about equal length, because a
// last run of few would take as long as a full one.
constexpr std::size_t evenShare(std::size_t left, std::size_t most) noexcept
{
    const std::size_t runs = (left + most - 1) / most;
    return (left + runs - 1) / runs;
}

} // namespace nimbrel
