#include "crypto/NBCryptor.h"

#include "crypto/Base64.h"
#include "crypto/BlockRuns.h"
#include "crypto/GrowingPiece.h"
#include "crypto/RandomBytes.h"
#include "crypto/StreamForm.h"
#include "crypto/VectorTable.h"

#include <algorithm>
#include <utility>

namespace nimbrel {

namespace {

constexpr std::size_t freshSaltSize = 20;
constexpr std::size_t blockBatch = 32; // blocks whose vectors are looked up at a time

std::int64_t keySizeOf(const NBCryptorSettings &settings)
{
    return settings.keySize < 1 ? 256 : settings.keySize;
}

std::optional<Bytes> freshSalt()
{
    const std::optional<SecureBuffer> random = dataWithRandomBytesAndLength(freshSaltSize);
    if (!random)
        return std::nullopt;
    return Bytes(random->bytes().begin(), random->bytes().end());
}

} // namespace

NBCryptor::NBCryptor(NBEncryptionKey key, Bytes salt, const NBCryptorSettings &settings)
    : _checkKey(settings.checkKey), _blockSize(static_cast<std::uint64_t>(settings.blockSize)),
      _key(std::move(key)), _salt(std::move(salt)),
      _kdfIterations(static_cast<std::uint64_t>(settings.kdfIterations)),
      _vectors(std::make_unique<VectorTable>()), _lastPiece(std::make_unique<GrowingPiece>())
{
}

NBCryptor::~NBCryptor() = default;
NBCryptor::NBCryptor(NBCryptor &&) noexcept = default;
NBCryptor &NBCryptor::operator=(NBCryptor &&) noexcept = default;

std::optional<NBCryptor> NBCryptor::withKeySize(const NBCryptorSettings &settings)
{
    std::optional<Bytes> salt = freshSalt();
    std::optional<NBEncryptionKey> key =
        NBEncryptionKey::randomWithKeySize(keySizeOf(settings), settings.kdfIterations);
    if (!salt || !key)
        return std::nullopt;
    return NBCryptor(std::move(*key), std::move(*salt), settings);
}

std::optional<NBCryptor> NBCryptor::withPassphrase(std::string_view passphrase,
                                                   const NBCryptorSettings &settings)
{
    std::optional<Bytes> salt =
        settings.saltData ? dataWithBase64String(*settings.saltData) : freshSalt();
    if (!salt)
        return std::nullopt;
    const bool fresh = settings.encodedKeyData.empty() && !settings.checkKey;
    std::optional<NBEncryptionKey> key =
        fresh ? NBEncryptionKey::randomWithKeySize(keySizeOf(settings), settings.kdfIterations)
              : NBEncryptionKey::withPassphrase(passphrase, settings.encodedKeyData, *salt,
                                                keySizeOf(settings), settings.kdfIterations,
                                                settings.checkKey);
    if (!key)
        return std::nullopt;
    return NBCryptor(std::move(*key), std::move(*salt), settings);
}

std::optional<NBCryptor> NBCryptor::copy() const
{
    std::optional<NBEncryptionKey> key = _key.copy();
    if (!key)
        return std::nullopt;
    NBCryptorSettings settings;
    settings.blockSize = static_cast<std::int64_t>(_blockSize);
    settings.kdfIterations = static_cast<std::int64_t>(_kdfIterations);
    settings.checkKey = _checkKey;
    return NBCryptor(std::move(*key), _salt, settings);
}

std::optional<std::string> NBCryptor::writeKeyWithPassphrase(std::string_view passphrase) const
{
    return _key.write(passphrase, _salt, static_cast<std::int64_t>(_kdfIterations));
}

std::optional<Bytes> NBCryptor::crypt(ByteView data, CryptMode mode) const
{
    return crypt(data, data.size(), ByteOffset{0}, mode);
}

std::optional<Bytes> NBCryptor::crypt(ByteView data, std::uint64_t size, ByteOffset offset,
                                      CryptMode mode) const
{
    if (_blockSize == 0 || size > data.size())
        return std::nullopt;
    Bytes out(size);
    const std::uint64_t firstBlock = static_cast<std::uint64_t>(offset.value) / _blockSize;
    if (!cryptRun(data.first(size), firstBlock, out, mode))
        return std::nullopt;
    return out;
}

std::optional<Bytes> NBCryptor::crypt(ByteView data, std::uint64_t size, BlockIndex blockIdx,
                                      CryptMode mode) const
{
    if (_blockSize == 0)
        return std::nullopt;
    Bytes out(data.begin(), data.end());
    const auto seed = static_cast<std::uint64_t>(blockIdx.value);
    const bool good =
        size == _blockSize ? blockCrypt(out, seed, _key, mode) : cryptPiece(out, seed, mode);
    if (!good)
        return std::nullopt;
    return out;
}

std::optional<Bytes> NBCryptor::encrypt(ByteView data) const
{
    return crypt(data, CryptMode::Encrypt);
}

std::optional<Bytes> NBCryptor::decrypt(ByteView data) const
{
    return crypt(data, CryptMode::Decrypt);
}

std::optional<Bytes> NBCryptor::encryptData(ByteView data, std::uint64_t size,
                                            std::int64_t offset) const
{
    return crypt(data, size, ByteOffset{offset}, CryptMode::Encrypt);
}

std::optional<Bytes> NBCryptor::decryptData(ByteView data, std::uint64_t size,
                                            std::int64_t offset) const
{
    return crypt(data, size, ByteOffset{offset}, CryptMode::Decrypt);
}

std::optional<Bytes> NBCryptor::encryptBlockData(ByteView data, std::uint64_t size,
                                                 std::int64_t blockIdx) const
{
    return crypt(data, size, BlockIndex{blockIdx}, CryptMode::Encrypt);
}

bool NBCryptor::encryptRun(ByteView data, std::uint64_t firstBlock, ByteSpan out) const
{
    return cryptRun(data, firstBlock, out, CryptMode::Encrypt);
}

bool NBCryptor::decryptRun(ByteView data, std::uint64_t firstBlock, ByteSpan out) const
{
    return cryptRun(data, firstBlock, out, CryptMode::Decrypt);
}

bool NBCryptor::cryptRun(ByteView data, std::uint64_t firstBlock, ByteSpan out,
                         CryptMode mode) const
{
    if (_blockSize == 0 || out.size() != data.size())
        return false;
    const std::uint64_t blocks = data.size() / _blockSize;
    const std::size_t wholeSize = blocks * _blockSize;
    if (!cryptWholeBlocks(data.first(wholeSize), firstBlock, out.data(), mode))
        return false;
    const ByteView rest = data.subspan(wholeSize);
    const ByteSpan restOut = out.subspan(wholeSize);
    if (rest.empty())
        return true;
    if (restOut.data() != rest.data())
        std::copy(rest.begin(), rest.end(), restOut.begin());
    const std::uint64_t seed = firstBlock + blocks;
    if (mode == CryptMode::Decrypt)
        return cryptPiece(restOut, seed, mode);
    return _lastPiece->encrypt(restOut, seed, _vectors->ofStream(seed, _key), _key.contexts());
}

bool NBCryptor::cryptWholeBlocks(ByteView data, std::uint64_t firstBlock, std::uint8_t *out,
                                 CryptMode mode) const
{
    const auto cryptBlocks = mode == CryptMode::Decrypt ? decryptBlocks : encryptBlocks;
    std::array<Vector, blockBatch> kept;
    while (!data.empty()) {
        const std::size_t count = std::min<std::size_t>(blockBatch, data.size() / _blockSize);
        const std::span<Vector> vectors = std::span(kept).first(count);
        const ByteView part = data.first(count * _blockSize);
        _vectors->fill(firstBlock, vectors, _key);
        if (!cryptBlocks(part, _blockSize, vectors, out, _key.contexts()))
            return false;
        data = data.subspan(part.size());
        out += part.size();
        firstBlock += count;
    }
    return true;
}

bool NBCryptor::cryptPiece(ByteSpan data, std::uint64_t seed, CryptMode mode) const
{
    const StreamVectors vectors = _vectors->ofStream(seed, _key);
    const auto cryptStream = mode == CryptMode::Decrypt ? decryptStream : encryptStream;
    return cryptStream(data, vectors, _key.contexts());
}

} // namespace nimbrel
