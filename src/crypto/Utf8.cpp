#include "crypto/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace nimbrel {

namespace {

// What may follow a lead byte: how many bytes, and the range of the first of them. The range is
// what keeps out overlong forms, surrogates and values above U+10FFFF.
struct Sequence
{
    std::size_t following;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
};

constexpr std::size_t noSequence = 4;

Sequence sequenceOf(unsigned char lead) noexcept
{
    if (lead < 0x80)
        return {0};
    if (lead >= 0xC2 && lead <= 0xDF)
        return {1};
    if (lead == 0xE0)
        return {2, 0xA0, 0xBF};
    if (lead == 0xED)
        return {2, 0x80, 0x9F};
    if (lead >= 0xE1 && lead <= 0xEF)
        return {2};
    if (lead == 0xF0)
        return {3, 0x90, 0xBF};
    if (lead >= 0xF1 && lead <= 0xF3)
        return {3};
    if (lead == 0xF4)
        return {3, 0x80, 0x8F};
    return {noSequence};
}

bool isContinuation(char c) noexcept
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

// How many bytes at the start are ASCII, in steps of a word.
std::size_t asciiWords(std::string_view text) noexcept
{
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::size_t at = 0;
    for (std::uint64_t word = 0; at + sizeof word <= text.size(); at += sizeof word) {
        std::memcpy(&word, text.data() + at, sizeof word);
        if ((word & highBits) != 0)
            break;
    }
    return at;
}

} // namespace

bool isUtf8(std::string_view text) noexcept
{
    text.remove_prefix(asciiWords(text)); // most names are nothing else
    while (!text.empty()) {
        const Sequence sequence = sequenceOf(static_cast<unsigned char>(text.front()));
        text.remove_prefix(1);
        if (sequence.following == 0)
            continue;
        if (sequence.following == noSequence || text.size() < sequence.following)
            return false;
        const auto second = static_cast<unsigned char>(text.front());
        const std::string_view rest = text.substr(1, sequence.following - 1);
        if (second < sequence.low || second > sequence.high ||
            !std::all_of(rest.begin(), rest.end(), isContinuation))
            return false;
        text.remove_prefix(sequence.following);
    }
    return true;
}

} // namespace nimbrel
