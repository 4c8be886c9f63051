#include "discovery/NBCloudService.h"

#include "discovery/ClientFile.h"
#include "discovery/HomePath.h"

#include <QDir>

#include <utility>

namespace nimbrel {

namespace {

// A URL's path begins with one slash: two would begin with a host.
QUrl folderUrl(QString path)
{
    if (!path.startsWith(u'/'))
        path = QDir::currentPath() + u'/' + path;
    while (path.startsWith(QLatin1String("//")))
        path.remove(0, 1);
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return QUrl::fromLocalFile(path);
}

} // namespace

NBCloudService::NBCloudService(QString name) : _name(std::move(name)) {}

bool NBCloudService::finish(const QString &path)
{
    const QString expanded = expandedTilde(path);
    return !expanded.isEmpty() && somethingExists(expanded) && finishUnseen(expanded);
}

bool NBCloudService::finishUnseen(const QString &path)
{
    _storageURL = folderUrl(path);
    return true;
}

} // namespace nimbrel
