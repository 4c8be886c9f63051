#include "crypto/VectorTable.h"

#include "crypto/CipherContexts.h"

#include <algorithm>

namespace nimbrel {

VectorTable::VectorTable() : _vectors(std::make_unique_for_overwrite<Vector[]>(keptSeeds)) {}

void VectorTable::fill(std::uint64_t first, std::span<Vector> vectors, const NBEncryptionKey &key)
{
    while (!vectors.empty()) {
        const bool kept = first < keptSeeds;
        // Seeds wrap, and a table's end or that of all numbers is within a run at most once.
        const std::uint64_t beforeTurn = kept ? keptSeeds - first : 0 - first;
        const std::size_t count = std::min<std::uint64_t>(vectors.size(), beforeTurn);
        const std::span<Vector> part = vectors.first(count);
        if (kept)
            copyKept(static_cast<std::size_t>(first), part, key);
        else
            derive(first, part, key);
        vectors = vectors.subspan(count);
        first += count;
    }
}

StreamVectors VectorTable::ofStream(std::uint64_t seed, const NBEncryptionKey &key)
{
    if (seed < keptSeeds - 1 && _known[seed] && _known[seed + 1]) // a name that was seen before
        return {_vectors[seed], _vectors[seed + 1]};
    std::array<Vector, 2> vectors;
    fill(seed, vectors, key);
    return {vectors[0], vectors[1]};
}

void VectorTable::copyKept(std::size_t first, std::span<Vector> vectors, const NBEncryptionKey &key)
{
    const std::size_t end = first + vectors.size();
    for (std::size_t seed = first; seed < end; ++seed) {
        if (_known[seed])
            continue;
        const std::size_t start = seed;
        while (seed < end && !_known[seed])
            _known[seed++] = true;
        derive(start, {&_vectors[start], seed - start}, key);
    }
    std::copy_n(&_vectors[first], vectors.size(), vectors.begin());
}

void VectorTable::derive(std::uint64_t first, std::span<Vector> vectors, const NBEncryptionKey &key)
{
    key.contexts().hmac().numbered(key.ivData(), first, vectors);
}

} // namespace nimbrel
