#pragma once

#include "fs/UserFileSystem.h"

#include <QString>

namespace nimbrel {

// Tells the user why the disk `label` could not be mounted, and what to do. The same reason is told
// once while its alert is up and for a second after: ten disks that fail at start for one cause are
// one alert. Main thread.
void showMountFailure(const QString &label, const MountFailure &failure);

} // namespace nimbrel
