#pragma once

#include <string>
#include <string_view>

namespace nimbrel {

// A text that a terminal shows as it is and that stays on one line: control characters and bytes
// that aren't UTF-8 become escapes such as \n and \x1b.
[[nodiscard]] std::string printable(std::string_view text);

// The text of an errno.
[[nodiscard]] std::string errorText(int code);

} // namespace nimbrel
