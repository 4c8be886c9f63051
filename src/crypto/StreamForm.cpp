#include "crypto/StreamForm.h"

#include "crypto/ByteManipulations.h"

#include <algorithm>
#include <cstring>

#include <openssl/crypto.h>

namespace nimbrel {

namespace {

constexpr std::size_t pieceSize = 512;

void xorInto(std::uint8_t *data, const std::uint8_t *mask, std::size_t size) noexcept
{
    for (std::size_t i = 0; i < size; ++i)
        data[i] = static_cast<std::uint8_t>(data[i] ^ mask[i]);
}

// CFB over 128 bits, in place. Its keystream is the cipher of the vector, then of each block of
// cipher text. Reading, all cipher text is there: a codebook engine takes many blocks at once.
// Writing, cipher text is plain text XOR keystream, so that the keystream is a CBC chain over the
// vector and the plain text. In both cases the engine is fed with the data as it stands before the
// pass. Reading is so about four times as fast as the library's own CFB, writing a little faster.
bool feedbackPass(ByteSpan data, const Vector &vector, CipherContext &engine)
{
    // The keystream of the next cipher block, then that of the blocks behind it.
    alignas(cipherBlock) std::array<std::uint8_t, cipherBlock + pieceSize> keystream;
    bool good = engine.update(vector, keystream.data());
    while (good && data.size() >= cipherBlock) {
        const std::size_t size = std::min(pieceSize, data.size() / cipherBlock * cipherBlock);
        good = engine.update(data.first(size), keystream.data() + cipherBlock);
        xorInto(data.data(), keystream.data(), size);
        std::memcpy(keystream.data(), keystream.data() + size, cipherBlock);
        data = data.subspan(size);
    }
    if (good)
        xorInto(data.data(), keystream.data(), data.size());
    OPENSSL_cleanse(keystream.data(), keystream.size());
    return good;
}

} // namespace

bool encryptFeedback(ByteSpan data, const Vector &vector, CipherContexts &contexts)
{
    return contexts.cbcEncryption.start(Vector{}) &&
           feedbackPass(data, vector, contexts.cbcEncryption);
}

bool decryptFeedback(ByteSpan data, const Vector &vector, CipherContexts &contexts)
{
    return feedbackPass(data, vector, contexts.ecbEncryption);
}

bool encryptStream(ByteSpan data, const StreamVectors &vectors, CipherContexts &contexts)
{
    shuffleBytes(data);
    if (!encryptFeedback(data, vectors.ofSeed, contexts))
        return false;
    flipBytes(data);
    shuffleBytes(data);
    return encryptFeedback(data, vectors.ofNextSeed, contexts);
}

bool decryptStream(ByteSpan data, const StreamVectors &vectors, CipherContexts &contexts)
{
    if (!decryptFeedback(data, vectors.ofNextSeed, contexts))
        return false;
    unshuffleBytes(data);
    flipBytes(data);
    if (!decryptFeedback(data, vectors.ofSeed, contexts))
        return false;
    unshuffleBytes(data);
    return true;
}

} // namespace nimbrel
