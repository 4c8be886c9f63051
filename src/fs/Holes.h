// Space of a file on its store: reserved, given back, and where there is none.
#pragma once

#include "fs/NBErrno.h"

#include <cstdint>

namespace nimbrel {

// The bytes from `from` to just before `to`, counted from a file's start.
struct ByteRange
{
    std::int64_t from;
    std::int64_t to;

    [[nodiscard]] bool isEmpty() const noexcept { return from >= to; }
    [[nodiscard]] std::int64_t size() const noexcept { return to - from; }
};

// What lies in one file, in its own terms.
struct BlockLayout
{
    std::int64_t fileSize;
    std::int64_t blockSize;

    [[nodiscard]] std::int64_t blockStart(std::int64_t offset) const noexcept
    {
        return offset - offset % blockSize;
    }
    // The offset itself where a block starts there; never beyond what an offset can be.
    [[nodiscard]] std::int64_t blockEnd(std::int64_t offset) const noexcept;
};

// True for a store's "I don't know how", which is no reason to fail where there is another way.
[[nodiscard]] bool isUnsupported(NBErrno error) noexcept;

// fallocate(2), again after a signal.
NBDone allocateOnStore(int descriptor, int mode, ByteRange range);

// Makes sure that these bytes can be written: ENOSPC and the like before anything is changed. The
// file's size stays. A store that can't reserve is taken at its word.
NBDone reserve(int descriptor, ByteRange range);

// EFBIG where this process may not write up to `end` (RLIMIT_FSIZE).
NBDone checkSizeLimit(std::int64_t end);

// ftruncate(2), again after a signal.
NBDone truncateTo(int descriptor, std::int64_t size);

// lseek(2) with SEEK_DATA or SEEK_HOLE in whole blocks: a block with any data in it is data, and so
// is a short last one. Everything is data where the store can't tell. ENXIO from the file's end on.
NBErrnoOr<std::int64_t> seekData(int descriptor, std::int64_t offset, BlockLayout layout);
NBErrnoOr<std::int64_t> seekHole(int descriptor, std::int64_t offset, BlockLayout layout);

} // namespace nimbrel
