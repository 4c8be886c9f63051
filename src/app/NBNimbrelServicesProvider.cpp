#include "app/NBNimbrelServicesProvider.h"

#include "app/ResolvedPaths.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "platform/Workspace.h"
#include "volume/Background.h"
#include "volume/NBVolumesController.h"

#include <QFileInfo>
#include <QUrl>

#include <utility>

namespace nimbrel {

// What each mounted disk around the file calls it in its encrypted folder, in the list's order.
struct NBNimbrelServicesProvider::Counterparts
{
    QStringList paths;
    QList<bool> exist = {};
};

namespace {

// Null when it isn't the URL of a file on this machine.
QString pathOf(const QString &text)
{
    const QUrl url(text.trimmed(), QUrl::TolerantMode);
    const bool isHere = url.host().isEmpty() || url.host() == QLatin1String("localhost");
    const bool isFile = url.scheme() == QLatin1String("file") && !url.hasQuery();
    const QString path = url.path(QUrl::FullyDecoded);
    const bool isPath = path.startsWith(u'/') && !path.contains(QChar(0));
    return isHere && isFile && isPath && !url.hasFragment() ? path : QString();
}

// Links in an encrypted folder lead nowhere, for their targets are enciphered.
bool isThere(const QString &path)
{
    return !path.isEmpty() && (Util::exists(path) || QFileInfo(path).isSymLink());
}

void tellThatNothingWasFound()
{
    Util::showAlert(
        texts::tr("This file could not be located in any of the mounted Nimbrel disks."),
        texts::tr("File not found!"));
}

} // namespace

NBNimbrelServicesProvider::NBNimbrelServicesProvider(NBVolumesController &volumesController,
                                                     Workspace &workspace)
    : _volumesController(volumesController), _workspace(workspace),
      _self(this, [](NBNimbrelServicesProvider *) { /* it isn't the owner */ })
{
}

NBNimbrelServicesProvider::~NBNimbrelServicesProvider() = default;

void NBNimbrelServicesProvider::showInFolderService(const QString &url)
{
    QMetaObject::invokeMethod(
        this, [this, url] { begin(url); }, Qt::QueuedConnection);
}

void NBNimbrelServicesProvider::begin(const QString &url)
{
    const QString path = pathOf(url);
    QStringList mountPoints;
    for (const VolumePtr &volume : _volumesController.volumes())
        if (volume->isMounted())
            mountPoints.append(volume->mountPoint());
    if (path.isEmpty() || mountPoints.isEmpty())
        return tellThatNothingWasFound();
    inBackground(
        self(), [path, mountPoints] { return resolvePaths(path, mountPoints); },
        [](NBNimbrelServicesProvider &provider, const ResolvedPaths &paths) {
            provider.search(paths);
        });
}

// Kept: the mount point is a prefix of the text, and all its occurrences go. So "/V/A" is found
// around a file on "/V/AB", too, with a path that is wrong and mostly not there.
void NBNimbrelServicesProvider::search(const ResolvedPaths &paths)
{
    Counterparts counterparts;
    for (const VolumePtr &volume : _volumesController.volumes()) {
        const QString mountPoint = paths.folder(volume->mountPoint());
        if (!volume->isMounted() || !paths.item.startsWith(mountPoint))
            continue;
        QString plainPath = paths.item;
        plainPath.remove(mountPoint);
        counterparts.paths.append(volume->pathOfFileWithURL(
            plainPath.isEmpty() ? QStringLiteral("/") : plainPath)); // the disk itself
    }
    inBackground(
        self(),
        [counterparts]() mutable {
            for (const QString &path : std::as_const(counterparts.paths))
                counterparts.exist.append(isThere(path));
            return counterparts;
        },
        [](NBNimbrelServicesProvider &provider, const Counterparts &found) {
            provider.show(found);
        });
}

// Kept: goes on behind the first one, and the last one decides whether the user hears of nothing
// found. What isn't there isn't shown, for file managers would open something else.
void NBNimbrelServicesProvider::show(const Counterparts &counterparts)
{
    bool wasShown = false;
    for (qsizetype at = 0; at < counterparts.paths.size(); ++at) {
        const QString &path = counterparts.paths[at];
        wasShown = counterparts.exist[at];
        if (wasShown)
            _workspace.selectFile(path, Util::getParentPath(path));
    }
    if (!wasShown)
        tellThatNothingWasFound();
}

} // namespace nimbrel
