#include "discovery/NBGoogleDriveCloudService.h"

#include "discovery/DatabaseCopy.h"
#include "discovery/HomePath.h"

namespace nimbrel {

NBGoogleDriveCloudService::NBGoogleDriveCloudService()
    : NBCloudService(QStringLiteral("Google Drive"))
{
}

bool NBGoogleDriveCloudService::isAvailable()
{
    const QString path =
        inHomeFolder(QLatin1String("Library/Application Support/Google/Drive/sync_config.db"));
    const auto lines =
        databaseLines(path, "SELECT data_value FROM data WHERE entry_key='local_sync_root_path'");
    return lines && finish(QString::fromUtf8(*lines).trimmed());
}

} // namespace nimbrel
