// Each engine by itself: what a processor without its instructions would get.
#include "micro/BenchCryptor.h"

#include "crypto/AesKernels.h"
#include "crypto/HmacSha1.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace nimbrel::bench {

namespace {

const Bytes key(32, 0x3C);

using Blocks = bool (AesEngine::*)(ByteView, std::size_t, std::span<const Vector>, std::uint8_t *);
using Feedback = bool (AesEngine::*)(ByteSpan, const Vector &);

// Argument: blocks of a run.
void cryptBlocks(benchmark::State &state, EngineKind kind, Blocks form)
{
    const std::unique_ptr<AesEngine> engine = AesEngine::make(key, kind);
    const std::vector<Vector> vectors(static_cast<std::size_t>(state.range(0)));
    PageBytes data(vectors.size() * blockSize);
    PageBytes out(vectors.size() * blockSize);
    for (auto _ : state)
        if (!(engine.get()->*form)(data.bytes(), blockSize, vectors, out.bytes().data()))
            state.SkipWithError("failed");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(out.bytes().size()));
}

// Argument: bytes of a pass.
void passFeedback(benchmark::State &state, EngineKind kind, Feedback form)
{
    const std::unique_ptr<AesEngine> engine = AesEngine::make(key, kind);
    Bytes data(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        if (!(engine.get()->*form)(data, Vector{}))
            state.SkipWithError("failed");
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

// Argument: codes at a time.
void deriveVectors(benchmark::State &state, EngineKind kind)
{
    HmacSha1 mac(key, kind);
    const Bytes material(cipherBlock);
    std::vector<Vector> vectors(static_cast<std::size_t>(state.range(0)));
    std::uint64_t first = 0;
    for (auto _ : state)
        mac.numbered(material, first++, vectors);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void registerEngine(EngineKind kind, const std::string &name)
{
    const auto row = [&name](const char *what) { return what + ("/" + name); };
    for (const std::int64_t count : {1, 2, 4, 8, 32, 256}) {
        benchmark::RegisterBenchmark(row("encryptBlocks").c_str(), cryptBlocks, kind,
                                     &AesEngine::encryptBlocks)
            ->Arg(count);
        benchmark::RegisterBenchmark(row("decryptBlocks").c_str(), cryptBlocks, kind,
                                     &AesEngine::decryptBlocks)
            ->Arg(count);
    }
    for (const std::int64_t size : {20, 100, 1000, 4095}) {
        benchmark::RegisterBenchmark(row("encryptFeedback").c_str(), passFeedback, kind,
                                     &AesEngine::encryptFeedback)
            ->Arg(size);
        benchmark::RegisterBenchmark(row("decryptFeedback").c_str(), passFeedback, kind,
                                     &AesEngine::decryptFeedback)
            ->Arg(size);
    }
    for (const std::int64_t count : {1, 2, 32})
        benchmark::RegisterBenchmark(row("deriveVectors").c_str(), deriveVectors, kind)->Arg(count);
}

const bool registered = [] {
    registerEngine(EngineKind::Library, "library");
    if (aesKernels(EngineKind::Processor) != nullptr)
        registerEngine(EngineKind::Processor, "processor");
    if (aesKernels(EngineKind::Wide) != nullptr)
        registerEngine(EngineKind::Wide, "wide");
    return true;
}();

} // namespace

} // namespace nimbrel::bench
