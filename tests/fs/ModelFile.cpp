#include "fs/ModelFile.h"

#include <algorithm>

namespace nimbrel::test {

namespace {

Bytes part(ByteView bytes, std::int64_t from, std::int64_t length)
{
    const auto piece =
        bytes.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(length));
    return {piece.begin(), piece.end()};
}

void append(Bytes &bytes, const Bytes &more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

} // namespace

std::optional<Bytes> ModelFile::read(std::uint64_t size, std::int64_t offset) const
{
    if (fileSize() <= offset)
        return Bytes();
    const std::int64_t end = std::min(offset + static_cast<std::int64_t>(size), fileSize());
    const std::int64_t lastBlock = (end - 1) / _blockSize;
    const std::int64_t firstBlock = offset / _blockSize;
    const std::int64_t inBlock = offset % _blockSize;
    const std::int64_t span = (lastBlock + 1) * _blockSize > fileSize()
                                  ? fileSize() - firstBlock * _blockSize
                                  : (lastBlock - firstBlock + 1) * _blockSize;
    const Bytes run = part(_disk, firstBlock * _blockSize, span);
    const std::optional<Bytes> plain =
        _cryptor.decryptData(run, static_cast<std::uint64_t>(span), firstBlock * _blockSize);
    if (!plain)
        return std::nullopt;
    const std::int64_t count = std::min(span, static_cast<std::int64_t>(size));
    if (inBlock + count > static_cast<std::int64_t>(plain->size()))
        return std::nullopt;
    return part(*plain, inBlock, count);
}

std::size_t ModelFile::write(ByteView buffer, std::int64_t offset)
{
    const auto size = static_cast<std::int64_t>(buffer.size());
    if (size == 0 && offset == 0)
        return 0;
    const std::int64_t lastBlock = (size + offset - 1) / _blockSize;
    const std::int64_t firstBlock = offset / _blockSize;
    const std::int64_t inBlock = offset % _blockSize;
    Bytes result;
    for (std::int64_t block = firstBlock; block <= lastBlock; ++block) {
        if (block == firstBlock) {
            const std::int64_t length = inBlock + size > _blockSize ? _blockSize - inBlock : size;
            append(result, writeBuffer(part(buffer, 0, length), inBlock, block));
            continue;
        }
        const std::int64_t position = (block - firstBlock) * _blockSize - inBlock;
        const std::int64_t length = std::min(size - position, _blockSize);
        append(result, writeBuffer(part(buffer, position, length), 0, block));
    }
    if (!result.empty())
        pwrite(result, firstBlock * _blockSize);
    return std::min(result.size(), buffer.size());
}

Bytes ModelFile::scratchBlock(std::int64_t block, std::int64_t &filled) const
{
    const Bytes had =
        read(static_cast<std::uint64_t>(_blockSize), block * _blockSize).value_or(Bytes());
    filled = static_cast<std::int64_t>(had.size());
    Bytes scratch(static_cast<std::size_t>(_blockSize));
    std::ranges::copy(had, scratch.begin());
    return scratch;
}

Bytes ModelFile::writeBuffer(ByteView piece, std::int64_t inBlock, std::int64_t blockIndex) const
{
    const std::int64_t end = inBlock + static_cast<std::int64_t>(piece.size());
    Bytes data;
    if (inBlock > 0 || (end < _blockSize && _blockSize * blockIndex + end < fileSize())) {
        std::int64_t filled = 0;
        const Bytes scratch = scratchBlock(blockIndex, filled);
        data = part(scratch, 0, inBlock);
        append(data, Bytes(piece.begin(), piece.end()));
        if (end < filled)
            append(data, part(scratch, end, filled - end));
    } else {
        data.assign(piece.begin(), piece.end());
    }
    return _cryptor.encryptBlockData(data, data.size(), blockIndex).value_or(Bytes());
}

void ModelFile::setSize(std::int64_t size)
{
    if (size <= 0 || size == fileSize()) {
        _disk.resize(static_cast<std::size_t>(size));
        return;
    }
    const std::int64_t rest = size % _blockSize;
    const bool shrinks = size < fileSize();
    const std::int64_t block = (shrinks ? size : fileSize()) / _blockSize;
    std::int64_t length = rest;
    if (!shrinks && (block + 1) * _blockSize <= size)
        length = _blockSize;
    if (shrinks ? rest == 0 : fileSize() % _blockSize == 0)
        length = 0; // none to encode anew
    std::int64_t filled = 0;
    const Bytes scratch = scratchBlock(block, filled);
    _disk.resize(static_cast<std::size_t>(size));
    if (length > 0)
        pwrite(writeBuffer(part(scratch, 0, length), 0, block), block * _blockSize);
}

void ModelFile::pwrite(ByteView bytes, std::int64_t offset)
{
    const std::size_t end = static_cast<std::size_t>(offset) + bytes.size();
    if (_disk.size() < end)
        _disk.resize(end);
    std::ranges::copy(bytes, _disk.begin() + offset);
}

} // namespace nimbrel::test
