// Where a byte range of a file lies among its blocks.
#pragma once

#include <algorithm>
#include <cstdint>

namespace nimbrel {

// All values are in bytes or block numbers, and fit: file sizes and offsets are below 2^63.
struct BlockRun
{
    std::uint64_t firstBlock;
    std::uint64_t inBlock; // where the range begins in its first block
    std::uint64_t start;   // where its first block begins in the file
};

inline BlockRun blockRunAt(std::uint64_t blockSize, std::uint64_t offset)
{
    return {offset / blockSize, offset % blockSize, offset - offset % blockSize};
}

// The length of the run of blocks that holds `size` bytes from `offset` on: it ends at a block's
// end or at the file's. `offset` is below `fileSize`.
inline std::uint64_t spanOfBlocks(std::uint64_t blockSize, std::uint64_t fileSize,
                                  std::uint64_t offset, std::uint64_t size)
{
    const std::uint64_t start = offset - offset % blockSize;
    const std::uint64_t end = offset + std::min(size, fileSize - offset);
    const std::uint64_t last = end == 0 ? 0 : (end - 1) / blockSize;
    return std::min((last + 1) * blockSize, fileSize) - start;
}

// How many bytes of block number `block` the file has.
inline std::uint64_t bytesInBlock(std::uint64_t blockSize, std::uint64_t fileSize,
                                  std::uint64_t block)
{
    const std::uint64_t start = block * blockSize;
    return fileSize <= start ? 0 : std::min(blockSize, fileSize - start);
}

} // namespace nimbrel
