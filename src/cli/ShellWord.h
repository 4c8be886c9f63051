#pragma once

#include <string>
#include <string_view>

namespace nimbrel {

// A text that a shell takes as one word, to be copied into a command line.
[[nodiscard]] std::string shellWord(std::string_view text);

} // namespace nimbrel
