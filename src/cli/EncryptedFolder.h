#pragma once

#include "cli/PasswordSource.h"
#include "config/NBPreferencesDictionary.h"
#include "fs/NBNimbrelFS.h"

#include <memory>
#include <string>

namespace nimbrel {

// An encrypted folder that exists, its configuration read and judged. Changes nothing on disk.
class EncryptedFolder final
{
public:
    // Throws CommandError (FolderRefused) where there is no folder, no configuration, or one that
    // is refused.
    explicit EncryptedFolder(const std::string &path);

    [[nodiscard]] const std::string &path() const noexcept { return _path; } // canonical
    [[nodiscard]] const std::string &configurationPath() const noexcept
    {
        return _configurationPath;
    }
    [[nodiscard]] const NBPreferencesDictionary &preferences() const noexcept
    {
        return _preferences;
    }

    // The folder with its key. Takes as long as the key's derivation. Throws CommandError
    // (WrongPassword).
    [[nodiscard]] std::unique_ptr<NBNimbrelFS> open(const SecureBuffer &password) const;
    // The same with the password that `source` gives.
    [[nodiscard]] std::unique_ptr<NBNimbrelFS> open(const PasswordSource &source) const;

private:
    std::string _path;
    std::string _configurationPath;
    NBPreferencesDictionary _preferences;
};

} // namespace nimbrel
