#include "crypto/Reference.h"

#include "crypto/CHandle.h"

#include <algorithm>
#include <stdexcept>

#include <openssl/evp.h>
#include <openssl/hmac.h>

namespace nimbrel::test::reference {

namespace {

const EVP_CIPHER *cbcCipher(std::size_t keySize)
{
    return keySize == 16   ? EVP_aes_128_cbc()
           : keySize == 24 ? EVP_aes_192_cbc()
                           : EVP_aes_256_cbc();
}

const EVP_CIPHER *cfbCipher(std::size_t keySize)
{
    return keySize == 16   ? EVP_aes_128_cfb128()
           : keySize == 24 ? EVP_aes_192_cfb128()
                           : EVP_aes_256_cfb128();
}

Bytes onePass(const EVP_CIPHER *cipher, const Bytes &data, ByteView vector, ByteView key,
              Direction direction)
{
    const CHandle<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free> context(EVP_CIPHER_CTX_new());
    Bytes out(data.size() + 16);
    int written = 0;
    int rest = 0;
    if (EVP_CipherInit_ex(context.get(), cipher, nullptr, key.data(), vector.data(),
                          direction == Direction::Encrypt ? 1 : 0) != 1 ||
        EVP_CIPHER_CTX_set_padding(context.get(), 0) != 1 ||
        EVP_CipherUpdate(context.get(), out.data(), &written, data.data(),
                         static_cast<int>(data.size())) != 1 ||
        EVP_CipherFinal_ex(context.get(), out.data() + written, &rest) != 1 ||
        static_cast<std::size_t>(written) + static_cast<std::size_t>(rest) != data.size())
        throw std::runtime_error("the reference cipher failed");
    out.resize(data.size());
    return out;
}

} // namespace

Bytes hmacSha1(ByteView key, ByteView data)
{
    Bytes digest(20);
    unsigned length = 0;
    if (HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()), data.data(), data.size(),
             digest.data(), &length) == nullptr)
        throw std::runtime_error("the reference code failed");
    return digest;
}

std::uint64_t fold64(ByteView digest)
{
    std::uint64_t code = 0;
    for (std::size_t i = 0; i < 19; ++i)
        code ^= std::uint64_t{digest[i]} << (8 * (7 - i % 8));
    return code;
}

std::uint64_t mac16(ByteView data, const Key &key)
{
    const std::uint64_t code = fold64(hmacSha1(key.cipherKey(), data));
    return (code ^ code >> 16U ^ code >> 32U ^ code >> 48U) & 0xFFFFU;
}

Bytes vectorOf(std::uint64_t seed, const Key &key)
{
    Bytes text(key.material().begin(), key.material().end());
    for (unsigned shift = 0; shift < 64; shift += 8)
        text.push_back(static_cast<std::uint8_t>(seed >> shift));
    Bytes digest = hmacSha1(key.cipherKey(), text);
    digest.resize(16);
    return digest;
}

Bytes flipped(const Bytes &data)
{
    Bytes out;
    for (std::size_t start = 0; start < data.size(); start += 64)
        for (std::size_t i = std::min(start + 64, data.size()); i > start; --i)
            out.push_back(data[i - 1]);
    return out;
}

Bytes shuffled(const Bytes &data)
{
    Bytes out = data;
    for (std::size_t i = 1; i < out.size(); ++i)
        out[i] = static_cast<std::uint8_t>(out[i] ^ out[i - 1]);
    return out;
}

Bytes unshuffled(const Bytes &data)
{
    Bytes out = data;
    for (std::size_t i = out.size(); i > 1; --i)
        out[i - 1] = static_cast<std::uint8_t>(out[i - 1] ^ out[i - 2]);
    return out;
}

Bytes cbc(const Bytes &data, ByteView vector, ByteView key, Direction direction)
{
    return onePass(cbcCipher(key.size()), data, vector, key, direction);
}

Bytes cfb(const Bytes &data, ByteView vector, ByteView key, Direction direction)
{
    return onePass(cfbCipher(key.size()), data, vector, key, direction);
}

Bytes stream(const Bytes &data, std::uint64_t seed, const Key &key, Direction direction)
{
    const ByteView cipherKey = key.cipherKey();
    const Bytes first = vectorOf(seed, key);
    const Bytes second = vectorOf(seed + 1, key);
    if (direction == Direction::Encrypt) {
        const Bytes once = cfb(shuffled(data), first, cipherKey, direction);
        return cfb(shuffled(flipped(once)), second, cipherKey, direction);
    }
    const Bytes once = cfb(data, second, cipherKey, direction);
    return unshuffled(cfb(flipped(unshuffled(once)), first, cipherKey, direction));
}

Bytes run(const Bytes &data, std::size_t blockSize, std::uint64_t firstBlock, const Key &key,
          Direction direction)
{
    Bytes out;
    for (std::size_t start = 0; start < data.size(); start += blockSize) {
        const std::size_t size = std::min(blockSize, data.size() - start);
        const auto from = data.begin() + static_cast<std::ptrdiff_t>(start);
        const Bytes piece(from, from + static_cast<std::ptrdiff_t>(size));
        const std::uint64_t seed = firstBlock + start / blockSize;
        const Bytes done = size == blockSize
                               ? cbc(piece, vectorOf(seed, key), key.cipherKey(), direction)
                               : stream(piece, seed, key, direction);
        out.insert(out.end(), done.begin(), done.end());
    }
    return out;
}

} // namespace nimbrel::test::reference
