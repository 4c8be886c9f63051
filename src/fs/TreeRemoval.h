#pragma once

#include "fs/NBErrno.h"

namespace nimbrel {

// Removes the item at `path`, with all it holds when it is a folder. Stops at the first entry that
// can't be removed and gives that entry's error. Links are removed, never followed, and a folder
// that is moved away meanwhile doesn't lead the removal elsewhere. Takes trees of any depth.
NBDone removeTree(const char *path);

} // namespace nimbrel
