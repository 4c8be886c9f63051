#include "platform/Preferences.h"

#include <QLatin1String>

namespace nimbrel {

bool Preferences::boolValue(const QString &key) const
{
    const QVariant stored = value(key);
    if (stored.typeId() == QMetaType::Bool)
        return stored.toBool();
    // What a file gives is text, perhaps by hand.
    const QString text = stored.toString().trimmed().toLower();
    for (const QLatin1String word :
         {QLatin1String("true"), QLatin1String("yes"), QLatin1String("on")})
        if (text == word)
            return true;
    return text.toLongLong() != 0;
}

} // namespace nimbrel
