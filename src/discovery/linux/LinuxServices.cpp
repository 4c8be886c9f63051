#include "discovery/linux/LinuxServices.h"

#include "discovery/HomePath.h"
#include "discovery/linux/LinuxCloudService.h"
#include "platform/SystemFacts.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace nimbrel {

namespace {

using Services = std::vector<std::unique_ptr<NBCloudService>>;

QString shortPath(const QString &path)
{
    const QString home = systemFacts::homeFolder();
    return path.startsWith(home + u'/') ? u'~' + path.sliced(home.size()) : path;
}

// Dropbox, among others, makes folders such as "Dropbox (Company)", which say it all.
QString nameWithFolder(const QString &client, const QString &folder)
{
    return folder.startsWith(client + QLatin1String(" ("))
               ? folder
               : QStringLiteral("%1 (%2)").arg(client, folder);
}

// Collects services, names and folders that are taken.
class Collection final
{
public:
    explicit Collection(const Services &known)
    {
        for (const auto &service : known) {
            _names.insert(service->name());
            _folders.insert(canonical(service->storageURL().toLocalFile()));
        }
    }

    void add(const LinuxClient &client, const QString &folder)
    {
        const QString path = expandedTilde(folder);
        const QString key = client.isMounted ? path : canonical(path);
        if (!path.startsWith(u'/') || _folders.contains(key)) // relative to we don't know what
            return;
        auto service = std::make_unique<LinuxCloudService>(freeName(client, path), client, folder);
        if (!service->isThere())
            return;
        _folders.insert(key);
        _names.insert(service->name());
        _services.push_back(std::move(service));
    }

    Services take() { return std::move(_services); }

private:
    static QString canonical(const QString &path)
    {
        const QString found = QFileInfo(path).canonicalFilePath();
        return found.isEmpty() ? path : found;
    }

    QString freeName(const LinuxClient &client, const QString &path) const
    {
        const QString name = QString::fromLatin1(client.name);
        const QString folder = nameWithFolder(name, QFileInfo(QDir::cleanPath(path)).fileName());
        for (const QString &candidate : {name, folder})
            if (!_names.contains(candidate))
                return candidate;
        return QStringLiteral("%1 (%2)").arg(name, shortPath(path)); // no two folders share a path
    }

    QSet<QString> _names;
    QSet<QString> _folders;
    Services _services;
};

} // namespace

const std::vector<LinuxClient> &linuxClients()
{
    static const std::vector<LinuxClient> clients = {
        {"Dropbox", dropboxFolders},   {"Nextcloud", nextcloudFolders},
        {"ownCloud", ownCloudFolders}, {"Syncthing", syncthingFolders},
        {"OneDrive", oneDriveFolders}, {"rclone", rcloneMounts, true},
    };
    return clients;
}

std::vector<std::unique_ptr<NBCloudService>>
linuxServices(const std::vector<std::unique_ptr<NBCloudService>> &known,
              const std::vector<LinuxClient> &clients)
{
    Collection collection(known);
    for (const LinuxClient &client : clients)
        for (const QString &folder : client.folders())
            collection.add(client, folder);
    return collection.take();
}

} // namespace nimbrel
