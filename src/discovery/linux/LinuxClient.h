// What cloud clients on Linux say about their folders. Each one's own documented files are read, as
// they are at the moment of the call; what can't be read or understood has no folders.
#pragma once

#include <QList>
#include <QString>

#include <string_view>

namespace nimbrel {

struct LinuxClient
{
    const char *name = nullptr;            // for menus, ASCII
    QList<QString> (*folders)() = nullptr; // tildes expanded; they need not exist
    // Its folders are mounts of its own. Looking at one may take for ever when the other end is
    // gone, so nobody looks: the mount table tells that it is there.
    bool isMounted = false;
};

// "~/.dropbox/info.json": an object with "path" for each of the accounts "personal" and "business".
[[nodiscard]] QList<QString> dropboxFolders();
// "Nextcloud/nextcloud.cfg", "ownCloud/owncloud.cfg" in the configuration folder: INI, with
// "0\Folders\1\localPath" for each folder of each account.
[[nodiscard]] QList<QString> nextcloudFolders();
[[nodiscard]] QList<QString> ownCloudFolders();
// "syncthing/config.xml" in the state folder, else in the configuration folder. Folders whose
// changes Syncthing doesn't send aren't places to keep things in, and are left out.
[[nodiscard]] QList<QString> syncthingFolders();
// The OneDrive client for Linux: "sync_dir" in "onedrive/config" in the configuration folder,
// "~/OneDrive" without it.
[[nodiscard]] QList<QString> oneDriveFolders();
// Mounts of the type "fuse.rclone".
[[nodiscard]] QList<QString> rcloneMounts();
// The same in the text of a mount table.
[[nodiscard]] QList<QString> rcloneMountsIn(std::string_view mountinfo);

} // namespace nimbrel
