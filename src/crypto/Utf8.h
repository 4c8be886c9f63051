#pragma once

#include <string_view>

namespace nimbrel {

// True for well-formed UTF-8 (RFC 3629): no overlong forms, no surrogates, nothing above U+10FFFF.
// The empty text is well-formed.
[[nodiscard]] bool isUtf8(std::string_view text) noexcept;

} // namespace nimbrel
