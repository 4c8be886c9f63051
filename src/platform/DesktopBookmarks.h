#pragma once

#include "platform/Bookmarks.h"

namespace nimbrel {

// $XDG_CONFIG_HOME/gtk-3.0/bookmarks (Nautilus, Nemo, Caja, Thunar and the GTK dialogs), made when
// missing, and $XDG_DATA_HOME/user-places.xbel (Dolphin and the KDE dialogs) where it exists. Both
// are replaced in one step, and everything that isn't ours stays byte for byte (GTK) or element for
// element (XBEL, http://pyxml.sourceforge.net/topics/xbel/). A list that can't be understood is
// left alone.
class DesktopBookmarks final : public Bookmarks
{
public:
    bool add(const QString &folder, const QString &label) override;
};

} // namespace nimbrel
