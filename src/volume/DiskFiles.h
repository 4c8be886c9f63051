// Files that the application itself puts onto its disks.
#pragma once

#include <QString>

namespace nimbrel {

// Each is the work of a child process. A process that serves a disk and waits for it, too, can't
// end when it is killed in that moment, and the disk hangs with it. The child works from inside the
// disk, so that it never writes into the bare mount point of one that has died. Failures are none
// of the user's business. They block until they are done; any thread.

// Writes an empty file ".Trashes" into the disk at `mountPoint`, in whose presence the original
// platform makes no trash folder on it; nothing where something of that name is there.
void keepTrashAway(const QString &mountPoint);

// Copies the file at `from` onto the disk as `name`; nothing where something of that name is there.
void copyOntoDisk(const QString &from, const QString &mountPoint, const QString &name);

} // namespace nimbrel
