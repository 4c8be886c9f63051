// Whole blocks of a file, read and replaced so that a full store spoils none of them.
#pragma once

#include "fs/BlockMending.h"
#include "fs/NBNimbrelFS.h"

namespace nimbrel {

// Hands the delegate pieces that begin at a block's start and reach to a block's end or to the
// file's: it never has to merge, one call of it is one write, and the count it gives tells what the
// store took.
class BlockWriter final
{
public:
    explicit BlockWriter(NBNimbrelFS &delegate) : _delegate(delegate) {}

    [[nodiscard]] std::int64_t blockSize() const noexcept { return _delegate.settings().blockSize; }

    // One block, or as much of it as the file has, into `to`. EIO unless all of it comes.
    NBDone read(NBFileHandle &file, ByteSpan to, std::int64_t start);

    // What the store may leave half done: kept before put, or not at all.
    NBDone keep(NBFileHandle &file, ByteRange range);
    // What was kept of one block, made plain. EIO where it wasn't kept.
    NBDone readKept(ByteSpan to, std::int64_t start);
    void keepNothing() noexcept { _mending.keepNothing(); }

    struct Result
    {
        std::size_t done; // bytes that stand on disk, whole blocks or everything
        int error;        // errno of what stopped it, 0 when everything is done
    };
    // `old` is the file before. What isn't done has left the old blocks as they were.
    Result put(NBFileHandle &file, ByteView blocks, std::int64_t start, BlockLayout old);

private:
    struct Taken
    {
        std::size_t count;
        int error;
    };
    Taken offer(NBFileHandle &file, ByteView blocks, std::int64_t start);

    NBNimbrelFS &_delegate;
    BlockMending _mending;
};

} // namespace nimbrel
