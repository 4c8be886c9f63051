#include "fs/FuseOperations.h"

namespace nimbrel {

namespace {

// The kernel's greeting, and what is wanted of it.
void greet(void *userData, fuse_conn_info *connection)
{
    const auto want = [&](unsigned capability) {
        connection->want |= connection->capable & capability;
    };
    want(FUSE_CAP_ASYNC_READ | FUSE_CAP_AUTO_INVAL_DATA | FUSE_CAP_PARALLEL_DIROPS |
         FUSE_CAP_READDIRPLUS | FUSE_CAP_READDIRPLUS_AUTO);
    // The store applies the umask itself, so that a folder's default ACL comes before it. Only
    // where others are let in does the kernel have to know of ACLs.
    want(FUSE_CAP_DONT_MASK);
    if (static_cast<FuseDisk *>(userData)->isShared)
        want(FUSE_CAP_POSIX_ACL);
    connection->want &= ~static_cast<unsigned>(
        // A program was told that its bytes are written: they have to be.
        FUSE_CAP_WRITEBACK_CACHE |
        // The kernel clears set-uid bits; a daemon that is root wouldn't.
        FUSE_CAP_HANDLE_KILLPRIV |
        // So it does for an open that truncates only where that is a request of its own.
        FUSE_CAP_ATOMIC_O_TRUNC |
        // One copy less: requests are read straight into the buffer that is enciphered.
        FUSE_CAP_SPLICE_READ | FUSE_CAP_SPLICE_WRITE | FUSE_CAP_SPLICE_MOVE);
    static_cast<FuseDisk *>(userData)->didStart();
}

fuse_lowlevel_ops makeOperations()
{
    fuse_lowlevel_ops operations{};
    operations.init = greet;
    addNameOperations(operations);
    addFolderOperations(operations);
    addContentOperations(operations);
    addAttributeOperations(operations);
    return operations;
}

} // namespace

const fuse_lowlevel_ops &fuseOperations()
{
    static const fuse_lowlevel_ops operations = makeOperations();
    return operations;
}

} // namespace nimbrel
