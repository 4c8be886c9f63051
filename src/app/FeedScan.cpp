#include "app/FeedScan.h"

namespace nimbrel {

namespace {

void addMatch(FeedScan &scan, const QString &service, const QHash<QString, int> &ids)
{
    if (const auto id = ids.constFind(service); id != ids.constEnd())
        scan.providers.append(*id);
    ++scan.matches;
}

} // namespace

FeedScan scanServices(const NBCloudServiceDiscoveryController::Services &availableServices,
                      const QList<ScannedVolume> &volumes, const QHash<QString, int> &ids)
{
    FeedScan scan;
    for (const auto &service : availableServices)
        for (const ScannedVolume &volume : volumes) {
            scan.filenameEncryption |= volume.encodeFilenames;
            if (!service->isAvailable())
                break;
            if (volume.path.startsWith(service->storageURL().toLocalFile()))
                addMatch(scan, service->name(), ids);
        }
    return scan;
}

} // namespace nimbrel
