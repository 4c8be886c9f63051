// The 64 characters of stored names, in value order. Part of the on-disk format; stays inside
// crypto/.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace nimbrel {

inline constexpr std::string_view fileNameAlphabet =
    ",-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

// The value of each possible byte. Bytes outside the alphabet have 0, as a64l gives it, and '.'
// and '/' the values that a64l has for them: read, and never written.
inline constexpr std::array<std::uint8_t, 256> fileNameValues = [] {
    std::array<std::uint8_t, 256> values{};
    for (std::size_t i = 0; i < fileNameAlphabet.size(); ++i)
        values[static_cast<unsigned char>(fileNameAlphabet[i])] = static_cast<std::uint8_t>(i);
    values[static_cast<unsigned char>('.')] = 0;
    values[static_cast<unsigned char>('/')] = 1;
    return values;
}();

constexpr std::uint8_t fileNameValue(char c) noexcept
{
    return fileNameValues[static_cast<unsigned char>(c)];
}

} // namespace nimbrel
