#include "fs/BlockMending.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr int mostStalls = 8; // calls in a row that bring nothing

// Bytes as they stand on disk; false when not all of them come.
bool readAll(int descriptor, ByteSpan to, std::int64_t offset)
{
    int stalls = 0;
    while (!to.empty() && stalls < mostStalls) {
        const ssize_t got = ::pread(descriptor, to.data(), to.size(), offset);
        if (got <= 0) {
            ++stalls;
            continue;
        }
        to = to.subspan(static_cast<std::size_t>(got));
        offset += got;
    }
    return to.empty();
}

// Writes as much as the store takes. Whether it is enough is judged by reading: a store that
// refuses a byte has not changed it either.
void writeWhatGoes(int descriptor, ByteView bytes, std::int64_t offset)
{
    int stalls = 0;
    while (!bytes.empty() && stalls < mostStalls) {
        const ssize_t put = ::pwrite(descriptor, bytes.data(), bytes.size(), offset);
        if (put <= 0) {
            ++stalls;
            continue;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(put));
        offset += put;
    }
}

// The file reaches to the block's end at least then, as it did when it had that hole.
NBDone makeHole(int descriptor, ByteRange block)
{
    struct stat attributes = {};
    if (::fstat(descriptor, &attributes) != 0)
        return NBErrno::last();
    if (attributes.st_size < block.to)
        if (const NBDone grown = truncateTo(descriptor, block.to); !grown)
            return grown;
    return allocateOnStore(descriptor, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, block);
}

NBDone cutTo(int descriptor, std::int64_t size)
{
    struct stat attributes = {};
    if (::fstat(descriptor, &attributes) != 0)
        return NBErrno{EIO};
    if (attributes.st_size <= size)
        return {};
    return truncateTo(descriptor, size) ? NBDone() : NBErrno{EIO};
}

} // namespace

NBDone BlockMending::keep(int descriptor, ByteRange range)
{
    keepNothing();
    if (range.isEmpty())
        return {};
    const std::optional<ByteSpan> buffer = _buffer.take(static_cast<std::size_t>(range.size()));
    if (!buffer)
        return NBErrno{ENOMEM};
    if (!readAll(descriptor, *buffer, range.from))
        return NBErrno{EIO};
    _bytes = *buffer;
    _range = range;
    return {};
}

NBDone BlockMending::mend(int descriptor, std::int64_t start, BlockLayout old)
{
    if (start >= old.fileSize)
        return cutTo(descriptor, start);
    const ByteRange block{start, std::min(old.fileSize, start + old.blockSize)};
    const NBDone back = putBack(descriptor, block, old.blockSize);
    const NBDone cut = cutTo(descriptor, old.fileSize);
    return back ? cut : back;
}

ByteView BlockMending::keptOf(ByteRange range) const
{
    if (range.from < _range.from || range.to > _range.to)
        return {};
    return _bytes.subspan(static_cast<std::size_t>(range.from - _range.from),
                          static_cast<std::size_t>(range.size()));
}

NBDone BlockMending::putBack(int descriptor, ByteRange block, std::int64_t blockSize)
{
    const ByteView kept = keptOf(block);
    if (kept.empty())
        return {}; // one that the store can't have taken in part
    const bool isHole = block.size() == blockSize &&
                        std::all_of(kept.begin(), kept.end(), [](auto byte) { return byte == 0; });
    if (!isHole || !makeHole(descriptor, block))
        writeWhatGoes(descriptor, kept, block.from);
    const std::optional<ByteSpan> now = _check.take(kept.size());
    if (!now)
        return NBErrno{ENOMEM};
    if (!readAll(descriptor, *now, block.from) ||
        !std::equal(now->begin(), now->end(), kept.begin()))
        return NBErrno{EIO};
    return {};
}

} // namespace nimbrel
