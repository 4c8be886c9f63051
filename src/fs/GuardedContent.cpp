#include "fs/GuardedContent.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nimbrel {

namespace {

// What goes through the cipher at a time: on its way to the store it is still in the processor's
// cache.
constexpr std::size_t cachedPiece = std::size_t{128} << 10U; // bytes
constexpr int mostTries = 4;
constexpr std::int64_t storePage = 4096; // no store takes less of a page than its own blocks

const std::string noPath; // the delegate's content operations don't look at it

NBErrnoOr<struct stat> attributesOf(const NBFileHandle &file)
{
    struct stat attributes = {};
    if (::fstat(file.descriptor.get(), &attributes) != 0)
        return NBErrno::last();
    return attributes;
}

NBErrnoOr<std::int64_t> sizeOf(const NBFileHandle &file)
{
    const NBErrnoOr<struct stat> attributes = attributesOf(file);
    if (!attributes)
        return attributes.error();
    return attributes->st_size;
}

// Whether whole blocks that are replaced are kept for mending, which costs a read. A store that
// hands out space in multiples of our blocks doesn't take a part of one, unless this process's own
// limit ends inside; what is small is kept all the same.
bool isWorthKeeping(const struct stat &attributes, std::int64_t blockSize, ByteRange written)
{
    const auto granule = std::min<std::int64_t>(attributes.st_blksize, storePage);
    return granule % blockSize != 0 || written.size() < storePage || !checkSizeLimit(written.to);
}

} // namespace

GuardedContent::GuardedContent(NBNimbrelFS &delegate) : _delegate(delegate), _blocks(delegate)
{
    delegate.setReadsHolesAsZeros(delegate.settings().allowHoles);
}

// Whole blocks, and at least one.
std::size_t GuardedContent::largestPiece() const noexcept
{
    const auto block = static_cast<std::size_t>(blockSize());
    return std::max(block, cachedPiece - cachedPiece % block);
}

NBErrnoOr<std::size_t> GuardedContent::read(NBFileHandle &file, ByteSpan buffer,
                                            std::int64_t offset)
{
    if (offset < 0 || !hasBlocks())
        return NBErrno{EINVAL};
    // The usual request: whole blocks, all of which the file has.
    if (offset % blockSize() == 0 && buffer.size() <= largestPiece() &&
        buffer.size() % static_cast<std::size_t>(blockSize()) == 0)
        if (const NBErrnoOr<std::size_t> got =
                _delegate.readFileAtPath(noPath, file, buffer, offset);
            got && *got == buffer.size())
            return got;
    NBErrno error{EIO};
    std::int64_t oldSize = -1;
    for (int i = 0; i < mostTries; ++i) {
        const NBErrnoOr<std::int64_t> size = sizeOf(file);
        if (!size)
            return size.error();
        // Another program may cut the file while it is read; otherwise the failure is a true one.
        if (*size == oldSize)
            return error;
        if (*size <= offset)
            return std::size_t{0};
        oldSize = *size;
        const auto left = static_cast<std::uint64_t>(*size - offset);
        const ByteSpan wanted = buffer.first(std::min<std::uint64_t>(left, buffer.size()));
        const NBErrnoOr<std::size_t> got = readUpTo(file, wanted, offset, *size);
        if (got)
            return got;
        error = got.error();
    }
    return error;
}

// All of a range that lies in the file. A short read never passes: to the kernel it would be the
// file's end.
NBErrnoOr<std::size_t> GuardedContent::readUpTo(NBFileHandle &file, ByteSpan buffer,
                                                std::int64_t offset, std::int64_t fileSize)
{
    const BlockLayout layout{fileSize, blockSize()};
    std::size_t done = 0;
    while (done < buffer.size()) {
        const std::int64_t at = offset + static_cast<std::int64_t>(done);
        const std::int64_t start = layout.blockStart(at);
        const auto before = static_cast<std::size_t>(at - start);
        const ByteSpan piece =
            buffer.subspan(done, std::min(buffer.size() - done, largestPiece() - before));
        const auto end = at + static_cast<std::int64_t>(piece.size());
        const std::int64_t readEnd = std::min(layout.blockEnd(end), fileSize);
        // The delegate's count only tells of whole blocks, so it is asked for no other.
        NBDone got;
        if (start == at && readEnd == end) {
            got = readBlocks(file, piece, start);
        } else {
            const std::optional<ByteSpan> room =
                _composed.take(static_cast<std::size_t>(readEnd - start));
            if (!room)
                return NBErrno{ENOMEM};
            got = readBlocks(file, *room, start);
            if (got)
                std::memcpy(piece.data(), room->data() + before, piece.size());
        }
        if (!got)
            return got.error();
        done += piece.size();
    }
    return done;
}

// A run of blocks to a block's end or the file's, also from a store that gives it in parts.
NBDone GuardedContent::readBlocks(NBFileHandle &file, ByteSpan to, std::int64_t start)
{
    while (!to.empty()) {
        const NBErrnoOr<std::size_t> got = _delegate.readFileAtPath(noPath, file, to, start);
        if (!got)
            return got.code() == 0 ? NBErrno{EIO} : got.error();
        if (*got == to.size())
            return {};
        const std::size_t whole = *got - *got % static_cast<std::size_t>(blockSize());
        if (whole == 0)
            return NBErrno{EIO};
        to = to.subspan(whole);
        start += static_cast<std::int64_t>(whole);
    }
    return {};
}

NBErrnoOr<std::size_t> GuardedContent::write(NBFileHandle &file, ByteView data, std::int64_t offset)
{
    if (offset < 0 || !hasBlocks())
        return NBErrno{EINVAL};
    const auto room = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() - offset);
    if (data.size() > room)
        return NBErrno{EFBIG};
    std::size_t done = 0;
    while (done < data.size()) {
        const std::int64_t at = offset + static_cast<std::int64_t>(done);
        const auto begun = static_cast<std::size_t>(at % blockSize());
        const std::size_t size = std::min(data.size() - done, largestPiece() - begun);
        const NBErrnoOr<std::size_t> put = writePiece(file, data.subspan(done, size), at);
        if (!put && done > 0)
            return done;
        if (!put) {
            file.lastWriteError = put.code();
            return put;
        }
        done += *put;
        if (*put < size)
            return done;
    }
    return done;
}

NBErrnoOr<std::size_t> GuardedContent::writePiece(NBFileHandle &file, ByteView data,
                                                  std::int64_t offset)
{
    const NBErrnoOr<struct stat> attributes = attributesOf(file);
    if (!attributes)
        return attributes.error();
    const std::int64_t oldSize = attributes->st_size;
    const std::int64_t start = offset - offset % blockSize();
    if (start > oldSize)
        if (const NBDone grown = grow(file, oldSize, start); !grown)
            return grown.error();
    const BlockLayout layout{std::max(start, oldSize), blockSize()};
    const auto end = offset + static_cast<std::int64_t>(data.size());
    const ByteRange blocks{start, std::max(end, std::min(layout.fileSize, layout.blockEnd(end)))};
    const bool isWhole = offset == blocks.from && end == blocks.to;
    const ByteRange replaced{start, std::min(blocks.to, layout.fileSize)};
    const bool isKept =
        !replaced.isEmpty() && (!isWhole || isWorthKeeping(*attributes, blockSize(), blocks));
    const NBDone kept = _blocks.keep(file, isKept ? replaced : ByteRange{start, start});
    BlockWriter::Result result{0, kept.code()};
    if (kept) {
        const NBErrnoOr<ByteView> bytes = isWhole ? data : compose(data, offset, blocks, layout);
        result.error = bytes.code();
        if (bytes)
            result = _blocks.put(file, *bytes, start, layout);
    }
    // The part of the caller's bytes that stands on disk.
    const auto before = static_cast<std::size_t>(offset - start);
    const std::size_t done =
        result.done <= before ? 0 : std::min(result.done - before, data.size());
    if (result.error == 0 || done > 0)
        return done;
    if (start > oldSize)
        if (const NBDone undone = cut(file, start, oldSize); !undone)
            return undone.error();
    return NBErrno{result.error};
}

NBErrnoOr<ByteView> GuardedContent::compose(ByteView data, std::int64_t offset, ByteRange blocks,
                                            BlockLayout layout)
{
    const std::int64_t end = offset + static_cast<std::int64_t>(data.size());
    const std::int64_t lastStart = layout.blockStart(end - 1);
    const std::optional<ByteSpan> room = _composed.take(static_cast<std::size_t>(blocks.size()));
    if (!room)
        return NBErrno{ENOMEM};
    // The old bytes of the block at `at`; what the file doesn't have of it stays zeros.
    const auto fill = [&](std::int64_t at) -> NBDone {
        const auto position = static_cast<std::size_t>(at - blocks.from);
        const auto size = std::min(room->size() - position, static_cast<std::size_t>(blockSize()));
        const ByteSpan block = room->subspan(position, size);
        const std::int64_t old = std::clamp<std::int64_t>(layout.fileSize - at, 0, blockSize());
        std::fill(block.begin() + old, block.end(), std::uint8_t{0});
        return old == 0 ? NBDone()
                        : _blocks.readKept(block.first(static_cast<std::size_t>(old)), at);
    };
    if (offset > blocks.from || lastStart == blocks.from)
        if (const NBDone filled = fill(blocks.from); !filled)
            return filled.error();
    if (blocks.to > end && lastStart != blocks.from)
        if (const NBDone filled = fill(lastStart); !filled)
            return filled.error();
    std::memcpy(room->data() + (offset - blocks.from), data.data(), data.size());
    return ByteView(*room);
}

NBErrnoOr<std::size_t> GuardedContent::append(NBFileHandle &file, ByteView data)
{
    const NBErrnoOr<std::int64_t> size = sizeOf(file);
    if (!size)
        return size.error();
    return write(file, data, *size);
}

NBDone GuardedContent::sync(NBFileHandle &file, bool dataOnly)
{
    const int descriptor = file.descriptor.get();
    const int pending = std::exchange(file.lastWriteError, 0);
    if ((dataOnly ? ::fdatasync(descriptor) : ::fsync(descriptor)) != 0)
        return NBErrno::last();
    return pending == 0 ? NBDone() : NBErrno{pending};
}

} // namespace nimbrel
