#pragma once

#include "cli/ExitStatus.h"
#include "cli/PasswordSource.h"

#include <cstdint>

namespace nimbrel {

struct CreateOptions
{
    std::string folder;
    bool plainNames = false;
    std::int64_t keySize = 256;    // bits
    std::int64_t blockSize = 4096; // bytes
    PasswordSource password;
};

// Makes a new encrypted folder. A failure leaves nothing of it behind.
[[nodiscard]] ExitStatus runCreate(const CreateOptions &options);

} // namespace nimbrel
