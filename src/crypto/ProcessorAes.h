// AES by the processor's own instructions: keys and data of one engine. Stays inside crypto/.
#pragma once

#include "crypto/AesKernels.h"
#include "crypto/SecureBuffer.h"

namespace nimbrel {

class ProcessorAes final : public AesEngine
{
public:
    // Nothing for a key of another length or a processor that can't.
    [[nodiscard]] static std::unique_ptr<ProcessorAes> make(ByteView key, EngineKind kind);

    [[nodiscard]] bool encryptBlocks(ByteView data, std::size_t blockSize,
                                     std::span<const Vector> vectors, std::uint8_t *out) override;
    [[nodiscard]] bool decryptBlocks(ByteView data, std::size_t blockSize,
                                     std::span<const Vector> vectors, std::uint8_t *out) override;
    [[nodiscard]] bool encryptFeedback(ByteSpan data, const Vector &vector) override;
    [[nodiscard]] bool decryptFeedback(ByteSpan data, const Vector &vector) override;

private:
    ProcessorAes(const AesKernels &kernels, ByteView key);

    const AesKernels &_kernels;
    SecureBuffer _memory;
    AesSchedule &_schedule; // in that memory
};

} // namespace nimbrel
