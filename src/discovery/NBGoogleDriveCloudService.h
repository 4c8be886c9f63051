#pragma once

#include "discovery/NBCloudService.h"

namespace nimbrel {

// By the root path in the table of settings of the client.
class NBGoogleDriveCloudService final : public NBCloudService
{
public:
    NBGoogleDriveCloudService();

    [[nodiscard]] bool isAvailable() override;
};

} // namespace nimbrel
