#include "crypto/AesEngine.h"

#include "crypto/LibraryAes.h"
#include "crypto/ProcessorAes.h"

namespace nimbrel {

EngineKind fastestEngine() noexcept
{
    static const EngineKind fastest = [] {
        if (aesKernels(EngineKind::Wide) != nullptr)
            return EngineKind::Wide;
        return aesKernels(EngineKind::Processor) != nullptr ? EngineKind::Processor
                                                            : EngineKind::Library;
    }();
    return fastest;
}

std::unique_ptr<AesEngine> AesEngine::make(ByteView key, EngineKind kind)
{
    if (kind == EngineKind::Library)
        return LibraryAes::make(key);
    return ProcessorAes::make(key, kind);
}

} // namespace nimbrel
