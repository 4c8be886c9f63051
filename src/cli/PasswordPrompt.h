#pragma once

#include "crypto/SecureBuffer.h"

#include <string_view>

namespace nimbrel {

// Asks at the terminal (never at standard input), without echo. A signal restores the terminal
// before it acts, and stopping with ^Z asks again afterwards. Throws CommandError when there is no
// terminal or no answer.
[[nodiscard]] SecureBuffer promptForPassword(std::string_view prompt);

} // namespace nimbrel
