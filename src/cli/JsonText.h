#pragma once

#include <string>
#include <string_view>

namespace nimbrel {

// A JSON string (RFC 8259), quotes included. Bytes that aren't UTF-8, which a path may have, become
// U+FFFD: JSON has no way to tell them.
[[nodiscard]] std::string jsonString(std::string_view text);

} // namespace nimbrel
