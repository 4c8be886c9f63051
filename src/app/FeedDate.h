#pragma once

#include <QDateTime>
#include <QString>

namespace nimbrel {

// A feed's date ("Sat, 21 Nov 2026 22:26:40 GMT": RFC 822, and RFC 2822, its successor); invalid
// when it isn't one.
[[nodiscard]] QDateTime feedDate(const QString &text);

} // namespace nimbrel
