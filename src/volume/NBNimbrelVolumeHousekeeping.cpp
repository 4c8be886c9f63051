// A link on the desktop, an entry in the sidebar, and other small things around a mounted disk.
#include "volume/NBNimbrelVolume.h"

#include "app/TextFormat.h"
#include "app/Util.h"
#include "fs/NBNimbrelFS.h"
#include "platform/Bookmarks.h"
#include "platform/Preferences.h"
#include "platform/Workspace.h"
#include "volume/Background.h"
#include "volume/DesktopAlias.h"
#include "volume/DiskFiles.h"
#include "volume/MountPointFolder.h"
#include "volume/TextConversion.h"

#include <QProcess>

namespace nimbrel {

namespace {

const QString supportHost = QStringLiteral(NIMBREL_SUPPORT_HOST);

} // namespace

QString NBNimbrelVolume::aliasPath() const
{
    return freeAliasPath(_services.desktopFolder, _label);
}

// What is read of the record is read here; the disk's and the desktop's files are asked elsewhere.
void NBNimbrelVolume::createAliases()
{
    const bool wantsAlias = _services.preferences.boolValue(preferencesKey::createAliases) &&
                            !_services.workspace.showsMountedDisksOnDesktop();
    inBackground(
        weak_from_this(),
        [wantsAlias, desktop = _services.desktopFolder, label = _label, target = mountPoint(),
         &bookmarks = _services.bookmarks] {
            QString alias = wantsAlias ? makeAlias(desktop, label, target) : QString();
            bookmarks.add(target, label);
            return alias;
        },
        [observation = _observation, target = mountPoint()](NBNimbrelVolume &volume,
                                                            const QString &alias) {
            if (volume._observation != observation)
                removeAlias(alias, target); // unmounted meanwhile
            else if (!alias.isEmpty())
                volume._desktopAlias = alias;
        });
}

// The link leads where the disk was mounted; the label may be another one since.
void NBNimbrelVolume::removeDesktopAlias()
{
    removeAlias(_desktopAlias, qtText(_mountPointFolder->path()));
}

void NBNimbrelVolume::disableTrash() const
{
    keepTrashAway(mountPoint());
}

void NBNimbrelVolume::fixDamagedFiles()
{
    QProcess::startDetached(QStringLiteral("/usr/bin/xattr"),
                            {QStringLiteral("-r"), QStringLiteral("-d"),
                             QStringLiteral("com.apple.quarantine"), _path});
}

bool NBNimbrelVolume::alertShowHelp()
{
    _services.workspace.openURL(
        QUrl(QStringLiteral("https://") + supportHost +
             QStringLiteral("/customer/portal/articles/1024260-what-is-the-bad-volume-coniguration-"
                            "error-all-about")));
    return true;
}

QString NBNimbrelVolume::runTask(const QString &withLaunchPath, const QStringList &arguments)
{
    QProcess task;
    task.setProcessChannelMode(QProcess::MergedChannels);
    task.start(withLaunchPath, arguments);
    QString output = Util::getTaskOutput(task, task);
    task.waitForFinished(-1);
    return output;
}

QString NBNimbrelVolume::pathOfFileWithURL(const QString &path)
{
    return _nmFS ? qtText(_nmFS->_securePathWithPath(coreText(path))) : QString();
}

} // namespace nimbrel
