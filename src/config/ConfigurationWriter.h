#pragma once

#include "config/FileError.h"
#include "config/NBNimbrelFSSettings.h"

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

// Writes a configuration that always opens again. The text of preferenceXMLWithNMFS is read back
// with the reader and its key opened with `passphrase` first; where that fails because the folder's
// own key size, salt length or iteration count differ from the template's, these are written in
// their place; when it still fails nothing is written. The file that stood at `path` is kept in
// `backupFolder`, then replaced in one step.
[[nodiscard]] std::optional<FileError> writeConfiguration(const std::string &path,
                                                          const NBNimbrelFSSettings &settings,
                                                          std::string_view passphrase,
                                                          const std::string &backupFolder);

} // namespace nimbrel
