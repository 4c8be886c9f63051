#include "crypto/ProcessorAes.h"

#include <new>

namespace nimbrel {

ProcessorAes::ProcessorAes(const AesKernels &kernels, ByteView key)
    : _kernels(kernels), _memory(sizeof(AesSchedule)),
      _schedule(*new (_memory.bytes().data()) AesSchedule)
{
    _kernels.expandKey(key, _schedule);
}

std::unique_ptr<ProcessorAes> ProcessorAes::make(ByteView key, EngineKind kind)
{
    const AesKernels *kernels = aesKernels(kind);
    if (kernels == nullptr || (key.size() != 16 && key.size() != 24 && key.size() != 32))
        return nullptr;
    return std::unique_ptr<ProcessorAes>(new ProcessorAes(*kernels, key));
}

bool ProcessorAes::encryptBlocks(ByteView data, std::size_t blockSize,
                                 std::span<const Vector> vectors, std::uint8_t *out)
{
    _kernels.encryptBlocks(_schedule, data, blockSize, vectors, out);
    return true;
}

bool ProcessorAes::decryptBlocks(ByteView data, std::size_t blockSize,
                                 std::span<const Vector> vectors, std::uint8_t *out)
{
    _kernels.decryptBlocks(_schedule, data, blockSize, vectors, out);
    return true;
}

bool ProcessorAes::encryptFeedback(ByteSpan data, const Vector &vector)
{
    _kernels.encryptFeedback(_schedule, data, vector);
    return true;
}

bool ProcessorAes::decryptFeedback(ByteSpan data, const Vector &vector)
{
    _kernels.decryptFeedback(_schedule, data, vector);
    return true;
}

} // namespace nimbrel
