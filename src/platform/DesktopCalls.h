#pragma once

#include <QString>
#include <QUrl>

// What is asked of the desktop, over the session bus: each way is tried when the one before it
// failed, and a program is started last. The calls return at once; the rest happens in the event
// loop. Paths are absolute. That no way was left is said in the system log.
//
// File manager: https://www.freedesktop.org/wiki/Specifications/file-manager-interface/
// Portal: https://flatpak.github.io/xdg-desktop-portal/docs/ (org.freedesktop.portal.OpenURI)
namespace nimbrel::desktop {

void showFolder(const QString &folder);
void openFile(const QString &file);
// The file manager at the item's folder, with the item picked out.
void revealItem(const QString &item);
void openAddress(const QUrl &url);
// Has the bus start the file manager, which shows no window by that.
void wakeFileManager();

} // namespace nimbrel::desktop
