#pragma once

#include "discovery/NBCloudService.h"
#include "discovery/linux/LinuxClient.h"

namespace nimbrel {

// One of the folders of a client on Linux. Available as long as the client names the folder and,
// but for mounts, something is there.
class LinuxCloudService final : public NBCloudService
{
public:
    LinuxCloudService(QString name, const LinuxClient &client, QString folder);

    [[nodiscard]] bool isAvailable() override;
    // Its second half, for a folder that the client has just named.
    [[nodiscard]] bool isThere();

private:
    LinuxClient _client;
    QString _folder;
};

} // namespace nimbrel
