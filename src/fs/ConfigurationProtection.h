// The folder's own files, which no program may change through the disk.
#pragma once

#include "fs/NBNimbrelFS.h"

#include <string>

namespace nimbrel {

// Without the configuration file nobody opens the folder again. With plain names it stands in the
// root under its own name, where a copy or a clean-up can reach it; encrypted names never lead to
// it. True for `path` where that is the configuration, under its present name or its old one, and
// for another spelling that leads there on a store that doesn't tell the cases apart.
[[nodiscard]] bool isConfiguration(NBNimbrelFS &delegate, const std::string &path);

// The same of an open file, under whatever name it was opened.
[[nodiscard]] bool isConfiguration(NBNimbrelFS &delegate, const NBFileHandle &file);

} // namespace nimbrel
