#pragma once

#include "discovery/NBCloudService.h"

namespace nimbrel {

// By a line of the record of the last login. Its bytes are searched; as YAML it is never read.
class NBBoxCloudService final : public NBCloudService
{
public:
    NBBoxCloudService();

    [[nodiscard]] bool isAvailable() override;
};

} // namespace nimbrel
