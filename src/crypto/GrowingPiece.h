// The stream form of a piece that grows, as a log does. Stays inside crypto/.
#pragma once

#include "crypto/SecureBuffer.h"
#include "crypto/StreamForm.h"

#include <cstdint>

namespace nimbrel {

// The form's passes go from front to back, and its flips in runs of 64 bytes: what a piece has in
// common with the one before, in whole runs, is enciphered as it was. An append so costs what it
// adds instead of the whole piece. The piece before is kept, up to 16 KiB, and wiped.
class GrowingPiece final
{
public:
    // encryptStream, with the same bytes. The plain bytes are compared, not taken at their word.
    [[nodiscard]] bool encrypt(ByteSpan data, std::uint64_t seed, const StreamVectors &vectors,
                               CipherContexts &contexts);

private:
    // Of both passes, at the end of a run.
    struct State
    {
        std::uint8_t firstCarry; // the last byte that was shuffled
        Vector firstChain;       // the last cipher block that was made
        std::uint8_t secondCarry;
        Vector secondChain;
    };

    [[nodiscard]] bool isContinued(ByteView data, std::uint64_t seed) const noexcept;
    void makeRoom(std::size_t size);
    // Enciphers `tail` from `state` on, which becomes that of `runs` bytes further.
    [[nodiscard]] static bool encryptFrom(State &state, ByteSpan tail, std::size_t runs,
                                          CipherContexts &contexts);

    std::uint64_t _seed = 0;
    std::size_t _size = 0; // whole runs that are kept
    State _state{};
    SecureBuffer _plain;
    SecureBuffer _cipher;
};

} // namespace nimbrel
