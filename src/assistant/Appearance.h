// Light and dark as the desktop wants it.
#pragma once

#include <QPalette>

class QDBusConnection;

namespace nimbrel::appearance {

enum class ColorScheme
{
    Light,
    Dark
};

// What the desktop prefers, from the portal's setting "org.freedesktop.appearance"
// "color-scheme"; light where nobody says. Asks on this bus, which is the session's outside tests,
// for at most half a second.
[[nodiscard]] ColorScheme preferredColorScheme(const QDBusConnection &bus);

// Colours for Qt's own style, which brings those of another time and no dark ones. Does nothing
// where the desktop's platform theme brings its style.
void apply(ColorScheme scheme);

// Whether this palette's windows are dark.
[[nodiscard]] bool isDark(const QPalette &palette);

} // namespace nimbrel::appearance
