#include "crypto/CipherContexts.h"

#include <algorithm>
#include <string>
#include <utility>

#include <openssl/core_names.h>
#include <openssl/params.h>

namespace nimbrel {

namespace {

using Cipher = CHandle<EVP_CIPHER, EVP_CIPHER_free>;
using Mac = CHandle<EVP_MAC, EVP_MAC_free>;

// The library's calls take int lengths.
constexpr std::size_t longestUpdate = std::size_t{1} << 30U;

Cipher fetchCipher(const char *name)
{
    return Cipher(EVP_CIPHER_fetch(nullptr, name, nullptr));
}

// Looking an algorithm up by its name costs more than using it: once a process.
struct Ciphers
{
    Cipher cbc128 = fetchCipher("AES-128-CBC");
    Cipher cbc192 = fetchCipher("AES-192-CBC");
    Cipher cbc256 = fetchCipher("AES-256-CBC");
    Cipher ecb128 = fetchCipher("AES-128-ECB");
    Cipher ecb192 = fetchCipher("AES-192-ECB");
    Cipher ecb256 = fetchCipher("AES-256-ECB");
};

const EVP_CIPHER *cipherFor(CipherContext::Form form, std::size_t keySize)
{
    static const Ciphers ciphers;
    const bool codebook = form == CipherContext::Form::EcbEncryption;
    switch (keySize) {
    case 16:
        return codebook ? ciphers.ecb128.get() : ciphers.cbc128.get();
    case 24:
        return codebook ? ciphers.ecb192.get() : ciphers.cbc192.get();
    case 32:
        return codebook ? ciphers.ecb256.get() : ciphers.cbc256.get();
    default:
        return nullptr;
    }
}

} // namespace

std::optional<CipherContext> CipherContext::make(Form form, ByteView key)
{
    const EVP_CIPHER *cipher = cipherFor(form, key.size());
    if (cipher == nullptr)
        return std::nullopt;
    Handle handle(EVP_CIPHER_CTX_new());
    const int encrypts = form == Form::CbcDecryption ? 0 : 1;
    if (!handle ||
        EVP_CipherInit_ex2(handle.get(), cipher, key.data(), nullptr, encrypts, nullptr) != 1 ||
        EVP_CIPHER_CTX_set_padding(handle.get(), 0) != 1)
        return std::nullopt;
    return CipherContext(std::move(handle));
}

bool CipherContext::start(const Vector &vector)
{
    return EVP_CipherInit_ex2(_handle.get(), nullptr, nullptr, vector.data(), -1, nullptr) == 1;
}

bool CipherContext::update(ByteView in, std::uint8_t *out)
{
    // An incomplete cipher block would stay in the context and shift what comes after it.
    if (in.size() % cipherBlock != 0)
        return false;
    while (!in.empty()) {
        const ByteView part = in.first(std::min(longestUpdate, in.size()));
        int written = 0;
        if (EVP_CipherUpdate(_handle.get(), out, &written, part.data(),
                             static_cast<int>(part.size())) != 1 ||
            static_cast<std::size_t>(written) != part.size())
            return false;
        in = in.subspan(part.size());
        out += part.size();
    }
    return true;
}

CipherContexts::CipherContexts(CipherContext encryption, CipherContext decryption,
                               CipherContext codebook, MacHandle mac) noexcept
    : cbcEncryption(std::move(encryption)), cbcDecryption(std::move(decryption)),
      ecbEncryption(std::move(codebook)), _mac(std::move(mac))
{
}

CipherContexts::MacHandle CipherContexts::makeMac(ByteView key)
{
    static const Mac algorithm(EVP_MAC_fetch(nullptr, OSSL_MAC_NAME_HMAC, nullptr));
    if (!algorithm)
        return nullptr;
    MacHandle mac(EVP_MAC_CTX_new(algorithm.get()));
    std::string digest = OSSL_DIGEST_NAME_SHA1;
    const std::array<OSSL_PARAM, 2> parameters = {
        OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, digest.data(), 0),
        OSSL_PARAM_construct_end()};
    if (!mac || EVP_MAC_init(mac.get(), key.data(), key.size(), parameters.data()) != 1)
        return nullptr;
    return mac;
}

std::unique_ptr<CipherContexts> CipherContexts::forKey(ByteView key)
{
    auto encryption = CipherContext::make(CipherContext::Form::CbcEncryption, key);
    auto decryption = CipherContext::make(CipherContext::Form::CbcDecryption, key);
    auto codebook = CipherContext::make(CipherContext::Form::EcbEncryption, key);
    MacHandle mac = makeMac(key);
    if (!encryption || !decryption || !codebook || !mac)
        return nullptr;
    return std::unique_ptr<CipherContexts>(new CipherContexts(
        std::move(*encryption), std::move(*decryption), std::move(*codebook), std::move(mac)));
}

std::optional<MacDigest> CipherContexts::hmac(ByteView first, ByteView second)
{
    MacDigest digest{};
    std::size_t length = 0;
    // Without a key the context starts again with the one it has: cheaper than a copy of it.
    if (EVP_MAC_init(_mac.get(), nullptr, 0, nullptr) != 1 ||
        EVP_MAC_update(_mac.get(), first.data(), first.size()) != 1 ||
        EVP_MAC_update(_mac.get(), second.data(), second.size()) != 1 ||
        EVP_MAC_final(_mac.get(), digest.data(), &length, digest.size()) != 1 ||
        length != digest.size())
        return std::nullopt;
    return digest;
}

} // namespace nimbrel
