// A path's extension, and folders that still have the old one.
#pragma once

#include <QString>

namespace nimbrel {

inline const QString folderExtension = QStringLiteral("nmc");
inline const QString oldFolderExtension = QStringLiteral("nm");

// Behind the last dot of the last component; empty where there is none. A name that only begins
// with a dot has none. Final slashes don't count.
[[nodiscard]] QString pathExtension(const QString &path);
// The path with its extension, if any, replaced.
[[nodiscard]] QString withPathExtension(const QString &path, const QString &extension);

// Where the folder at `path` lies from now on. One with the old extension is renamed to the new
// one; where nothing is there the new path stands; where renaming fails, also because the new name
// is taken, the old one does.
[[nodiscard]] QString migratedPath(const QString &path);

} // namespace nimbrel
