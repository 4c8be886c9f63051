#include "crypto/BlockRuns.h"

#include <algorithm>
#include <cstring>

namespace nimbrel {

namespace {

// Blocks that are encrypted side by side, and how many cipher blocks of each are gathered at a
// time: every lane's cache lines are then touched once for reading and once for writing.
constexpr std::size_t maximumLanes = 16;
constexpr std::size_t stagedSteps = 8;

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

// Step by step, the cipher blocks of all lanes that have the same place in their block: one CBC
// step is serial within a lane, and one library call does it for all lanes at once.
class Lanes final
{
public:
    Lanes(ByteView data, std::size_t blockSize, std::span<const Vector> vectors,
          std::uint8_t *out) noexcept
        : _data(data.data()), _out(out), _blockSize(blockSize), _count(vectors.size())
    {
        for (std::size_t lane = 0; lane < _count; ++lane)
            store(at(_chain, lane), load(vectors[lane].data()));
    }

    [[nodiscard]] bool encrypt(CipherContext &codebook) noexcept
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

private:
    using Row = std::array<std::uint8_t, maximumLanes * cipherBlock>; // one cipher block a lane

    static std::uint8_t *at(Row &row, std::size_t lane) noexcept
    {
        return row.data() + lane * cipherBlock;
    }

    [[nodiscard]] bool encryptStep(Row &row, CipherContext &codebook) noexcept
    {
        for (std::size_t lane = 0; lane < _count; ++lane)
            store(at(row, lane), load(at(row, lane)) ^ load(at(_chain, lane)));
        const std::size_t size = _count * cipherBlock;
        if (!codebook.update({row.data(), size}, row.data()))
            return false;
        std::memcpy(_chain.data(), row.data(), size);
        return true;
    }

    void gather(std::size_t firstStep, std::size_t count) noexcept
    {
        for (std::size_t lane = 0; lane < _count; ++lane) {
            const std::uint8_t *from = _data + lane * _blockSize + firstStep * cipherBlock;
            for (std::size_t step = 0; step < count; ++step)
                store(at(_staged[step], lane), load(from + step * cipherBlock));
        }
    }

    void scatter(std::size_t firstStep, std::size_t count) noexcept
    {
        for (std::size_t lane = 0; lane < _count; ++lane) {
            std::uint8_t *to = _out + lane * _blockSize + firstStep * cipherBlock;
            for (std::size_t step = 0; step < count; ++step)
                store(to + step * cipherBlock, load(at(_staged[step], lane)));
        }
    }

    const std::uint8_t *_data;
    std::uint8_t *_out;
    std::size_t _blockSize;
    std::size_t _count;
    alignas(64) Row _chain;
    alignas(64) std::array<Row, stagedSteps> _staged;
};

bool encryptOneBlock(ByteView data, const Vector &vector, std::uint8_t *out,
                     CipherContexts &contexts)
{
    return contexts.cbcEncryption.start(vector) && contexts.cbcEncryption.update(data, out);
}

} // namespace

bool encryptBlocks(ByteView data, std::size_t blockSize, std::span<const Vector> vectors,
                   std::uint8_t *out, CipherContexts &contexts)
{
    if (blockSize % cipherBlock != 0)
        return false;
    while (!vectors.empty()) {
        const std::size_t count = std::min(maximumLanes, vectors.size());
        const ByteView part = data.first(count * blockSize);
        const bool good =
            count == 1
                ? encryptOneBlock(part, vectors.front(), out, contexts)
                : Lanes(part, blockSize, vectors.first(count), out).encrypt(contexts.ecbEncryption);
        if (!good)
            return false;
        data = data.subspan(part.size());
        out += part.size();
        vectors = vectors.subspan(count);
    }
    return true;
}

bool decryptBlocks(ByteView data, std::size_t blockSize, std::span<const Vector> vectors,
                   std::uint8_t *out, CipherContexts &contexts)
{
    if (blockSize % cipherBlock != 0 || vectors.size() > blockBatch)
        return false;
    if (vectors.empty())
        return true;
    // All blocks go through the library as one chain, which it decrypts in parallel. Only the first
    // cipher block of each block is then wrong: it was chained to the end of the block before
    // instead of to its own vector.
    std::array<Vector, blockBatch> ends;
    for (std::size_t i = 1; i < vectors.size(); ++i)
        std::memcpy(ends[i].data(), data.data() + i * blockSize - cipherBlock, cipherBlock);
    CipherContext &cbc = contexts.cbcDecryption;
    if (!cbc.start(vectors.front()) || !cbc.update(data, out))
        return false;
    for (std::size_t i = 1; i < vectors.size(); ++i) {
        std::uint8_t *first = out + i * blockSize;
        store(first, load(first) ^ load(ends[i].data()) ^ load(vectors[i].data()));
    }
    return true;
}

} // namespace nimbrel
