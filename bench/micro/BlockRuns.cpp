// Runs of whole blocks, as reads and writes bring them.
#include "micro/BenchCryptor.h"

#include <benchmark/benchmark.h>

namespace nimbrel::bench {

namespace {

using Form = bool (NBCryptor::*)(ByteView, std::uint64_t, ByteSpan) const;

constexpr std::int64_t keptStart = 0;
constexpr std::int64_t computedStart = std::int64_t{1} << 32; // no vector of these is kept

// Arguments: blocks of a run, its first block.
void cryptRuns(benchmark::State &state, Form form)
{
    const NBCryptor cryptor = usualCryptor();
    PageBytes data(static_cast<std::size_t>(state.range(0)) * blockSize);
    PageBytes out(data.bytes().size());
    const auto firstBlock = static_cast<std::uint64_t>(state.range(1));
    for (auto _ : state)
        if (!(cryptor.*form)(data.bytes(), firstBlock, out.bytes()))
            state.SkipWithError("failed");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data.bytes().size()));
}

void encryptRuns(benchmark::State &state)
{
    cryptRuns(state, &NBCryptor::encryptRun);
}

void decryptRuns(benchmark::State &state)
{
    cryptRuns(state, &NBCryptor::decryptRun);
}

BENCHMARK(encryptRuns)
    ->ArgsProduct({{1, 2, 8, 32, 256, 4096}, {keptStart}})
    ->Args({4096, computedStart});
BENCHMARK(decryptRuns)
    ->ArgsProduct({{1, 2, 8, 32, 256, 4096}, {keptStart}})
    ->Args({4096, computedStart});

} // namespace

} // namespace nimbrel::bench
