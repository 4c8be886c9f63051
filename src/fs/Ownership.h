// Whose a new item is.
#pragma once

#include "fs/NBErrno.h"

#include <string>
#include <sys/types.h>

namespace nimbrel {

// The owner of what is made. Nothing is changed where the process may not change owners.
struct Creator
{
    uid_t user;
    gid_t group;
};

// Only root gives items away.
[[nodiscard]] bool mayChangeOwners() noexcept;

// Gives the item to `creator`, but leaves it the group of a setgid folder. A change of owner clears
// set-uid and set-gid bits; they are put back. `descriptor` may be one of O_PATH; both paths are on
// disk.
NBDone giveTo(Creator creator, int descriptor, const std::string &folder);
NBDone giveTo(Creator creator, const std::string &item, const std::string &folder);

// fchmod(2) for descriptors of O_PATH, too.
NBDone changeMode(int descriptor, mode_t mode);

} // namespace nimbrel
