#pragma once

class QKeyEvent;

namespace nimbrel::capsLock {

// The keyboards' lights, as the kernel tells them (/sys/class/leds); false where there are none.
[[nodiscard]] bool isLightOn();

// Whether Caps Lock is on behind this key press, from the window system's own state; `before` where
// that says nothing.
[[nodiscard]] bool isOnBehind(const QKeyEvent &press, bool before);

} // namespace nimbrel::capsLock
