#include "discovery/linux/LinuxCloudService.h"

#include <utility>

namespace nimbrel {

LinuxCloudService::LinuxCloudService(QString name, const LinuxClient &client, QString folder)
    : NBCloudService(std::move(name)), _client(client), _folder(std::move(folder))
{
}

bool LinuxCloudService::isAvailable()
{
    return _client.folders().contains(_folder) && isThere();
}

bool LinuxCloudService::isThere()
{
    return _client.isMounted ? finishUnseen(_folder) : finish(_folder);
}

} // namespace nimbrel
