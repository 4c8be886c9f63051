// Enciphers the file content and the names of one encrypted folder.
#pragma once

#include "crypto/NBEncryptionKey.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

class GrowingPiece; // the last short piece, for the next append; stays inside crypto/
class VectorTable;  // the first vectors of a volume, kept; stays inside crypto/

struct NBCryptorSettings
{
    std::string_view encodedKeyData = {};          // base64; empty: no blob, the key is a fresh one
    std::int64_t keySize = 256;                    // bits; below 1 counts as 256
    std::int64_t blockSize = 4096;                 // bytes
    std::optional<std::string_view> saltData = {}; // base64; nothing: 20 fresh random bytes
    std::int64_t kdfIterations = 5000;
    bool checkKey = true;
};

// Two of the three forms of crypt differ only by what their number means.
struct BlockIndex
{
    std::int64_t value;
};
struct ByteOffset
{
    std::int64_t value;
};

enum class CryptMode : std::int32_t
{
    Decrypt = 0,
    Encrypt = 1
};

// A block's form follows from its length alone: a whole block takes the block cipher, a shorter
// one the stream cipher, and the block's number is its whole vector seed. Not thread-safe: a
// mounted folder calls it one at a time.
class NBCryptor final
{
public:
    using Vector = std::array<std::uint8_t, 16>;

    // initWithKeySize:blockSize:kdfIterations:checkKey:
    // A new random key and salt; `encodedKeyData` and `saltData` are not looked at. Nothing when
    // the random generator fails.
    [[nodiscard]] static std::optional<NBCryptor> withKeySize(const NBCryptorSettings &settings);

    // initWithPassphrase:encodedKeyData:keySize:blockSize:saltData:kdfIterations:checkKey:
    // Nothing when the passphrase doesn't open the key, which only a key check can tell. Without a
    // blob and without a key check the key is a fresh random one.
    [[nodiscard]] static std::optional<NBCryptor> withPassphrase(std::string_view passphrase,
                                                                 const NBCryptorSettings &settings);

    // The same engine with contexts of its own, for another thread; costs no derivation. Nothing
    // when the library refuses.
    [[nodiscard]] std::optional<NBCryptor> copy() const;

    ~NBCryptor();
    NBCryptor(NBCryptor &&) noexcept;
    NBCryptor &operator=(NBCryptor &&) noexcept;
    NBCryptor(const NBCryptor &) = delete;
    NBCryptor &operator=(const NBCryptor &) = delete;

    // writeKeyWithPassphrase:
    // The encoded key blob (base64) under `passphrase`, with this folder's salt and iterations.
    [[nodiscard]] std::optional<std::string>
    writeKeyWithPassphrase(std::string_view passphrase) const;

    // crypt:mode:
    // A whole buffer that starts at block 0; the result has its length. Nothing on failure.
    [[nodiscard]] std::optional<Bytes> crypt(ByteView data, CryptMode mode) const;
    // crypt:size:offset:mode:
    // `size` bytes of a run of blocks whose first one holds byte `offset`; `data` has at least
    // `size` bytes and begins at that block's start.
    [[nodiscard]] std::optional<Bytes> crypt(ByteView data, std::uint64_t size, ByteOffset offset,
                                             CryptMode mode) const;
    // crypt:size:blockIdx:mode:
    // One piece: all of `data` is crypted, `size` only decides between block and stream form.
    [[nodiscard]] std::optional<Bytes> crypt(ByteView data, std::uint64_t size, BlockIndex blockIdx,
                                             CryptMode mode) const;
    [[nodiscard]] std::optional<Bytes> encrypt(ByteView data) const;
    [[nodiscard]] std::optional<Bytes> decrypt(ByteView data) const;
    [[nodiscard]] std::optional<Bytes> encryptData(ByteView data, std::uint64_t size,
                                                   std::int64_t offset) const;
    [[nodiscard]] std::optional<Bytes> decryptData(ByteView data, std::uint64_t size,
                                                   std::int64_t offset) const;
    [[nodiscard]] std::optional<Bytes> encryptBlockData(ByteView data, std::uint64_t size,
                                                        std::int64_t blockIdx) const;

    // The forms that the filesystem's data path takes: a run of blocks, the last one possibly
    // short, whose first block has the number `firstBlock`; nothing is allocated. `out` has the
    // length of `data` and is `data` itself or apart from it. False on failure, with `out`
    // undefined. Bit for bit what encryptData and decryptData give.
    [[nodiscard]] bool encryptRun(ByteView data, std::uint64_t firstBlock, ByteSpan out) const;
    [[nodiscard]] bool decryptRun(ByteView data, std::uint64_t firstBlock, ByteSpan out) const;

    // encodeString:
    // The stored form of one name, in the file-name alphabet. Nothing on failure.
    [[nodiscard]] std::optional<std::string> encodeString(std::string_view string) const;
    // decodeString:
    // Nothing when the stored name's check value doesn't match or the result isn't UTF-8: the name
    // isn't one of ours.
    [[nodiscard]] std::optional<std::string> decodeString(std::string_view string) const;

    // The same for hot paths: nothing is allocated where the caller's string has the room.
    // encodeName leaves what is there and appends; false on failure, with nothing appended.
    // decodeName replaces; false where decodeString gives nothing, with `plain` empty. The view
    // never lies in the string.
    [[nodiscard]] bool encodeName(std::string_view plain, std::string &appendedTo) const;
    [[nodiscard]] bool decodeName(std::string_view stored, std::string &plain) const;

    // The class operations, in place; the key is any key. False on failure, data half processed.
    [[nodiscard]] static bool streamCrypt(ByteSpan data, std::uint64_t iv,
                                          const NBEncryptionKey &key, CryptMode mode);
    // `data` is a whole number of cipher blocks of 16 bytes.
    [[nodiscard]] static bool blockCrypt(ByteSpan data, std::uint64_t iv,
                                         const NBEncryptionKey &key, CryptMode mode);
    [[nodiscard]] static std::optional<Vector> getIv(std::uint64_t seed,
                                                     const NBEncryptionKey &key);
    // HMAC-SHA1 (RFC 2104) folded to 64, 32 and 16 bits; the digest's last byte stays out of the
    // fold, every name and key blob on disk depends on it. Nothing when the library fails.
    [[nodiscard]] static std::optional<std::uint64_t> mac64(ByteView data,
                                                            const NBEncryptionKey &key);
    [[nodiscard]] static std::optional<std::uint64_t> mac32(ByteView data,
                                                            const NBEncryptionKey &key);
    [[nodiscard]] static std::optional<std::uint64_t> mac16(ByteView data,
                                                            const NBEncryptionKey &key);

    [[nodiscard]] bool checkKey() const noexcept { return _checkKey; }
    [[nodiscard]] std::uint64_t blockSize() const noexcept { return _blockSize; } // bytes
    [[nodiscard]] const NBEncryptionKey &key() const noexcept { return _key; }
    [[nodiscard]] ByteView salt() const noexcept { return _salt; }
    [[nodiscard]] std::uint64_t keyCheckSumBytes() const noexcept { return 0; } // never set
    [[nodiscard]] std::uint64_t kdfIterations() const noexcept { return _kdfIterations; }

private:
    NBCryptor(NBEncryptionKey key, Bytes salt, const NBCryptorSettings &settings);
    [[nodiscard]] bool cryptRun(ByteView data, std::uint64_t firstBlock, ByteSpan out,
                                CryptMode mode) const;
    [[nodiscard]] bool cryptWholeBlocks(ByteView data, std::uint64_t firstBlock, std::uint8_t *out,
                                        CryptMode mode) const;
    [[nodiscard]] bool cryptPiece(ByteSpan data, std::uint64_t seed, CryptMode mode) const;

    bool _checkKey;
    std::uint64_t _blockSize;
    NBEncryptionKey _key; // owns the engine; no OpenSSL type leaves crypto/
    Bytes _salt;
    std::uint64_t _kdfIterations;
    std::unique_ptr<VectorTable> _vectors;
    std::unique_ptr<GrowingPiece> _lastPiece;
};

} // namespace nimbrel
