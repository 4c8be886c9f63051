#include "windows/WebAddress.h"

#include <QUrl>

namespace nimbrel {

bool isWebAddress(const QUrl &url)
{
    const QString scheme = url.scheme(); // lower-case already
    const bool isWeb = scheme == QLatin1String("http") || scheme == QLatin1String("https");
    return isWeb && url.isValid() && !url.host().isEmpty();
}

} // namespace nimbrel
