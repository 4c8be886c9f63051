#pragma once

#include "discovery/NBCloudService.h"

namespace nimbrel {

// By the client's preferences, a property list in its binary or its XML form.
class NBSugarSyncCloudService final : public NBCloudService
{
public:
    NBSugarSyncCloudService();

    [[nodiscard]] bool isAvailable() override;
};

} // namespace nimbrel
