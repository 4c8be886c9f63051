#include "crypto/VectorTable.h"

#include "crypto/NBCryptor.h"

namespace nimbrel {

VectorTable::VectorTable() : _vectors(std::make_unique_for_overwrite<Vector[]>(keptSeeds)) {}

bool VectorTable::fill(std::uint64_t first, std::span<Vector> vectors, const NBEncryptionKey &key)
{
    for (Vector &vector : vectors)
        if (!get(first++, vector, key))
            return false;
    return true;
}

std::optional<StreamVectors> VectorTable::ofStream(std::uint64_t seed, const NBEncryptionKey &key)
{
    StreamVectors vectors;
    if (!get(seed, vectors.ofSeed, key) || !get(seed + 1, vectors.ofNextSeed, key))
        return std::nullopt;
    return vectors;
}

bool VectorTable::get(std::uint64_t seed, Vector &vector, const NBEncryptionKey &key)
{
    if (seed < keptSeeds && _known[seed]) {
        vector = _vectors[seed];
        return true;
    }
    const std::optional<Vector> derived = NBCryptor::getIv(seed, key);
    if (!derived)
        return false;
    vector = *derived;
    if (seed < keptSeeds) {
        _vectors[seed] = vector;
        _known[seed] = true;
    }
    return true;
}

} // namespace nimbrel
