#pragma once

#include <QString>
#include <QStringList>

namespace nimbrel {

// Fills a format of the string table: each "%@" (and "%ld", "%d", "%s") takes the next argument,
// "%%" is a percent sign. A directive without an argument stays as it stands: nothing is read that
// isn't there.
[[nodiscard]] QString formatted(const QString &format, const QStringList &arguments = {});

// `text` so that it comes out of formatted() as it is.
[[nodiscard]] QString asFormat(QString text);

} // namespace nimbrel
