#pragma once

#include <string>

namespace nimbrel {

// Where the session bus is, as the environment or its usual place says; empty when there is none.
// Libraries that find none start one of their own, a program that nobody sees and nobody ends: ask
// here first.
[[nodiscard]] std::string sessionBusAddress();

} // namespace nimbrel
