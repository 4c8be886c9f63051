#include "crypto/LibraryAes.h"

#include "crypto/LibraryFeedback.h"
#include "crypto/LibraryLanes.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace nimbrel {

namespace {

constexpr std::size_t longestChain = 32; // blocks

void exclusiveOr(std::uint8_t *bytes, const std::uint8_t *mask) noexcept
{
    for (std::size_t i = 0; i < cipherBlock; ++i)
        bytes[i] = static_cast<std::uint8_t>(bytes[i] ^ mask[i]);
}

} // namespace

LibraryAes::LibraryAes(CipherContext encryption, CipherContext decryption,
                       CipherContext codebook) noexcept
    : _cbcEncryption(std::move(encryption)), _cbcDecryption(std::move(decryption)),
      _ecbEncryption(std::move(codebook))
{
}

std::unique_ptr<LibraryAes> LibraryAes::make(ByteView key)
{
    auto encryption = CipherContext::make(CipherContext::Form::CbcEncryption, key);
    auto decryption = CipherContext::make(CipherContext::Form::CbcDecryption, key);
    auto codebook = CipherContext::make(CipherContext::Form::EcbEncryption, key);
    if (!encryption || !decryption || !codebook)
        return nullptr;
    return std::unique_ptr<LibraryAes>(
        new LibraryAes(std::move(*encryption), std::move(*decryption), std::move(*codebook)));
}

bool LibraryAes::encryptBlocks(ByteView data, std::size_t blockSize,
                               std::span<const Vector> vectors, std::uint8_t *out)
{
    while (!vectors.empty()) {
        const std::size_t count = std::min(LibraryLanes::most, vectors.size());
        const ByteView part = data.first(count * blockSize);
        const bool good =
            count == 1
                ? _cbcEncryption.start(vectors.front()) && _cbcEncryption.update(part, out)
                : LibraryLanes(part, blockSize, vectors.first(count), out).encrypt(_ecbEncryption);
        if (!good)
            return false;
        data = data.subspan(part.size());
        out += part.size();
        vectors = vectors.subspan(count);
    }
    return true;
}

bool LibraryAes::decryptBlocks(ByteView data, std::size_t blockSize,
                               std::span<const Vector> vectors, std::uint8_t *out)
{
    while (!vectors.empty()) {
        const std::size_t count = std::min(longestChain, vectors.size());
        const ByteView part = data.first(count * blockSize);
        if (!decryptAsOneChain(part, blockSize, vectors.first(count), out))
            return false;
        data = data.subspan(part.size());
        out += part.size();
        vectors = vectors.subspan(count);
    }
    return true;
}

// The library decrypts a long chain in parallel. Only the first cipher block of each block is then
// wrong: it was chained to the end of the block before instead of to its own vector.
bool LibraryAes::decryptAsOneChain(ByteView data, std::size_t blockSize,
                                   std::span<const Vector> vectors, std::uint8_t *out)
{
    std::array<Vector, longestChain> ends;
    for (std::size_t i = 1; i < vectors.size(); ++i)
        std::memcpy(ends[i].data(), data.data() + i * blockSize - cipherBlock, cipherBlock);
    if (!_cbcDecryption.start(vectors.front()) || !_cbcDecryption.update(data, out))
        return false;
    for (std::size_t i = 1; i < vectors.size(); ++i) {
        exclusiveOr(out + i * blockSize, ends[i].data());
        exclusiveOr(out + i * blockSize, vectors[i].data());
    }
    return true;
}

bool LibraryAes::encryptFeedback(ByteSpan data, const Vector &vector)
{
    return _cbcEncryption.start(Vector{}) && libraryFeedback(data, vector, _cbcEncryption);
}

bool LibraryAes::decryptFeedback(ByteSpan data, const Vector &vector)
{
    return libraryFeedback(data, vector, _ecbEncryption);
}

} // namespace nimbrel
