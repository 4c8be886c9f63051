#include "fs/NBNimbrelFS.h"

#include "fs/BlockGeometry.h"
#include "fs/FileSize.h"
#include "fs/OnDiskPath.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

namespace nimbrel {

namespace {

// The count of a write, with its quirk: a failed pwrite counts as complete (kept, see QUIRKS). Its
// error only shows for sizes that 32 bits take for negative.
NBErrnoOr<std::size_t> countOfWrite(ssize_t written, std::size_t size, int error)
{
    if (written >= 0)
        return std::min(static_cast<std::size_t>(written), size);
    if (static_cast<std::int32_t>(size) < 0)
        return NBErrno{error};
    return size;
}

// One pread; what it doesn't fill is zeros, so that nobody's older bytes stand there.
NBErrnoOr<std::size_t> fetchRun(int descriptor, ByteSpan run, std::uint64_t start)
{
    const ssize_t result = ::pread(descriptor, run.data(), run.size(), static_cast<off_t>(start));
    if (result < 0)
        return NBErrno::last();
    const auto got = static_cast<std::size_t>(result);
    std::ranges::fill(run.subspan(got), std::uint8_t{0});
    return got;
}

} // namespace

NBErrnoOr<NBFileHandle> NBNimbrelFS::openFileAtPath(const std::string &path, int mode)
{
    // A file that is opened for writing must be readable: parts of blocks are read back first.
    const int flags = (mode & O_WRONLY) != 0 ? (mode & ~O_ACCMODE) | O_RDWR : mode;
    NBErrnoOr<UniqueFd> descriptor = openOnDisk(_securePathWithPath(path), flags, 0666);
    if (!descriptor)
        return descriptor.error();
    return NBFileHandle{.descriptor = *std::move(descriptor)};
}

void NBNimbrelFS::releaseFileAtPath(const std::string & /*path*/, NBFileHandle &userData)
{
    userData.descriptor.reset();
}

NBErrnoOr<std::size_t> NBNimbrelFS::readFileAtPath(const std::string & /*path*/,
                                                   NBFileHandle &userData, ByteSpan buffer,
                                                   std::int64_t offset)
{
    return readBlocks(userData.descriptor.get(), buffer, offset);
}

NBErrnoOr<std::size_t> NBNimbrelFS::readBlocks(int descriptor, ByteSpan buffer, std::int64_t offset)
{
    const NBErrnoOr<std::uint64_t> fileSize = sizeOfFile(descriptor);
    if (!fileSize)
        return fileSize.error();
    if (offset < 0 || !hasBlocks())
        return NBErrno{EINVAL};
    const auto from = static_cast<std::uint64_t>(offset);
    if (*fileSize <= from)
        return std::size_t{0};
    const BlockRun at = blockRunAt(sizeOfBlocks(), from);
    const std::uint64_t span = spanOfBlocks(sizeOfBlocks(), *fileSize, from, buffer.size());
    if (at.inBlock == 0 && span <= buffer.size())
        return readDirectly(descriptor, buffer.first(span), at.start);
    const std::optional<ByteSpan> run = _readBuffer.take(span);
    if (!run)
        return NBErrno{ENOMEM};
    const NBErrnoOr<std::size_t> got = fetchRun(descriptor, *run, at.start);
    if (!got)
        return got;
    // The count is what came from the first block's start on, not from `offset`: where it would
    // reach past the run, the read fails (kept, see QUIRKS).
    const std::size_t count = std::min(*got, buffer.size());
    if (!decipher(*run, at.start)) // counted all the same (kept, see QUIRKS); nothing is filled
        return count;
    if (at.inBlock + count > run->size())
        return NBErrno{EIO};
    std::ranges::copy(run->subspan(at.inBlock, count), buffer.begin());
    return count;
}

// The same without a copy, for a run that begins where the request does and fits it.
NBErrnoOr<std::size_t> NBNimbrelFS::readDirectly(int descriptor, ByteSpan run, std::uint64_t start)
{
    const NBErrnoOr<std::size_t> got = fetchRun(descriptor, run, start);
    if (!got)
        return got;
    const bool deciphered = decipher(run, start);
    // Noise isn't handed out as content.
    std::ranges::fill(run.subspan(deciphered ? *got : 0), std::uint8_t{0});
    return got;
}

NBErrnoOr<std::size_t> NBNimbrelFS::writeFileAtPath(const std::string & /*path*/,
                                                    NBFileHandle &userData, ByteView buffer,
                                                    std::int64_t offset)
{
    if (offset < 0 || !hasBlocks())
        return NBErrno{EINVAL};
    const std::uint64_t blockSize = sizeOfBlocks();
    const std::uint64_t start = blockRunAt(blockSize, static_cast<std::uint64_t>(offset)).start;
    const std::uint64_t end = static_cast<std::uint64_t>(offset) + buffer.size();
    if (end == start) // nothing, at the start of a block
        return std::size_t{0};

    const int descriptor = userData.descriptor.get();
    const std::uint64_t lastBlock = (end - 1) / blockSize;
    // Only a block that is replaced in part can need what is on disk.
    const bool isWhole = end % blockSize == 0 && start == static_cast<std::uint64_t>(offset);
    const NBErrnoOr<std::uint64_t> known = isWhole ? std::uint64_t{0} : sizeOfFile(descriptor);
    const std::uint64_t fileSize = known ? *known : 0;
    const std::uint64_t endOnDisk =
        isWhole ? end : lastBlock * blockSize + bytesInBlock(blockSize, fileSize, lastBlock);
    const std::optional<ByteSpan> out = _writeBuffer.take(std::max(end, endOnDisk) - start);
    if (!out)
        return NBErrno{ENOMEM};
    const NBErrnoOr<Run> run = assemble(descriptor, fileSize, buffer, offset, *out);
    if (!run)
        return run.error();
    return writeRun(userData, out->first(run->enciphered), start, buffer.size(),
                    run->plain == run->enciphered);
}

// One pwrite. What its result hides goes to the handle.
NBErrnoOr<std::size_t> NBNimbrelFS::writeRun(NBFileHandle &userData, ByteView run,
                                             std::uint64_t start, std::size_t size, bool isWhole)
{
    const ssize_t written =
        ::pwrite(userData.descriptor.get(), run.data(), run.size(), static_cast<off_t>(start));
    const int error = errno;
    if (written < 0)
        userData.lastWriteError = error;
    else if (!isWhole) // the cipher failed
        userData.lastWriteError = EIO;
    // The store took as many bytes as the caller gave, but not the whole run: a block is torn, and
    // the count can't tell. Stores do so when they run out of room.
    else if (const auto count = static_cast<std::size_t>(written);
             count < run.size() && count >= size)
        userData.lastWriteError = ENOSPC;
    return countOfWrite(written, size, error);
}

} // namespace nimbrel
