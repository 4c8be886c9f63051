#pragma once

namespace nimbrel {

// True when the running desktop (XDG_CURRENT_DESKTOP) shows mounted disks on its background and the
// user has that switched on: Cinnamon and MATE, by their own settings.
[[nodiscard]] bool mountedDisksAreOnDesktop();

} // namespace nimbrel
