#pragma once

namespace nimbrel {

// Whether there is a display to show windows on. Qt ends the process, with a core file, where it
// finds none. Asks the X server where the windows would be its own; before there is an application
// object.
[[nodiscard]] bool isDisplayThere();

} // namespace nimbrel
