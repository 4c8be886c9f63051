// The size stage of setAttributes.
#include "fs/NBNimbrelFS.h"

#include "fs/BlockGeometry.h"
#include "fs/FileSize.h"
#include "fs/OnDiskPath.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

namespace nimbrel {

namespace {

// A block whose length a change of size changes, and with it its form.
struct RecodedBlock
{
    std::uint64_t number;
    std::uint64_t length; // its new one
};

std::optional<RecodedBlock> recodedBlock(std::uint64_t blockSize, std::uint64_t fileSize,
                                         std::uint64_t size)
{
    const std::uint64_t rest = size % blockSize;
    if (size < fileSize)
        return rest == 0 ? std::nullopt : std::optional(RecodedBlock{size / blockSize, rest});
    if (fileSize % blockSize == 0)
        return std::nullopt;
    const std::uint64_t block = fileSize / blockSize;
    return RecodedBlock{block, (block + 1) * blockSize <= size ? blockSize : rest};
}

} // namespace

NBNimbrelFS::StageEnd NBNimbrelFS::setSize(std::int64_t size, const std::string &path,
                                           NBFileHandle *userData)
{
    if (size <= 0)
        return cut(size, path, userData);
    NBFileHandle own;
    if (userData == nullptr)
        if (NBErrnoOr<UniqueFd> opened = openOnDisk(_securePathWithPath(path), O_RDWR))
            own.descriptor = *std::move(opened);
    NBFileHandle &file = userData == nullptr ? own : *userData;

    const NBErrnoOr<std::uint64_t> fileSize = sizeOfFile(file.descriptor.get());
    if (!fileSize) {
        // Kept: a file that can't be opened or looked at ends the operation with what counts as
        // success, see QUIRKS.
        file.lastWriteError = fileSize.code();
        return NBDone();
    }
    if (*fileSize == static_cast<std::uint64_t>(size)) {
        if (own.descriptor)
            _descriptorsLeftOpen.push_back(std::move(own.descriptor));
        return cut(size, path, userData);
    }
    return changeSize(file, *fileSize, static_cast<std::uint64_t>(size));
}

// The plain system call, which leaves all content as it is.
NBNimbrelFS::StageEnd NBNimbrelFS::cut(std::int64_t size, const std::string &path,
                                       const NBFileHandle *userData)
{
    if (userData != nullptr) {
        if (::ftruncate(userData->descriptor.get(), size) != 0)
            return NBErrno::last();
        return std::nullopt;
    }
    const NBDone done = callOnPath(_securePathWithPath(path),
                                   [&](const char *item) { return ::truncate(item, size); });
    return done ? std::nullopt : StageEnd(done);
}

// A block can only be deciphered at its old length, so it is read before the cut and written after
// it. What the read doesn't fill is undefined by contract; zeros are as good as anything there, and
// no secret of this process or of another file gets to the disk.
NBNimbrelFS::StageEnd NBNimbrelFS::changeSize(NBFileHandle &file, std::uint64_t fileSize,
                                              std::uint64_t size)
{
    if (!hasBlocks())
        return NBErrno{EINVAL};
    const int descriptor = file.descriptor.get();
    const std::optional<RecodedBlock> block = recodedBlock(sizeOfBlocks(), fileSize, size);
    if (!block)
        return ::ftruncate(descriptor, static_cast<off_t>(size)) == 0 ? std::nullopt
                                                                      : StageEnd(NBErrno::last());
    const auto start = static_cast<off_t>(block->number * sizeOfBlocks());
    const std::optional<ByteSpan> scratch = _writeBuffer.take(
        std::max(block->length, bytesInBlock(sizeOfBlocks(), fileSize, block->number)));
    if (!scratch)
        return NBErrno{ENOMEM};
    const NBErrnoOr<std::size_t> had = readBlocks(descriptor, *scratch, start);
    if (!had) // nothing has been touched yet: the block's content isn't given up
        return had.error();
    std::ranges::fill(scratch->subspan(*had), std::uint8_t{0});
    if (::ftruncate(descriptor, static_cast<off_t>(size)) != 0)
        return NBErrno::last();

    const int error = rewriteBlock(descriptor, scratch->first(block->length), block->number);
    if (error == 0)
        return std::nullopt;
    file.lastWriteError = error;
    return NBErrno{0}; // failed, and nothing tells why (kept, see QUIRKS)
}

// 0, or the errno.
int NBNimbrelFS::rewriteBlock(int descriptor, ByteSpan block, std::uint64_t number) const
{
    if (encipher(block, number, block) != block.size())
        return EIO;
    const auto start = static_cast<off_t>(number * sizeOfBlocks());
    return ::pwrite(descriptor, block.data(), block.size(), start) < 0 ? errno : 0;
}

} // namespace nimbrel
