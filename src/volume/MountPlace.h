#pragma once

#include <QString>

#include <string>

namespace nimbrel {

// A mount point as the system's table names it: the folder above resolved, nothing asked of the
// mount point itself, which may be a disk that hangs.
[[nodiscard]] std::string canonicalMountPoint(const QString &mountPoint);

} // namespace nimbrel
