// A link to a mounted disk on the desktop.
#pragma once

#include <QString>

namespace nimbrel {

// The label on the desktop, or "LABEL (1)" and so on where something is there. A dangling link
// doesn't count as something.
[[nodiscard]] QString freeAliasPath(const QString &desktop, const QString &label);

// Makes a link to `target` under such a path, which it gives even where the link can't be made. A
// link of an earlier run that leads to `target` already is taken over.
[[nodiscard]] QString makeAlias(const QString &desktop, const QString &label,
                                const QString &target);

// Removes the link at `alias` if it still is one to `target`: the user may have put a folder of the
// same name there since. An empty path is none.
void removeAlias(const QString &alias, const QString &target);

} // namespace nimbrel
