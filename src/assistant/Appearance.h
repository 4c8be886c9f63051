// Light and dark as the desktop wants it.
#pragma once

#include <QPalette>

class QApplication;

namespace nimbrel::appearance {

enum class ColorScheme
{
    Light,
    Dark
};

// What the desktop prefers, from the portal's setting "org.freedesktop.appearance"
// "color-scheme"; light where nobody says. Asks the session bus, at most half a second.
[[nodiscard]] ColorScheme preferredColorScheme();

// Colours for Qt's own style, which knows no dark by itself. Does nothing where the desktop's
// platform theme brings colours of its own.
void apply(ColorScheme scheme);

// Whether this palette's windows are dark.
[[nodiscard]] bool isDark(const QPalette &palette);

} // namespace nimbrel::appearance
