#pragma once

#include "discovery/NBCloudService.h"

#include <QList>

#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

namespace nimbrel {

// Which cloud clients are installed, and which encrypted folders lie in their folders. Has no state
// of its own; any thread.
class NBCloudServiceDiscoveryController final
{
public:
    using Services = std::vector<std::unique_ptr<NBCloudService>>;
    // Makes a new service of one class.
    using ServiceClass = std::unique_ptr<NBCloudService> (*)();

    // The five classes, in the order of all results.
    [[nodiscard]] static const std::vector<ServiceClass> &serviceClasses();

    // The installed ones of the five, then what Linux has beside them (linux/LinuxServices.h),
    // without folders that are there already. Nothing, never an empty list, when there is none.
    [[nodiscard]] std::optional<Services> availableServices() const;

    // nmFoldersWithURL:
    // The encrypted folders below a local folder, in the order of FolderSearch; an empty list when
    // there are none. Walks the whole tree, so not on the main thread. When `stop` is requested it
    // returns at once, with what it has until then.
    [[nodiscard]] QList<QUrl> nmFoldersWithURL(const QUrl &url,
                                               const std::stop_token &stop = {}) const;
};

} // namespace nimbrel
