// Names, each a new one, as a path or a first listing brings them, and one name again and again.
#include "micro/BenchCryptor.h"

#include "crypto/Base64.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace nimbrel::bench {

namespace {

constexpr std::size_t nameCount = 10'000;

std::vector<std::string> manyNames(std::size_t length)
{
    std::vector<std::string> names;
    names.reserve(nameCount);
    for (std::size_t i = 0; i < nameCount; ++i) {
        std::string name = std::to_string(i);
        name.resize(length, 'x');
        names.push_back(std::move(name));
    }
    return names;
}

// Argument: bytes of a name.
void encodeNames(benchmark::State &state)
{
    const NBCryptor cryptor = usualCryptor();
    const std::vector<std::string> names = manyNames(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        for (const std::string &name : names)
            benchmark::DoNotOptimize(cryptor.encodeString(name));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nameCount));
}

void decodeNames(benchmark::State &state)
{
    const NBCryptor cryptor = usualCryptor();
    std::vector<std::string> stored;
    for (const std::string &name : manyNames(static_cast<std::size_t>(state.range(0))))
        stored.push_back(cryptor.encodeString(name).value());
    for (auto _ : state)
        for (const std::string &name : stored)
            benchmark::DoNotOptimize(cryptor.decodeString(name));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nameCount));
}

// The same into one string.
void appendNames(benchmark::State &state)
{
    const NBCryptor cryptor = usualCryptor();
    const std::vector<std::string> names = manyNames(static_cast<std::size_t>(state.range(0)));
    std::string stored;
    for (auto _ : state)
        for (const std::string &name : names) {
            stored.clear();
            if (!cryptor.encodeName(name, stored))
                state.SkipWithError("failed");
        }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nameCount));
}

void replaceNames(benchmark::State &state)
{
    const NBCryptor cryptor = usualCryptor();
    std::vector<std::string> stored;
    for (const std::string &name : manyNames(static_cast<std::size_t>(state.range(0))))
        stored.push_back(cryptor.encodeString(name).value());
    std::string plain;
    for (auto _ : state)
        for (const std::string &name : stored)
            if (!cryptor.decodeName(name, plain))
                state.SkipWithError("failed");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nameCount));
}

// A cryptor that has seen no name yet derives every vector.
void decodeNamesFirstTime(benchmark::State &state)
{
    const NBCryptor source = usualCryptor();
    const std::string blob = source.writeKeyWithPassphrase("").value();
    const std::string salt = base64EncodedString(source.salt());
    const NBCryptorSettings settings = {
        .encodedKeyData = blob, .saltData = salt, .kdfIterations = 1};
    std::vector<std::string> stored;
    for (const std::string &name : manyNames(static_cast<std::size_t>(state.range(0))))
        stored.push_back(source.encodeString(name).value());
    for (auto _ : state) {
        state.PauseTiming();
        const NBCryptor cryptor = NBCryptor::withPassphrase("", settings).value();
        state.ResumeTiming();
        for (const std::string &name : stored)
            benchmark::DoNotOptimize(cryptor.decodeString(name));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nameCount));
}

BENCHMARK(encodeNames)->Arg(8)->Arg(20)->Arg(100);
BENCHMARK(decodeNames)->Arg(8)->Arg(20)->Arg(100);
BENCHMARK(appendNames)->Arg(8)->Arg(20)->Arg(100);
BENCHMARK(replaceNames)->Arg(8)->Arg(20)->Arg(100);
BENCHMARK(decodeNamesFirstTime)->Arg(20);

} // namespace

} // namespace nimbrel::bench
