// Runs of blocks: how they are put together for a write, and their way through the cipher.
#include "fs/NBNimbrelFS.h"

#include "fs/BlockGeometry.h"

#include <algorithm>
#include <cstring>

namespace nimbrel {

namespace {

constexpr std::uint64_t cipherBlockSize = 16;

bool isHole(ByteView block)
{
    constexpr std::size_t quickLook = 8; // real data nearly always ends the look here
    const auto isZero = [](std::uint8_t byte) { return byte == 0; };
    return std::ranges::all_of(block.first(std::min(quickLook, block.size())), isZero) &&
           std::memcmp(block.data(), block.data() + 1, block.size() - 1) == 0;
}

} // namespace

bool NBNimbrelFS::hasBlocks() const noexcept
{
    return _settings.blockSize > 0 && _cryptor.blockSize() > 0;
}

std::uint64_t NBNimbrelFS::sizeOfBlocks() const noexcept
{
    return static_cast<std::uint64_t>(_settings.blockSize);
}

bool NBNimbrelFS::needsMerge(const Piece &piece, std::uint64_t fileSize) const noexcept
{
    const std::uint64_t blockSize = sizeOfBlocks();
    const std::uint64_t end = piece.inBlock + piece.data.size();
    return piece.inBlock > 0 || (end < blockSize && blockSize * piece.block + end < fileSize);
}

// Puts the piece over what the block has on disk; gives the block's new length. What no read fills
// is undefined by contract. Zeros are as good as anything there, and no secret of this process or
// of another file gets to the disk.
NBErrnoOr<std::size_t> NBNimbrelFS::merge(int descriptor, const Piece &piece, ByteSpan block)
{
    const std::uint64_t start = piece.block * sizeOfBlocks();
    const NBErrnoOr<std::size_t> had =
        readBlocks(descriptor, block, static_cast<std::int64_t>(start));
    if (!had)
        return had;
    std::ranges::fill(block.subspan(*had), std::uint8_t{0});
    std::ranges::copy(piece.data, block.begin() + static_cast<std::ptrdiff_t>(piece.inBlock));
    return std::max(*had, static_cast<std::size_t>(piece.inBlock) + piece.data.size());
}

NBDone NBNimbrelFS::addMerged(int descriptor, const Piece &piece, ByteSpan out, Run &run)
{
    const std::size_t room = std::min<std::size_t>(out.size() - run.enciphered, sizeOfBlocks());
    const ByteSpan block = out.subspan(run.enciphered, room);
    const NBErrnoOr<std::size_t> length = merge(descriptor, piece, block);
    if (!length)
        return length.error();
    addPlain(block.first(*length), piece.block, out, run);
    return {};
}

void NBNimbrelFS::addPlain(ByteView data, std::uint64_t firstBlock, ByteSpan out, Run &run)
{
    run.plain += data.size();
    run.enciphered += encipher(data, firstBlock, out.subspan(run.enciphered, data.size()));
}

// Only the first and the last block can need what is on disk; all between goes through the cipher
// in one go, from the caller's bytes.
NBErrnoOr<NBNimbrelFS::Run> NBNimbrelFS::assemble(int descriptor, std::uint64_t fileSize,
                                                  ByteView buffer, std::int64_t offset,
                                                  ByteSpan out)
{
    const std::uint64_t blockSize = sizeOfBlocks();
    const BlockRun at = blockRunAt(blockSize, static_cast<std::uint64_t>(offset));
    const std::size_t inHead = std::min<std::size_t>(buffer.size(), blockSize - at.inBlock);
    const std::size_t inTail = (buffer.size() - inHead) % blockSize;
    const Piece head{at.firstBlock, at.inBlock, buffer.first(inHead)};
    const Piece tail{at.firstBlock + 1 + (buffer.size() - inHead) / blockSize, 0,
                     buffer.last(inTail)};

    Run run;
    ByteView bulk = buffer;
    std::uint64_t bulkBlock = at.firstBlock;
    if (needsMerge(head, fileSize)) {
        if (const NBDone added = addMerged(descriptor, head, out, run); !added)
            return added.error();
        bulk = bulk.subspan(inHead);
        ++bulkBlock;
    }
    const bool mergesTail = inTail > 0 && needsMerge(tail, fileSize);
    if (mergesTail)
        bulk = bulk.first(bulk.size() - inTail);
    addPlain(bulk, bulkBlock, out, run);
    if (mergesTail)
        if (const NBDone added = addMerged(descriptor, tail, out, run); !added)
            return added.error();
    return run;
}

std::size_t NBNimbrelFS::encipher(ByteView data, std::uint64_t firstBlock, ByteSpan out) const
{
    const std::uint64_t blockSize = sizeOfBlocks();
    if (data.empty())
        return 0;
    if (blockSize == _cryptor.blockSize() && blockSize % cipherBlockSize == 0)
        return _cryptor.encryptRun(data, firstBlock, out) ? data.size() : 0;
    // Each block by itself: the cryptor has another block size, or takes no whole blocks of this.
    std::size_t done = 0;
    for (std::uint64_t block = firstBlock; !data.empty(); ++block) {
        const ByteView piece = data.first(std::min<std::size_t>(data.size(), blockSize));
        data = data.subspan(piece.size());
        const std::optional<Bytes> enciphered =
            _cryptor.encryptBlockData(piece, piece.size(), static_cast<std::int64_t>(block));
        if (!enciphered)
            continue;
        std::ranges::copy(*enciphered, out.begin() + static_cast<std::ptrdiff_t>(done));
        done += enciphered->size();
    }
    return done;
}

bool NBNimbrelFS::decipherBlocks(ByteSpan run, std::int64_t offset) const
{
    return hasBlocks() && decipher(run, static_cast<std::uint64_t>(offset));
}

bool NBNimbrelFS::decipher(ByteSpan run, std::uint64_t start) const
{
    const std::uint64_t firstBlock = start / _cryptor.blockSize();
    if (_readsHolesAsZeros)
        return decipherAroundHoles(run, firstBlock);
    return _cryptor.decryptRun(run, firstBlock, run);
}

bool NBNimbrelFS::decipherAroundHoles(ByteSpan run, std::uint64_t firstBlock) const
{
    const std::uint64_t blockSize = _cryptor.blockSize();
    std::size_t from = 0; // where the blocks that aren't deciphered yet begin
    for (std::size_t at = 0; at < run.size(); at += blockSize) {
        const bool isWhole = run.size() - at >= blockSize;
        if (!isWhole || !isHole(run.subspan(at, blockSize)))
            continue;
        const ByteSpan before = run.subspan(from, at - from);
        if (!before.empty() && !_cryptor.decryptRun(before, firstBlock + from / blockSize, before))
            return false;
        from = at + blockSize;
    }
    const ByteSpan last = run.subspan(from);
    return last.empty() || _cryptor.decryptRun(last, firstBlock + from / blockSize, last);
}

} // namespace nimbrel
