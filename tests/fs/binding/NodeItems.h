// Items for tests of what the kernel knows.
#pragma once

#include "fs/NodeTable.h"

#include <string>
#include <sys/stat.h>

namespace nimbrel::test {

inline struct stat item(ino_t inode, mode_t type = S_IFREG)
{
    struct stat attributes = {};
    attributes.st_dev = 7;
    attributes.st_ino = inode;
    attributes.st_mode = type | 0644U;
    return attributes;
}

inline std::string pathOf(const NodeTable &table, const Node &node)
{
    const auto path = table.pathOf(node);
    return path ? *path : "error " + std::to_string(path.code());
}

} // namespace nimbrel::test
