#include "crypto/GrowingPiece.h"

#include "crypto/ByteManipulations.h"

#include <algorithm>
#include <cstring>

namespace nimbrel {

namespace {

constexpr std::size_t run = 64; // bytes, of a flip
constexpr std::size_t mostKept = std::size_t{16} << 10U;

// One pass over `tail`; the state goes on to where `runs` bytes end.
bool pass(std::uint8_t &carry, Vector &chain, ByteSpan tail, std::size_t runs,
          CipherContexts &contexts)
{
    if (!tail.empty())
        tail.front() = static_cast<std::uint8_t>(tail.front() ^ carry);
    shuffleBytes(tail);
    if (runs > 0)
        carry = tail[runs - 1];
    const Vector begin = chain;
    if (!contexts.aes().encryptFeedback(tail, begin))
        return false;
    if (runs > 0)
        std::copy_n(tail.data() + runs - cipherBlock, cipherBlock, chain.begin());
    return true;
}

} // namespace

bool GrowingPiece::isContinued(ByteView data, std::uint64_t seed) const noexcept
{
    return _size > 0 && seed == _seed && data.size() >= _size &&
           std::memcmp(data.data(), _plain.bytes().data(), _size) == 0;
}

void GrowingPiece::makeRoom(std::size_t size)
{
    if (_plain.size() >= size)
        return;
    const std::size_t room = std::min(mostKept, std::max(size, 2 * _plain.size()));
    SecureBuffer plain(room);
    SecureBuffer cipher(room);
    std::ranges::copy(_plain.bytes().first(_size), plain.bytes().begin());
    std::ranges::copy(_cipher.bytes().first(_size), cipher.bytes().begin());
    _plain = std::move(plain);
    _cipher = std::move(cipher);
}

bool GrowingPiece::encryptFrom(State &state, ByteSpan tail, std::size_t runs,
                               CipherContexts &contexts)
{
    if (!pass(state.firstCarry, state.firstChain, tail, runs, contexts))
        return false;
    flipBytes(tail);
    return pass(state.secondCarry, state.secondChain, tail, runs, contexts);
}

bool GrowingPiece::encrypt(ByteSpan data, std::uint64_t seed, const StreamVectors &vectors,
                           CipherContexts &contexts)
{
    if (data.size() > mostKept)
        return encryptStream(data, vectors, contexts);
    if (!isContinued(data, seed)) {
        _size = 0;
        _state = {0, vectors.ofSeed, 0, vectors.ofNextSeed};
    }
    const std::size_t before = _size;
    const std::size_t kept = data.size() - data.size() % run;
    makeRoom(kept);
    _size = 0; // until the new one is whole
    std::copy_n(data.data() + before, kept - before, _plain.bytes().data() + before);
    if (!encryptFrom(_state, data.subspan(before), kept - before, contexts))
        return false;
    std::copy_n(_cipher.bytes().data(), before, data.data());
    std::copy_n(data.data() + before, kept - before, _cipher.bytes().data() + before);
    _seed = seed;
    _size = kept;
    return true;
}

} // namespace nimbrel
