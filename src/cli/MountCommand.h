#pragma once

#include "cli/ExitStatus.h"
#include "cli/PasswordSource.h"

#include <string>
#include <vector>

namespace nimbrel {

struct MountCommandOptions
{
    std::string folder;
    std::string mountPoint;
    bool foreground = false;
    bool readOnly = false;
    bool allowOther = false;
    std::vector<std::string> options; // of -o
    PasswordSource password;
};

// Shows an encrypted folder decrypted. Returns when the disk is usable and leaves a daemon that
// serves it; with `foreground`, returns when the disk has gone.
[[nodiscard]] ExitStatus runMount(const MountCommandOptions &options);

} // namespace nimbrel
