#pragma once

#include "fs/NBErrno.h"

#include <string>

namespace nimbrel {

// Unmounts the disk at `mountPoint` (canonical) from this process's view: umount2(2) as root,
// fusermount3 -u otherwise. EBUSY while files are open; nothing is detached lazily. EINVAL where
// no mount stands, EPERM for someone else's, ENOSYS without fusermount3.
NBDone unmountDisk(const std::string &mountPoint);

// Takes a disk out of the tree at once, whoever uses it: for a dead mount, or at a process's end.
// The same errors, but EBUSY.
NBDone detachDisk(const std::string &mountPoint);

// Ends the connection of a FUSE disk whose server will never answer again: who waits for it gets
// ECONNABORTED, and the disk is a dead mount. Through the kernel's control files
// (/sys/fs/fuse/connections), which belong to who mounted, or umount2(2) as root. EINVAL where no
// FUSE disk stands, EPERM where neither way is open.
NBDone abortDisk(const std::string &mountPoint);

} // namespace nimbrel
