#pragma once

#include "cli/ExitStatus.h"
#include "cli/PasswordSource.h"

namespace nimbrel {

struct PasswdOptions
{
    std::string folder;
    PasswordSource password; // the one in force
    PasswordSource newPassword;
};

// Puts a folder's key under another password; the files stay as they are.
[[nodiscard]] ExitStatus runPasswd(const PasswdOptions &options);

} // namespace nimbrel
