#include "fs/Holes.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/resource.h>
#include <unistd.h>

namespace nimbrel {

namespace {

// `call` gives what a system call gives.
template <class Call>
NBDone againAfterSignal(Call call)
{
    while (call() != 0)
        if (errno != EINTR)
            return NBErrno::last();
    return {};
}

// Where the store's next data or hole is, `whence` telling which; nothing behind `from` but a hole
// is told as the file's end.
NBErrnoOr<std::int64_t> nextOnStore(int descriptor, std::int64_t from, int whence,
                                    std::int64_t fileSize)
{
    if (from >= fileSize)
        return fileSize;
    const off_t found = ::lseek(descriptor, from, whence);
    if (found >= 0)
        return std::min<std::int64_t>(found, fileSize);
    if (errno == ENXIO)
        return fileSize;
    return NBErrno::last();
}

} // namespace

std::int64_t BlockLayout::blockEnd(std::int64_t offset) const noexcept
{
    const std::int64_t start = blockStart(offset);
    if (start == offset)
        return offset;
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    return start > most - blockSize ? most : start + blockSize;
}

bool isUnsupported(NBErrno error) noexcept
{
    return error.code == EOPNOTSUPP || error.code == ENOSYS || error.code == EINVAL;
}

NBDone allocateOnStore(int descriptor, int mode, ByteRange range)
{
    return againAfterSignal(
        [&] { return ::fallocate(descriptor, mode, range.from, range.size()); });
}

NBDone reserve(int descriptor, ByteRange range)
{
    if (range.isEmpty())
        return {};
    if (const NBDone allowed = checkSizeLimit(range.to); !allowed)
        return allowed;
    const NBDone reserved = allocateOnStore(descriptor, FALLOC_FL_KEEP_SIZE, range);
    return reserved || isUnsupported(reserved.error()) ? NBDone() : reserved;
}

NBDone checkSizeLimit(std::int64_t end)
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_FSIZE, &limit) != 0)
        return NBErrno::last();
    if (limit.rlim_cur != RLIM_INFINITY && limit.rlim_cur < static_cast<rlim_t>(end))
        return NBErrno{EFBIG};
    return {};
}

NBDone truncateTo(int descriptor, std::int64_t size)
{
    return againAfterSignal([&] { return ::ftruncate(descriptor, size); });
}

NBErrnoOr<std::int64_t> seekData(int descriptor, std::int64_t offset, BlockLayout layout)
{
    if (offset < 0 || offset >= layout.fileSize)
        return NBErrno{ENXIO};
    // From the block's start: data before `offset` makes the block data, too.
    const NBErrnoOr<std::int64_t> data =
        nextOnStore(descriptor, layout.blockStart(offset), SEEK_DATA, layout.fileSize);
    if (!data)
        return isUnsupported(data.error()) ? NBErrnoOr<std::int64_t>(offset) : data;
    const std::int64_t found = std::max(offset, layout.blockStart(*data));
    return found < layout.fileSize ? NBErrnoOr<std::int64_t>(found) : NBErrno{ENXIO};
}

NBErrnoOr<std::int64_t> seekHole(int descriptor, std::int64_t offset, BlockLayout layout)
{
    if (offset < 0 || offset >= layout.fileSize)
        return NBErrno{ENXIO};
    const std::int64_t lastBlockEnd = layout.blockStart(layout.fileSize);
    std::int64_t from = layout.blockStart(offset);
    while (from < lastBlockEnd) {
        const NBErrnoOr<std::int64_t> hole =
            nextOnStore(descriptor, from, SEEK_HOLE, layout.fileSize);
        if (!hole)
            return isUnsupported(hole.error()) ? NBErrnoOr<std::int64_t>(layout.fileSize) : hole;
        const NBErrnoOr<std::int64_t> data =
            nextOnStore(descriptor, *hole, SEEK_DATA, layout.fileSize);
        if (!data)
            return data;
        const std::int64_t block = layout.blockEnd(*hole);
        if (block < lastBlockEnd && *data - block >= layout.blockSize)
            return std::max(offset, block);
        from = std::max(*data, *hole + 1);
    }
    return layout.fileSize;
}

} // namespace nimbrel
