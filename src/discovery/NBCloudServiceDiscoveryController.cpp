#include "discovery/NBCloudServiceDiscoveryController.h"

#include "discovery/FolderSearch.h"
#include "discovery/NBBoxCloudService.h"
#include "discovery/NBDropboxCloudService.h"
#include "discovery/NBGoogleDriveCloudService.h"
#include "discovery/NBSkyDriveCloudService.h"
#include "discovery/NBSugarSyncCloudService.h"
#include "discovery/linux/LinuxServices.h"

#include <QFile>

#include <iterator>

namespace nimbrel {

namespace {

template <class Service>
std::unique_ptr<NBCloudService> make()
{
    return std::make_unique<Service>();
}

std::string localFolder(const QUrl &url)
{
    QByteArray path = QFile::encodeName(url.toLocalFile());
    while (path.endsWith('/'))
        path.chop(1);
    return path.toStdString();
}

} // namespace

const std::vector<NBCloudServiceDiscoveryController::ServiceClass> &
NBCloudServiceDiscoveryController::serviceClasses()
{
    static const std::vector<ServiceClass> classes = {
        make<NBDropboxCloudService>, make<NBGoogleDriveCloudService>, make<NBSkyDriveCloudService>,
        make<NBSugarSyncCloudService>, make<NBBoxCloudService>};
    return classes;
}

std::optional<NBCloudServiceDiscoveryController::Services>
NBCloudServiceDiscoveryController::availableServices() const
{
    Services services;
    for (const ServiceClass newService : serviceClasses())
        if (auto service = newService(); service->isAvailable())
            services.push_back(std::move(service));
    Services more = linuxServices(services);
    services.insert(services.end(), std::make_move_iterator(more.begin()),
                    std::make_move_iterator(more.end()));
    if (services.empty())
        return std::nullopt;
    return services;
}

QList<QUrl> NBCloudServiceDiscoveryController::nmFoldersWithURL(const QUrl &url,
                                                                const std::stop_token &stop) const
{
    QList<QUrl> urls;
    if (!url.isLocalFile() || url.toLocalFile().isEmpty())
        return urls;
    for (const std::string &path : FolderSearch(localFolder(url), stop).run()) {
        const QString text = QString::fromUtf8(path);
        if (text.toUtf8() == QByteArrayView(path)) // no URL stands for a name in another coding
            urls.append(QUrl::fromLocalFile(text));
    }
    return urls;
}

} // namespace nimbrel
