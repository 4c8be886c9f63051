#pragma once

#include "fs/NBErrno.h"

#include <functional>
#include <string>
#include <sys/types.h>

namespace nimbrel {

// Runs `work` while the item's owner may read and write it, then gives it back its permissions: for
// a file whose owner is this process and may not open it, although its user may (a file of mode
// 0200 is written, and parts of its blocks must be read for it). EACCES where nothing can be done,
// and where the owner hasn't all permissions of `needed` (S_IRUSR, S_IWUSR); otherwise what `work`
// gives, or why the permissions couldn't be put back.
NBDone withOwnerAccess(const std::string &onDiskPath, mode_t needed,
                       const std::function<NBDone()> &work);

} // namespace nimbrel
