// Space of files: given, taken away, looked for.
#include "fs/GuardedContent.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr std::int64_t zerosAtOnce = 256 * 1024; // bytes

NBErrnoOr<BlockLayout> layoutOf(const NBFileHandle &file, std::int64_t blockSize)
{
    struct stat attributes = {};
    if (::fstat(file.descriptor.get(), &attributes) != 0)
        return NBErrno::last();
    return BlockLayout{attributes.st_size, blockSize};
}

} // namespace

NBDone GuardedContent::allocate(NBFileHandle &file, int mode, std::int64_t offset,
                                std::int64_t length)
{
    if (offset < 0 || length <= 0 || !hasBlocks())
        return NBErrno{EINVAL};
    if (length > std::numeric_limits<std::int64_t>::max() - offset)
        return NBErrno{EFBIG};
    const ByteRange range{offset, offset + length};
    const bool keepsSize = (mode & FALLOC_FL_KEEP_SIZE) != 0;
    switch (mode & ~FALLOC_FL_KEEP_SIZE) {
    case 0:
        return provide(file, range, keepsSize);
    case FALLOC_FL_PUNCH_HOLE:
        return keepsSize ? clear(file, range, FALLOC_FL_PUNCH_HOLE) : NBErrno{EOPNOTSUPP};
    case FALLOC_FL_ZERO_RANGE:
        // The room first: a store that has none says so before anything is changed.
        if (const NBDone provided = provide(file, range, true);
            !provided && !isUnsupported(provided.error()))
            return provided;
        if (const NBDone cleared = clear(file, range, FALLOC_FL_ZERO_RANGE); !cleared)
            return cleared;
        break;
    default:
        return NBErrno{EOPNOTSUPP};
    }
    const NBErrnoOr<BlockLayout> layout = layoutOf(file, blockSize());
    if (!layout)
        return layout.error();
    return keepsSize || layout->fileSize >= range.to ? NBDone() : setSize(file, range.to);
}

// Room on the store for whole blocks, so that a later write finds it.
NBDone GuardedContent::provide(NBFileHandle &file, ByteRange range, bool keepsSize)
{
    const NBErrnoOr<BlockLayout> layout = layoutOf(file, blockSize());
    if (!layout)
        return layout.error();
    const bool grows = !keepsSize && layout->fileSize < range.to;
    if (grows)
        if (const NBDone allowed = checkSizeLimit(range.to); !allowed)
            return allowed;
    const ByteRange blocks{layout->blockStart(range.from), layout->blockEnd(range.to)};
    const NBDone room = allocateOnStore(file.descriptor.get(), FALLOC_FL_KEEP_SIZE, blocks);
    return room && grows ? setSize(file, range.to) : room;
}

// Makes a range of the file zeros: its whole blocks on the store where they may be holes, all else
// by writes.
NBDone GuardedContent::clear(NBFileHandle &file, ByteRange range, int storeMode)
{
    const NBErrnoOr<BlockLayout> layout = layoutOf(file, blockSize());
    if (!layout)
        return layout.error();
    range.to = std::min(range.to, layout->fileSize);
    const ByteRange whole{layout->blockEnd(range.from), layout->blockStart(range.to)};
    if (whole.isEmpty() || !_delegate.readsHolesAsZeros())
        return writeZeros(file, range);
    // The edges first: only they can fail for want of room.
    if (const NBDone before = writeZeros(file, {range.from, whole.from}); !before)
        return before;
    if (const NBDone behind = writeZeros(file, {whole.to, range.to}); !behind)
        return behind;
    const NBDone done =
        allocateOnStore(file.descriptor.get(), storeMode | FALLOC_FL_KEEP_SIZE, whole);
    return done || !isUnsupported(done.error()) ? done : writeZeros(file, whole);
}

NBDone GuardedContent::writeZeros(NBFileHandle &file, ByteRange range)
{
    if (range.isEmpty())
        return {};
    const Bytes zeros(static_cast<std::size_t>(std::min(range.size(), zerosAtOnce)));
    while (!range.isEmpty()) {
        const auto size =
            std::min<std::uint64_t>(zeros.size(), static_cast<std::uint64_t>(range.size()));
        const NBErrnoOr<std::size_t> put = write(file, ByteView(zeros).first(size), range.from);
        if (!put)
            return put.error();
        range.from += static_cast<std::int64_t>(*put);
    }
    return {};
}

NBErrnoOr<std::int64_t> GuardedContent::seek(NBFileHandle &file, std::int64_t offset, int whence)
{
    if ((whence != SEEK_DATA && whence != SEEK_HOLE) || !hasBlocks())
        return NBErrno{EINVAL};
    const NBErrnoOr<BlockLayout> layout = layoutOf(file, blockSize());
    if (!layout)
        return layout.error();
    if (offset < 0 || offset >= layout->fileSize)
        return NBErrno{ENXIO};
    // Where holes read as noise there are none.
    if (!_delegate.readsHolesAsZeros())
        return whence == SEEK_DATA ? offset : layout->fileSize;
    const int descriptor = file.descriptor.get();
    return whence == SEEK_DATA ? seekData(descriptor, offset, *layout)
                               : seekHole(descriptor, offset, *layout);
}

} // namespace nimbrel
