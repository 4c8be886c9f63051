#include "volume/OpenedFolder.h"

#include "config/NBNimbrelFSPreferences.h"
#include "config/PreferencesLimits.h"

namespace nimbrel {

OpenedFolder openFolder(const std::string &root, const std::string &configPath,
                        std::string_view passphrase)
{
    NBPreferencesError error;
    const auto preferences = NBNimbrelFSPreferences().preferencesWithURL(configPath, &error);
    if (!preferences)
        return {.refusal = error};
    if (const auto complaint = judgeLimits(*preferences))
        return {.refusal =
                    NBPreferencesError{std::string(NBNMFSPreferencesErrorDomain), -1, *complaint}};
    return {.view = NBNimbrelFS::withRootPath(root, *preferences, passphrase)};
}

} // namespace nimbrel
