// How the text of an element becomes a value: the rules of the format's first implementation, which
// never fail.
#pragma once

#include <cstdint>
#include <string_view>

namespace nimbrel {

// The text without white space and line ends at both ends, the wide ones of Unicode included.
[[nodiscard]] std::string_view trimmedText(std::string_view text) noexcept;

// Leading white space is skipped, then a sign and digits are taken and the rest is ignored. No
// digits give 0; what doesn't fit sticks at the smallest or largest number.
[[nodiscard]] std::int64_t integerOfText(std::string_view text) noexcept;

// True when, behind white space, a sign and zeros, there is a Y, y, T, t or a digit from 1 to 9.
[[nodiscard]] bool booleanOfText(std::string_view text) noexcept;

} // namespace nimbrel
