// Chains side by side on OpenSSL's codebook. Stays inside crypto/.
#pragma once

#include "crypto/CipherContext.h"

namespace nimbrel {

// Step by step, the cipher blocks of all lanes that have the same place in their block: one CBC
// step is serial within a lane, and one library call does it for all lanes at once. Cipher blocks
// are gathered some at a time: every lane's cache lines are then touched once for reading and once
// for writing.
class LibraryLanes final
{
public:
    static constexpr std::size_t most = 16;

    // Memory is AesEngine::encryptBlocks', at most `most` blocks.
    LibraryLanes(ByteView data, std::size_t blockSize, std::span<const Vector> vectors,
                 std::uint8_t *out) noexcept;

    [[nodiscard]] bool encrypt(CipherContext &codebook) noexcept;

private:
    static constexpr std::size_t stagedSteps = 8;
    using Row = std::array<std::uint8_t, most * cipherBlock>; // one cipher block a lane

    static std::uint8_t *at(Row &row, std::size_t lane) noexcept
    {
        return row.data() + lane * cipherBlock;
    }

    [[nodiscard]] bool encryptStep(Row &row, CipherContext &codebook) noexcept;
    void gather(std::size_t firstStep, std::size_t count) noexcept;
    void scatter(std::size_t firstStep, std::size_t count) noexcept;

    const std::uint8_t *_data;
    std::uint8_t *_out;
    std::size_t _blockSize;
    std::size_t _count;
    alignas(64) Row _chain;
    alignas(64) std::array<Row, stagedSteps> _staged;
};

} // namespace nimbrel
