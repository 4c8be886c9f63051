#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace nimbrel {

// Where an item lies when no link is on the way, and where folders do.
struct ResolvedPaths
{
    QString item;
    QHash<QString, QString> folders; // by the paths that were asked for

    // The folder's resolved path; the path itself where it is none of them.
    [[nodiscard]] QString folder(const QString &path) const { return folders.value(path, path); }
};

// Follows the links on the way to an item (but not the item itself, where it is one) and to these
// folders; all absolute. What can't be resolved stays as it is. The work of a child process: links
// may lie on our own disks, for which this process mustn't wait (see DiskFiles.h), or on a disk
// that doesn't answer, which is given up after some seconds. Blocks; any thread.
[[nodiscard]] ResolvedPaths resolvePaths(const QString &item, const QStringList &folders);

} // namespace nimbrel
