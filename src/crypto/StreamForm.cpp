#include "crypto/StreamForm.h"

#include "crypto/ByteManipulations.h"

namespace nimbrel {

bool encryptStream(ByteSpan data, const StreamVectors &vectors, CipherContexts &contexts)
{
    shuffleBytes(data);
    if (!contexts.aes().encryptFeedback(data, vectors.ofSeed))
        return false;
    flipBytes(data);
    shuffleBytes(data);
    return contexts.aes().encryptFeedback(data, vectors.ofNextSeed);
}

bool decryptStream(ByteSpan data, const StreamVectors &vectors, CipherContexts &contexts)
{
    if (!contexts.aes().decryptFeedback(data, vectors.ofNextSeed))
        return false;
    unshuffleBytes(data);
    flipBytes(data);
    if (!contexts.aes().decryptFeedback(data, vectors.ofSeed))
        return false;
    unshuffleBytes(data);
    return true;
}

} // namespace nimbrel
