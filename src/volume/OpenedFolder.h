#pragma once

#include "config/NBPreferencesError.h"
#include "fs/NBNimbrelFS.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

// What came of opening an encrypted folder: a view of it, or why its configuration is refused;
// neither when the password is wrong.
struct OpenedFolder
{
    std::shared_ptr<NBNimbrelFS> view = {};
    std::optional<NBPreferencesError> refusal = {};
};

// Reads and judges the configuration at `configPath` and opens its key. Takes as long as the key's
// derivation; any thread.
[[nodiscard]] OpenedFolder openFolder(const std::string &root, const std::string &configPath,
                                      std::string_view passphrase);

} // namespace nimbrel
