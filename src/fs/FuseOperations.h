#pragma once

#include "fs/FuseRequest.h"

namespace nimbrel {

// The table that libfuse calls; its user data is a FuseDisk.
[[nodiscard]] const fuse_lowlevel_ops &fuseOperations();

// The parts of the table, each in its own file.
void addNameOperations(fuse_lowlevel_ops &operations);
void addFolderOperations(fuse_lowlevel_ops &operations);
void addContentOperations(fuse_lowlevel_ops &operations);
void addAttributeOperations(fuse_lowlevel_ops &operations);

} // namespace nimbrel
