#include "crypto/LibraryLanes.h"

#include <algorithm>
#include <cstring>

namespace nimbrel {

namespace {

using Word = std::uint64_t __attribute__((vector_size(cipherBlock)));

Word load(const std::uint8_t *bytes) noexcept
{
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

void store(std::uint8_t *bytes, Word word) noexcept
{
    std::memcpy(bytes, &word, sizeof word);
}

} // namespace

LibraryLanes::LibraryLanes(ByteView data, std::size_t blockSize, std::span<const Vector> vectors,
                           std::uint8_t *out) noexcept
    : _data(data.data()), _out(out), _blockSize(blockSize), _count(vectors.size())
{
    for (std::size_t lane = 0; lane < _count; ++lane)
        store(at(_chain, lane), load(vectors[lane].data()));
}

bool LibraryLanes::encrypt(CipherContext &codebook) noexcept
{
    const std::size_t steps = _blockSize / cipherBlock;
    for (std::size_t first = 0; first < steps; first += stagedSteps) {
        const std::size_t count = std::min(stagedSteps, steps - first);
        gather(first, count);
        for (std::size_t step = 0; step < count; ++step)
            if (!encryptStep(_staged[step], codebook))
                return false;
        scatter(first, count);
    }
    return true;
}

bool LibraryLanes::encryptStep(Row &row, CipherContext &codebook) noexcept
{
    for (std::size_t lane = 0; lane < _count; ++lane)
        store(at(row, lane), load(at(row, lane)) ^ load(at(_chain, lane)));
    const std::size_t size = _count * cipherBlock;
    if (!codebook.update({row.data(), size}, row.data()))
        return false;
    std::memcpy(_chain.data(), row.data(), size);
    return true;
}

void LibraryLanes::gather(std::size_t firstStep, std::size_t count) noexcept
{
    for (std::size_t lane = 0; lane < _count; ++lane) {
        const std::uint8_t *from = _data + lane * _blockSize + firstStep * cipherBlock;
        for (std::size_t step = 0; step < count; ++step)
            store(at(_staged[step], lane), load(from + step * cipherBlock));
    }
}

void LibraryLanes::scatter(std::size_t firstStep, std::size_t count) noexcept
{
    for (std::size_t lane = 0; lane < _count; ++lane) {
        std::uint8_t *to = _out + lane * _blockSize + firstStep * cipherBlock;
        for (std::size_t step = 0; step < count; ++step)
            store(to + step * cipherBlock, load(at(_staged[step], lane)));
    }
}

} // namespace nimbrel
