#include "discovery/NBSugarSyncCloudService.h"

#include "discovery/ClientFile.h"
#include "discovery/HomePath.h"
#include "discovery/PropertyListText.h"

namespace nimbrel {

NBSugarSyncCloudService::NBSugarSyncCloudService() : NBCloudService(QStringLiteral("Sugar Sync")) {}

bool NBSugarSyncCloudService::isAvailable()
{
    const auto file = clientFile(
        inHomeFolder(QLatin1String("Library/Preferences/com.sharpcast.SugarSync.plist")));
    // One flat key: the point doesn't lead into another dictionary.
    return file && finish(propertyListText(*file, "General.DefaultSyncFolderPath"));
}

} // namespace nimbrel
