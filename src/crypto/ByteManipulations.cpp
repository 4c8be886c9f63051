#include "crypto/ByteManipulations.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace nimbrel {

namespace {

constexpr std::size_t flipRun = 64;
constexpr std::size_t wordSize = sizeof(std::uint64_t);
constexpr std::uint64_t everyByte = 0x0101010101010101;

using Word = std::uint64_t __attribute__((vector_size(16)));

// Eight bytes as a number whose low byte is the first one, on any machine.
std::uint64_t loadWord(const std::uint8_t *bytes) noexcept
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, wordSize);
    return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
}

void storeWord(std::uint8_t *bytes, std::uint64_t word) noexcept
{
    if (std::endian::native != std::endian::little)
        word = __builtin_bswap64(word);
    std::memcpy(bytes, &word, wordSize);
}

// The same as std::reverse, eight bytes at a time.
void reverseWholeRun(std::uint8_t *run) noexcept
{
    for (std::size_t low = 0, high = flipRun - wordSize; low < high;
         low += wordSize, high -= wordSize) {
        const std::uint64_t first = loadWord(run + low);
        storeWord(run + low, __builtin_bswap64(loadWord(run + high)));
        storeWord(run + high, __builtin_bswap64(first));
    }
}

} // namespace

void flipBytes(ByteSpan bytes) noexcept
{
    while (bytes.size() >= flipRun) {
        reverseWholeRun(bytes.data());
        bytes = bytes.subspan(flipRun);
    }
    std::reverse(bytes.begin(), bytes.end());
}

void shuffleBytes(ByteSpan bytes) noexcept
{
    // Within a word three doubling steps make every byte the XOR of all before it. What came before
    // the word is laid over it at last: only that one step has to wait for the word before.
    std::uint64_t carry = 0; // the last new byte, in all places
    std::size_t i = 0;
    for (; i + wordSize <= bytes.size(); i += wordSize) {
        std::uint64_t word = loadWord(bytes.data() + i);
        word ^= word << 8U;
        word ^= word << 16U;
        word ^= word << 32U;
        storeWord(bytes.data() + i, word ^ carry);
        carry ^= (word >> 56U) * everyByte;
    }
    for (; i < bytes.size(); ++i) {
        carry ^= bytes[i];
        bytes[i] = static_cast<std::uint8_t>(carry);
    }
}

void unshuffleBytes(ByteSpan bytes) noexcept
{
    // From the end on, where the byte before is still shuffled.
    std::size_t end = bytes.size();
    for (; end > sizeof(Word); end -= sizeof(Word)) {
        std::uint8_t *last = bytes.data() + end - sizeof(Word);
        Word word;
        Word before;
        std::memcpy(&word, last, sizeof word);
        std::memcpy(&before, last - 1, sizeof before);
        word ^= before;
        std::memcpy(last, &word, sizeof word);
    }
    for (; end > 1; --end)
        bytes[end - 1] = static_cast<std::uint8_t>(bytes[end - 1] ^ bytes[end - 2]);
}

} // namespace nimbrel
