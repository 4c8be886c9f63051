#pragma once

#include <QLatin1String>
#include <QString>

namespace nimbrel {

// `path` with a leading tilde replaced: "~" and "~/x" by the home folder as it is at this moment,
// "~name" by that user's. An unknown user's stays as it is.
[[nodiscard]] QString expandedTilde(const QString &path);

// The path of `name` in the home folder.
[[nodiscard]] QString inHomeFolder(QLatin1String name);

} // namespace nimbrel
