#pragma once

#include <QString>
#include <QUrl>

namespace nimbrel {

// What the user's desktop opens and shows for us. All calls return at once; what can't be shown is
// said in the system log.
class Workspace
{
public:
    Workspace() = default;
    virtual ~Workspace() = default;
    Workspace(const Workspace &) = delete;
    Workspace &operator=(const Workspace &) = delete;

    // openFile:  a folder opens in the file browser, a file in its program.
    virtual void openFile(const QString &path) = 0;
    // selectFile:inFileViewerRootedAtPath:  the file browser at the file's folder, the file picked
    // out; a file browser here has no root, so `root` is shown where the file isn't there.
    virtual void selectFile(const QString &path, const QString &inFileViewerRootedAtPath) = 0;
    virtual void openURL(const QUrl &url) = 0;
    // True when the desktop itself puts mounted disks on the desktop's background.
    [[nodiscard]] virtual bool showsMountedDisksOnDesktop() const = 0;
};

} // namespace nimbrel
