// Which volumes lie in the folder of a cloud client.
#pragma once

#include "discovery/NBCloudServiceDiscoveryController.h"

#include <QHash>
#include <QList>
#include <QString>

namespace nimbrel {

// What the scan needs of a volume: records belong to the main thread, and the scan doesn't.
struct ScannedVolume
{
    QString path;
    bool encodeFilenames = false;
};

struct FeedScan
{
    QList<int> providers;            // an id for each matching pair of service and volume
    bool filenameEncryption = false; // kept: false without a service, whatever the volumes say
    qsizetype matches = 0;           // such pairs, those of services without an id, too
};

// Kept: a volume in two services' folders counts twice, and "/x/Dropbox2" lies in "/x/Dropbox".
// Reads the clients' files once a volume, which takes as long as their disks take. Any thread.
[[nodiscard]] FeedScan
scanServices(const NBCloudServiceDiscoveryController::Services &availableServices,
             const QList<ScannedVolume> &volumes, const QHash<QString, int> &ids);

} // namespace nimbrel
