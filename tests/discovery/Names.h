#pragma once

#include "discovery/NBCloudService.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nimbrel::test {

using NamedRoots = std::vector<std::pair<std::string, std::string>>;

// Names and roots, in their order.
[[nodiscard]] inline NamedRoots
namedRoots(const std::vector<std::unique_ptr<NBCloudService>> &services)
{
    NamedRoots roots;
    for (const auto &service : services)
        roots.emplace_back(service->name().toStdString(),
                           service->storageURL().toLocalFile().toStdString());
    return roots;
}

} // namespace nimbrel::test
