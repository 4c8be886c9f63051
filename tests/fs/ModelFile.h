#pragma once

#include "crypto/NBCryptor.h"

#include <cstdint>
#include <optional>

namespace nimbrel::test {

// An on-disk file in memory, read and written by the content path's definition, step by step, one
// block at a time, without any of its short cuts. What no read fills is zeros here, too.
class ModelFile final
{
public:
    ModelFile(const NBCryptor &cryptor, std::int64_t blockSize, Bytes disk)
        : _cryptor(cryptor), _blockSize(blockSize), _disk(std::move(disk))
    {
    }

    // The bytes given to the caller; nothing for a failure.
    [[nodiscard]] std::optional<Bytes> read(std::uint64_t size, std::int64_t offset) const;
    // The count that is reported.
    std::size_t write(ByteView buffer, std::int64_t offset);
    void setSize(std::int64_t size);

    [[nodiscard]] const Bytes &disk() const noexcept { return _disk; }

private:
    [[nodiscard]] std::int64_t fileSize() const { return static_cast<std::int64_t>(_disk.size()); }
    [[nodiscard]] Bytes scratchBlock(std::int64_t block, std::int64_t &filled) const;
    [[nodiscard]] Bytes writeBuffer(ByteView piece, std::int64_t inBlock,
                                    std::int64_t blockIndex) const;
    void pwrite(ByteView bytes, std::int64_t offset);

    const NBCryptor &_cryptor;
    std::int64_t _blockSize;
    Bytes _disk;
};

} // namespace nimbrel::test
