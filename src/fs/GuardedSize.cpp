// How a file grows and is cut.
#include "fs/GuardedContent.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace nimbrel {

namespace {

constexpr std::int64_t zerosAtOnce = 256 * 1024; // bytes, a whole block at least

NBErrnoOr<std::int64_t> sizeOf(const NBFileHandle &file)
{
    struct stat attributes = {};
    if (::fstat(file.descriptor.get(), &attributes) != 0)
        return NBErrno::last();
    return attributes.st_size;
}

NBDone asDone(BlockWriter::Result result)
{
    return result.error == 0 ? NBDone() : NBErrno{result.error};
}

} // namespace

NBDone GuardedContent::setSize(NBFileHandle &file, std::int64_t size)
{
    if (size < 0 || !hasBlocks())
        return NBErrno{EINVAL};
    const NBErrnoOr<std::int64_t> now = sizeOf(file);
    if (!now)
        return now.error();
    if (size > *now)
        return grow(file, *now, size);
    return cut(file, *now, size);
}

// What is new reads as zeros. On failure the file is what it was.
NBDone GuardedContent::grow(NBFileHandle &file, std::int64_t from, std::int64_t size)
{
    NBDone grown = growOverLastBlock(file, from, size);
    if (grown)
        grown = growByBlocks(file, from, size);
    if (grown)
        return grown;
    const NBErrnoOr<std::int64_t> now = sizeOf(file);
    if (now && *now > from)
        if (const NBDone undone = cut(file, *now, from); !undone)
            return undone;
    return grown;
}

// A short last block takes another form with every byte that it gains.
NBDone GuardedContent::growOverLastBlock(NBFileHandle &file, std::int64_t from, std::int64_t size)
{
    const BlockLayout layout{from, blockSize()};
    const ByteRange block{layout.blockStart(from), std::min(layout.blockEnd(from), size)};
    const auto old = static_cast<std::size_t>(from - block.from);
    if (old == 0)
        return {};
    const std::optional<ByteSpan> bytes = _composed.take(static_cast<std::size_t>(block.size()));
    if (!bytes)
        return NBErrno{ENOMEM};
    if (const NBDone got = _blocks.read(file, bytes->first(old), block.from); !got)
        return got;
    std::fill(bytes->begin() + static_cast<std::ptrdiff_t>(old), bytes->end(), std::uint8_t{0});
    if (const NBDone reserved = reserve(file.descriptor.get(), block); !reserved)
        return reserved;
    if (const NBDone kept = _blocks.keep(file, {block.from, from}); !kept)
        return kept;
    return asDone(_blocks.put(file, *bytes, block.from, layout));
}

NBDone GuardedContent::growByBlocks(NBFileHandle &file, std::int64_t from, std::int64_t size)
{
    const BlockLayout layout{from, blockSize()};
    const std::int64_t begin = layout.blockEnd(from);
    if (begin >= size)
        return {};
    const ByteRange whole{begin, layout.blockStart(size)};
    if (!whole.isEmpty()) {
        const int descriptor = file.descriptor.get();
        NBDone done;
        if (_delegate.readsHolesAsZeros())
            done = truncateTo(descriptor, whole.to);
        else if (done = reserve(descriptor, whole); done)
            done = putZeros(file, whole);
        if (!done)
            return done;
    }
    return putZeros(file, {whole.to, size});
}

// Enciphered zeros at the file's end, which is a block's.
NBDone GuardedContent::putZeros(NBFileHandle &file, ByteRange range)
{
    const std::int64_t most = std::max(blockSize(), zerosAtOnce - zerosAtOnce % blockSize());
    _blocks.keepNothing();
    while (!range.isEmpty()) {
        const auto size = static_cast<std::size_t>(std::min(range.size(), most));
        const std::optional<ByteSpan> zeros = _zeros.take(size);
        if (!zeros)
            return NBErrno{ENOMEM};
        std::fill(zeros->begin(), zeros->end(), std::uint8_t{0});
        const BlockLayout layout{range.from, blockSize()};
        if (const NBDone put = asDone(_blocks.put(file, *zeros, range.from, layout)); !put)
            return put;
        range.from += static_cast<std::int64_t>(size);
    }
    return {};
}

// The new last block takes its short form, which a full store must not prevent after the cut: its
// room is reserved first. On failure it keeps its old form, and nothing before `size` is lost.
NBDone GuardedContent::cut(NBFileHandle &file, std::int64_t from, std::int64_t size)
{
    const int descriptor = file.descriptor.get();
    const BlockLayout layout{from, blockSize()};
    const ByteRange block{layout.blockStart(size), std::min(layout.blockEnd(size), from)};
    const auto left = static_cast<std::size_t>(size - block.from);
    if (left == 0 || size == from)
        return truncateTo(descriptor, size); // also sets the times
    const std::optional<ByteSpan> bytes = _composed.take(static_cast<std::size_t>(block.size()));
    if (!bytes)
        return NBErrno{ENOMEM};
    if (const NBDone got = _blocks.read(file, *bytes, block.from); !got)
        return got;
    if (const NBDone kept = _blocks.keep(file, block); !kept)
        return kept;
    NBDone reserved = reserve(descriptor, {block.from, size});
    if (!reserved && reserved.code() != EFBIG && block.to < from) {
        // What is behind the block goes first, and leaves its room.
        if (const NBDone cutBehind = truncateTo(descriptor, block.to); !cutBehind)
            return cutBehind;
        reserved = reserve(descriptor, {block.from, size});
    }
    if (!reserved)
        return reserved;
    if (const NBDone cutHere = truncateTo(descriptor, size); !cutHere)
        return cutHere;
    return asDone(
        _blocks.put(file, bytes->first(left), block.from, BlockLayout{block.to, blockSize()}));
}

} // namespace nimbrel
