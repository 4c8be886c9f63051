#pragma once

#include "discovery/NBCloudService.h"
#include "discovery/linux/LinuxClient.h"

#include <memory>
#include <vector>

namespace nimbrel {

// The clients that Linux has, in the order of their services.
[[nodiscard]] const std::vector<LinuxClient> &linuxClients();

// A service for each folder of those clients that is there and that `known` hasn't, each folder
// once, whatever path leads to it. isAvailable() has been true for each.
//
// A client's first folder has its name alone; each further one says which it is: "Nextcloud
// (Photos)", with its path where that isn't clear. No two names are equal, nor one of `known`.
[[nodiscard]] std::vector<std::unique_ptr<NBCloudService>>
linuxServices(const std::vector<std::unique_ptr<NBCloudService>> &known,
              const std::vector<LinuxClient> &clients = linuxClients());

} // namespace nimbrel
