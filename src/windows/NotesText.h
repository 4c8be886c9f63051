#pragma once

#include <QString>

namespace nimbrel {

// Foreign HTML with nothing left in it but plain formatting and links to web pages: no pictures,
// tables, styles or scripts. What can't be laid out, or only in hours (tables in tables as deep as
// the text says, pictures of any size), isn't there any more.
[[nodiscard]] QString plainlyFormatted(const QString &html);

} // namespace nimbrel
