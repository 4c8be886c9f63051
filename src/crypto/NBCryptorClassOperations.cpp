// The operations that any key can do, without a folder.
#include "crypto/BlockRuns.h"
#include "crypto/CipherContexts.h"
#include "crypto/NBCryptor.h"
#include "crypto/StreamForm.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace nimbrel {

namespace {

using SeedBytes = std::array<std::uint8_t, 8>;

// Low byte first.
SeedBytes seedBytes(std::uint64_t seed) noexcept
{
    SeedBytes bytes{};
    for (std::uint8_t &byte : bytes) {
        byte = static_cast<std::uint8_t>(seed);
        seed >>= 8U;
    }
    return bytes;
}

// Eight bytes as a number whose high byte is the first one, on any machine.
std::uint64_t bigEndian(const std::uint8_t *bytes) noexcept
{
    std::uint64_t number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return std::endian::native == std::endian::big ? number : __builtin_bswap64(number);
}

// The digest's bytes but the last, laid over eight bytes that are read high byte first.
std::uint64_t folded(const MacDigest &digest) noexcept
{
    const std::uint64_t rest = std::uint64_t{digest[16]} << 56U | std::uint64_t{digest[17]} << 48U |
                               std::uint64_t{digest[18]} << 40U;
    return bigEndian(digest.data()) ^ bigEndian(digest.data() + 8) ^ rest;
}

} // namespace

bool NBCryptor::streamCrypt(ByteSpan data, std::uint64_t iv, const NBEncryptionKey &key,
                            CryptMode mode)
{
    const std::optional<Vector> first = getIv(iv, key);
    const std::optional<Vector> second = getIv(iv + 1, key);
    const auto cryptStream = mode == CryptMode::Decrypt ? decryptStream : encryptStream;
    return first && second && cryptStream(data, {*first, *second}, key.contexts());
}

bool NBCryptor::blockCrypt(ByteSpan data, std::uint64_t iv, const NBEncryptionKey &key,
                           CryptMode mode)
{
    const std::optional<Vector> vector = getIv(iv, key);
    const auto cryptBlocks = mode == CryptMode::Decrypt ? decryptBlocks : encryptBlocks;
    return vector && cryptBlocks(data, data.size(), {&*vector, 1}, data.data(), key.contexts());
}

std::optional<NBCryptor::Vector> NBCryptor::getIv(std::uint64_t seed, const NBEncryptionKey &key)
{
    const MacDigest digest = key.contexts().hmac().digest(key.ivData(), seedBytes(seed));
    Vector vector;
    std::copy_n(digest.begin(), vector.size(), vector.begin());
    return vector;
}

std::optional<std::uint64_t> NBCryptor::mac64(ByteView data, const NBEncryptionKey &key)
{
    return folded(key.contexts().hmac().digest(data));
}

std::optional<std::uint64_t> NBCryptor::mac32(ByteView data, const NBEncryptionKey &key)
{
    const std::optional<std::uint64_t> code = mac64(data, key);
    if (!code)
        return std::nullopt;
    return (*code >> 32U) ^ (*code & 0xFFFFFFFFU);
}

std::optional<std::uint64_t> NBCryptor::mac16(ByteView data, const NBEncryptionKey &key)
{
    const std::optional<std::uint64_t> code = mac32(data, key);
    if (!code)
        return std::nullopt;
    return (*code >> 16U) ^ (*code & 0xFFFFU);
}

} // namespace nimbrel
