// What stood on disk where blocks are about to be replaced, to be put back.
#pragma once

#include "crypto/Bytes.h"
#include "fs/Holes.h"
#include "fs/NBErrno.h"
#include "fs/ReusedBuffer.h"

namespace nimbrel {

// A block that was replaced in part is noise in the old form and in the new one. Its bytes are kept
// as they stand on disk, so that putting them back needs no room and no cipher.
class BlockMending final
{
public:
    // Forgets what was kept before. EIO where the bytes can't be read.
    NBDone keep(int descriptor, ByteRange range);
    void keepNothing() noexcept { _range = {0, 0}; }
    // The bytes of a part of what was kept; nothing where it wasn't.
    [[nodiscard]] ByteView keptOf(ByteRange range) const;

    // Makes the file end or go on readably where the block at `start` was replaced in part: a block
    // of the old file gets its bytes back, and the file its old size; one behind the old file's end
    // is cut off. EIO where the store doesn't let.
    NBDone mend(int descriptor, std::int64_t start, BlockLayout old);

private:
    NBDone putBack(int descriptor, ByteRange block, std::int64_t blockSize);

    ReusedBuffer _buffer;
    ReusedBuffer _check;
    ByteSpan _bytes;
    ByteRange _range{0, 0};
};

} // namespace nimbrel
