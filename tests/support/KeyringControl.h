#pragma once

#include <string>
#include <string_view>

namespace nimbrel::test {

// Unlocks the login keyring of the gnome-keyring-daemon that listens at `socket`, as the login
// screen does; the daemon's own command line has no such thing for a daemon that runs. False when
// it refuses.
[[nodiscard]] bool unlockLoginKeyring(const std::string &socket, std::string_view password);

} // namespace nimbrel::test
