#include "fs/BlockWriter.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace nimbrel {

namespace {

constexpr int mostTries = 8;

const std::string noPath; // the delegate's content operations don't look at it

// Why a store took only a part, which the short count doesn't tell: asks it for one more byte of a
// block that is put back or cut off anyway. 0 when it takes that byte.
int whyCut(int descriptor, std::int64_t offset)
{
    const std::uint8_t byte = 0;
    return ::pwrite(descriptor, &byte, 1, offset) == 1 ? 0 : errno;
}

} // namespace

NBDone BlockWriter::read(NBFileHandle &file, ByteSpan to, std::int64_t start)
{
    const NBErrnoOr<std::size_t> got = _delegate.readFileAtPath(noPath, file, to, start);
    return got && *got == to.size() ? NBDone() : NBErrno{EIO};
}

NBDone BlockWriter::keep(NBFileHandle &file, ByteRange range)
{
    return _mending.keep(file.descriptor.get(), range);
}

NBDone BlockWriter::readKept(ByteSpan to, std::int64_t start)
{
    const ByteView kept = _mending.keptOf({start, start + static_cast<std::int64_t>(to.size())});
    if (kept.size() != to.size())
        return NBErrno{EIO};
    std::ranges::copy(kept, to.begin());
    return _delegate.decipherBlocks(to, start) ? NBDone() : NBErrno{EIO};
}

BlockWriter::Taken BlockWriter::offer(NBFileHandle &file, ByteView blocks, std::int64_t start)
{
    const int pending = std::exchange(file.lastWriteError, 0);
    const NBErrnoOr<std::size_t> put = _delegate.writeFileAtPath(noPath, file, blocks, start);
    const int refused = std::exchange(file.lastWriteError, pending);
    if (!put)
        return {0, put.code() == 0 ? EIO : put.code()};
    return refused == 0 ? Taken{*put, 0} : Taken{0, refused};
}

BlockWriter::Result BlockWriter::put(NBFileHandle &file, ByteView blocks, std::int64_t start,
                                     BlockLayout old)
{
    const auto blockSize = static_cast<std::size_t>(old.blockSize);
    const int descriptor = file.descriptor.get();
    std::size_t done = 0;
    int tries = 0;
    int error = 0;
    while (tries < mostTries && (error == 0 || error == EINTR)) {
        const std::int64_t at = start + static_cast<std::int64_t>(done);
        const Taken taken = offer(file, blocks.subspan(done), at);
        if (taken.error == 0 && taken.count == blocks.size() - done)
            return {blocks.size(), 0};
        const std::size_t whole = taken.count - taken.count % blockSize;
        done += whole;
        error = taken.error;
        if (whole > 0) {
            tries = 0;
            continue;
        }
        ++tries;
        if (error == 0)
            error = whyCut(descriptor, at + static_cast<std::int64_t>(taken.count));
    }
    if (!_mending.mend(descriptor, start + static_cast<std::int64_t>(done), old))
        return {done, EIO};
    // A store with room for a byte here and there, but never for a block, is full.
    return {done, error == 0 ? ENOSPC : error};
}

} // namespace nimbrel
