#include "crypto/CipherContext.h"

#include <algorithm>

namespace nimbrel {

namespace {

using Cipher = CHandle<EVP_CIPHER, EVP_CIPHER_free>;

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

} // namespace nimbrel
