#pragma once

#include "discovery/NBCloudService.h"

namespace nimbrel {

// By the settings of the accounts: the last listed file that names a folder is taken.
class NBSkyDriveCloudService final : public NBCloudService
{
public:
    NBSkyDriveCloudService();

    [[nodiscard]] bool isAvailable() override;
};

} // namespace nimbrel
