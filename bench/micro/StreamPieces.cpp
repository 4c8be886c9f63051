// Short last blocks: what small files cost.
#include "micro/BenchCryptor.h"

#include <benchmark/benchmark.h>

namespace nimbrel::bench {

namespace {

using Form = bool (NBCryptor::*)(ByteView, std::uint64_t, ByteSpan) const;

// Argument: bytes of a piece.
void cryptPieces(benchmark::State &state, Form form)
{
    const NBCryptor cryptor = usualCryptor();
    Bytes data(static_cast<std::size_t>(state.range(0)), 0x5A);
    for (auto _ : state)
        if (!(cryptor.*form)(data, 0, data))
            state.SkipWithError("failed");
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void encryptPieces(benchmark::State &state)
{
    cryptPieces(state, &NBCryptor::encryptRun);
}

void decryptPieces(benchmark::State &state)
{
    cryptPieces(state, &NBCryptor::decryptRun);
}

BENCHMARK(encryptPieces)->Arg(20)->Arg(100)->Arg(1000)->Arg(4095);
BENCHMARK(decryptPieces)->Arg(20)->Arg(100)->Arg(1000)->Arg(4095);

} // namespace

} // namespace nimbrel::bench
