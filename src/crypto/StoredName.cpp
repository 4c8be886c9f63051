#include "crypto/StoredName.h"

#include "crypto/FileNameAlphabet.h"

#include <algorithm>

namespace nimbrel {

namespace {

constexpr std::size_t shortestStoredName = 3; // the check value alone

constexpr std::size_t groupBytes = 3;
constexpr std::size_t groupCharacters = 4;

// Inlined with a constant size, these are no loops.
[[gnu::always_inline]] inline std::uint32_t wordOf(ByteView bytes) noexcept
{
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        word |= std::uint32_t{bytes[i]} << (8 * i);
    return word;
}

[[gnu::always_inline]] inline std::uint32_t wordOf(const char *stored, std::size_t count) noexcept
{
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < count; ++i)
        word |= std::uint32_t{fileNameValue(stored[i])} << (6 * i);
    return word;
}

[[gnu::always_inline]] inline char *writeCharacters(std::uint32_t word, std::size_t count,
                                                    char *stored) noexcept
{
    for (std::size_t i = 0; i < count; ++i)
        *stored++ = fileNameAlphabet[word >> (6 * i) & 63U];
    return stored;
}

[[gnu::always_inline]] inline std::uint8_t *writeBytes(std::uint32_t word, std::size_t count,
                                                       std::uint8_t *bytes) noexcept
{
    for (std::size_t i = 0; i < count; ++i)
        *bytes++ = static_cast<std::uint8_t>(word >> (8 * i));
    return bytes;
}

bool isAlphabetCharacter(char c) noexcept
{
    return fileNameAlphabet[fileNameValue(c)] == c;
}

} // namespace

bool isCanonicalStoredName(std::string_view stored) noexcept
{
    if (stored.size() < shortestStoredName ||
        !std::all_of(stored.begin(), stored.end(), isAlphabetCharacter))
        return false;
    const unsigned last = fileNameValue(stored.back());
    switch (stored.size() % 4) {
    case 0: // four characters fill three bytes
        return true;
    case 1: // the last character would belong to no byte
        return false;
    case 2: // two bits of the last character end one byte
        return last >> 2U == 0;
    default: // four bits of it end the second byte
        return last >> 4U == 0;
    }
}

void writeStoredName(ByteView bytes, char *stored) noexcept
{
    for (; bytes.size() >= groupBytes; bytes = bytes.subspan(groupBytes))
        stored = writeCharacters(wordOf(bytes.first(groupBytes)), groupCharacters, stored);
    writeCharacters(wordOf(bytes), storedNameLength(bytes.size()), stored);
}

void readStoredName(std::string_view stored, ByteSpan bytes) noexcept
{
    std::uint8_t *out = bytes.data();
    for (; stored.size() >= groupCharacters; stored.remove_prefix(groupCharacters))
        out = writeBytes(wordOf(stored.data(), groupCharacters), groupBytes, out);
    writeBytes(wordOf(stored.data(), stored.size()), storedNameBytes(stored.size()), out);
}

} // namespace nimbrel
