// AES by OpenSSL: contexts of one key, for processors without instructions of their own. Stays
// inside crypto/.
#pragma once

#include "crypto/CipherContext.h"

namespace nimbrel {

class LibraryAes final : public AesEngine
{
public:
    // Nothing when the library refuses, as it does for a key of another length.
    [[nodiscard]] static std::unique_ptr<LibraryAes> make(ByteView key);

    [[nodiscard]] bool encryptBlocks(ByteView data, std::size_t blockSize,
                                     std::span<const Vector> vectors, std::uint8_t *out) override;
    [[nodiscard]] bool decryptBlocks(ByteView data, std::size_t blockSize,
                                     std::span<const Vector> vectors, std::uint8_t *out) override;
    [[nodiscard]] bool encryptFeedback(ByteSpan data, const Vector &vector) override;
    [[nodiscard]] bool decryptFeedback(ByteSpan data, const Vector &vector) override;

private:
    LibraryAes(CipherContext encryption, CipherContext decryption, CipherContext codebook) noexcept;
    [[nodiscard]] bool decryptAsOneChain(ByteView data, std::size_t blockSize,
                                         std::span<const Vector> vectors, std::uint8_t *out);

    CipherContext _cbcEncryption;
    CipherContext _cbcDecryption;
    CipherContext _ecbEncryption;
};

} // namespace nimbrel
