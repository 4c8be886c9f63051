#include "crypto/AesKernels.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace nimbrel {

#if defined(__x86_64__)

namespace {

bool hasAes() noexcept
{
    return __builtin_cpu_supports("aes") != 0 && __builtin_cpu_supports("sse4.1") != 0;
}

// The compilers' own question knows no VAES everywhere; whether the system keeps the registers is
// in the answer about AVX-512.
bool hasWideAes() noexcept
{
    constexpr unsigned vaes = 1U << 9U;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    return hasAes() && __builtin_cpu_supports("avx512f") != 0 &&
           __builtin_cpu_supports("avx512dq") != 0 && __get_cpuid_count(7, 0, &a, &b, &c, &d) &&
           (c & vaes) != 0;
}

constexpr AesKernels processorKernels = {processor::expandKey, processor::encryptBlocks,
                                         processor::decryptBlocks, processor::encryptFeedback,
                                         processor::decryptFeedback};
// A feedback chain is serial when it encrypts: wide registers have nothing to gain.
constexpr AesKernels wideKernels = {processor::expandKey, wide::encryptBlocks, wide::decryptBlocks,
                                    processor::encryptFeedback, wide::decryptFeedback};

} // namespace

const AesKernels *aesKernels(EngineKind kind) noexcept
{
    if (kind == EngineKind::Wide && hasWideAes())
        return &wideKernels;
    if (kind == EngineKind::Processor && hasAes())
        return &processorKernels;
    return nullptr;
}

#else

const AesKernels *aesKernels(EngineKind) noexcept
{
    return nullptr;
}

#endif

} // namespace nimbrel
