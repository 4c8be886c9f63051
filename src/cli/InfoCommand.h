#pragma once

#include "cli/ExitStatus.h"

#include <string>

namespace nimbrel {

struct InfoOptions
{
    std::string folder;
    bool json = false;
};

// Tells what a folder's configuration says; needs no password.
[[nodiscard]] ExitStatus runInfo(const InfoOptions &options);

} // namespace nimbrel
