// File content as programs expect it, over a delegate that is exact.
#pragma once

#include "fs/BlockWriter.h"
#include "fs/NBNimbrelFS.h"
#include "fs/ReusedBuffer.h"

#include <cstddef>
#include <cstdint>

namespace nimbrel {

// Calls the delegate so that its sharp edges are never met: gaps read as zeros, a growing file's
// old last block is re-encoded, a failed write is told, requests end at the end of the file. Every
// error is a positive errno, and what a failed call leaves behind is readable. Offsets and sizes
// are in bytes. One call at a time.
class GuardedContent final
{
public:
    // `delegate` outlives this. Switches the delegate's zero-block reading on where the
    // configuration's allowHoles is on; with it off gaps are filled with enciphered zeros.
    explicit GuardedContent(NBNimbrelFS &delegate);

    NBErrnoOr<std::size_t> read(NBFileHandle &file, ByteSpan buffer, std::int64_t offset);
    // Everything or an error, but for a store that takes a part: then that part's length.
    NBErrnoOr<std::size_t> write(NBFileHandle &file, ByteView data, std::int64_t offset);
    // At the end of the file as it is now.
    NBErrnoOr<std::size_t> append(NBFileHandle &file, ByteView data);
    NBDone setSize(NBFileHandle &file, std::int64_t size);
    // fallocate(2): `mode` 0, FALLOC_FL_KEEP_SIZE, PUNCH_HOLE|KEEP_SIZE, ZERO_RANGE (with or
    // without KEEP_SIZE); others are EOPNOTSUPP.
    NBDone allocate(NBFileHandle &file, int mode, std::int64_t offset, std::int64_t length);
    // lseek(2) with SEEK_DATA or SEEK_HOLE, in whole blocks.
    NBErrnoOr<std::int64_t> seek(NBFileHandle &file, std::int64_t offset, int whence);
    // fsync(2), or fdatasync(2) when `dataOnly`. Gives an earlier write's error once, too.
    NBDone sync(NBFileHandle &file, bool dataOnly);

private:
    [[nodiscard]] std::int64_t blockSize() const noexcept { return _blocks.blockSize(); }
    // False for a configuration whose blocks have no length: there is no content then.
    [[nodiscard]] bool hasBlocks() const noexcept { return blockSize() > 0; }
    [[nodiscard]] std::size_t largestPiece() const noexcept; // bytes
    NBErrnoOr<std::size_t> readUpTo(NBFileHandle &file, ByteSpan buffer, std::int64_t offset,
                                    std::int64_t fileSize);
    NBDone readBlocks(NBFileHandle &file, ByteSpan to, std::int64_t start);
    NBErrnoOr<std::size_t> writePiece(NBFileHandle &file, ByteView data, std::int64_t offset);
    // The whole blocks that a write replaces: `data`, and what was kept of what stands beside it.
    NBErrnoOr<ByteView> compose(ByteView data, std::int64_t offset, ByteRange blocks,
                                BlockLayout layout);
    NBDone writeZeros(NBFileHandle &file, ByteRange range);

    NBDone grow(NBFileHandle &file, std::int64_t from, std::int64_t size);
    NBDone growOverLastBlock(NBFileHandle &file, std::int64_t from, std::int64_t size);
    NBDone growByBlocks(NBFileHandle &file, std::int64_t from, std::int64_t size);
    NBDone putZeros(NBFileHandle &file, ByteRange range);
    NBDone cut(NBFileHandle &file, std::int64_t from, std::int64_t size);

    NBDone provide(NBFileHandle &file, ByteRange range, bool keepsSize);
    NBDone clear(NBFileHandle &file, ByteRange range, int storeMode);

    NBNimbrelFS &_delegate;
    BlockWriter _blocks;
    ReusedBuffer _composed;
    ReusedBuffer _zeros;
};

} // namespace nimbrel
