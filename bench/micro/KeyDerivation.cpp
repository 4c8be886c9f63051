// What opening a folder costs for an iteration count.
#include "micro/BenchCryptor.h"

#include <benchmark/benchmark.h>

namespace nimbrel::bench {

namespace {

void deriveKey(benchmark::State &state)
{
    const Bytes salt(20, 7);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            NBEncryptionKey::withPassphrase("a passphrase", 256, salt, state.range(0)));
}

BENCHMARK(deriveKey)->Arg(1)->Arg(5000)->Arg(180'000)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace nimbrel::bench
