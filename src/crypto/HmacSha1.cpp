// The library's SHA-1 below its EVP layer: only there a state can be kept and taken up again
// without a call that allocates.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "crypto/HmacSha1.h"

#include "crypto/WideHmac.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

#include <openssl/sha.h>

namespace nimbrel {

namespace {

constexpr std::uint8_t innerPad = 0x36;
constexpr std::uint8_t outerPad = 0x5C;

// Sixteen lanes take about as long as three codes one by one.
constexpr std::size_t fewestForLanes = 4;

// What fits in one block with the mark of its end and its length.
constexpr std::size_t longestShort = SHA_CBLOCK - 9;

// The last block of a text that goes on behind one block, the padded key: `size` bytes of it stand
// in `block`. What SHA1_Update and SHA1_Final would do, without their book-keeping.
void finishShort(SHA_CTX &state, std::array<std::uint8_t, SHA_CBLOCK> &block,
                 std::size_t size) noexcept
{
    const std::size_t bits = (SHA_CBLOCK + size) * 8;
    block[size] = 0x80;
    std::fill(block.begin() + static_cast<std::ptrdiff_t>(size) + 1, block.end(), 0);
    block[SHA_CBLOCK - 2] = static_cast<std::uint8_t>(bits >> 8U);
    block[SHA_CBLOCK - 1] = static_cast<std::uint8_t>(bits);
    SHA1_Transform(&state, block.data());
}

// High bytes first, on any machine.
void writeDigest(const SHA_CTX &state, std::uint8_t *digest) noexcept
{
    for (SHA_LONG word : {state.h0, state.h1, state.h2, state.h3, state.h4}) {
        if (std::endian::native == std::endian::little)
            word = __builtin_bswap32(word);
        std::memcpy(digest, &word, sizeof word);
        digest += sizeof word;
    }
}

// All of a state that SHA1_Transform looks at.
void takeUp(SHA_CTX &working, const SHA_CTX &state) noexcept
{
    working.h0 = state.h0;
    working.h1 = state.h1;
    working.h2 = state.h2;
    working.h3 = state.h3;
    working.h4 = state.h4;
}

Sha1Words wordsOf(const SHA_CTX &state) noexcept
{
    return {state.h0, state.h1, state.h2, state.h3, state.h4};
}

} // namespace

struct HmacSha1::States
{
    SHA_CTX inner; // behind the padded key
    SHA_CTX outer;
    SHA_CTX working;
    HmacWords words; // the first two once more
    std::array<std::uint8_t, SHA_CBLOCK> block;
};

HmacSha1::HmacSha1(ByteView key, EngineKind kind)
    : _wide(kind == EngineKind::Wide), _memory(sizeof(States))
{
    States &fresh = *new (_memory.bytes().data()) States;
    const auto start = [&](SHA_CTX &state, std::uint8_t pad) {
        fresh.block.fill(pad);
        for (std::size_t i = 0; i < std::min(key.size(), longestKey); ++i)
            fresh.block[i] = static_cast<std::uint8_t>(key[i] ^ pad);
        SHA1_Init(&state);
        SHA1_Update(&state, fresh.block.data(), fresh.block.size());
    };
    start(fresh.inner, innerPad);
    start(fresh.outer, outerPad);
    fresh.words = {wordsOf(fresh.inner), wordsOf(fresh.outer)};
}

HmacSha1::States &HmacSha1::states() noexcept
{
    return *std::launder(reinterpret_cast<States *>(_memory.bytes().data()));
}

MacDigest HmacSha1::digest(ByteView first, ByteView second) noexcept
{
    MacDigest digest;
    States &kept = states();
    const std::size_t size = first.size() + second.size();
    if (size <= longestShort) {
        takeUp(kept.working, kept.inner);
        std::copy(second.begin(), second.end(),
                  std::copy(first.begin(), first.end(), kept.block.begin()));
        finishShort(kept.working, kept.block, size);
        writeDigest(kept.working, kept.block.data());
    } else {
        kept.working = kept.inner;
        SHA1_Update(&kept.working, first.data(), first.size());
        SHA1_Update(&kept.working, second.data(), second.size());
        SHA1_Final(kept.block.data(), &kept.working);
    }
    takeUp(kept.working, kept.outer);
    finishShort(kept.working, kept.block, digest.size());
    writeDigest(kept.working, digest.data());
    return digest;
}

void HmacSha1::numbered(ByteView material, std::uint64_t first, std::span<Vector> starts) noexcept
{
#if defined(__x86_64__)
    if (_wide && starts.size() >= fewestForLanes && material.size() == cipherBlock) {
        for (; !starts.empty(); first += wide::hmacLanes) {
            const std::size_t count = std::min(wide::hmacLanes, starts.size());
            wide::numberedHmac(states().words, material, first, starts.first(count));
            starts = starts.subspan(count);
        }
        return;
    }
#endif
    for (Vector &start : starts) {
        std::array<std::uint8_t, 8> number{};
        for (std::size_t i = 0; i < number.size(); ++i)
            number[i] = static_cast<std::uint8_t>(first >> (8 * i));
        const MacDigest code = digest(material, number);
        std::copy_n(code.begin(), start.size(), start.begin());
        ++first;
    }
}

} // namespace nimbrel
