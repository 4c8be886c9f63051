#include "app/TextFormat.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nimbrel {

namespace {

// What takes an argument. A percent sign is none of them.
constexpr std::array directives{u"%@", u"%ld", u"%d", u"%s"};

// The length of the directive at the start of `text`, or 0.
qsizetype directiveLength(QStringView text)
{
    for (const QStringView directive : directives)
        if (text.startsWith(directive))
            return directive.size();
    return 0;
}

} // namespace

QString formatted(const QString &format, const QStringList &arguments)
{
    QString made;
    qsizetype used = 0;
    for (QStringView rest = format; !rest.isEmpty();) {
        const qsizetype directive = used < arguments.size() ? directiveLength(rest) : 0;
        if (directive > 0)
            made += arguments[used++];
        else
            made += rest.front();
        rest = rest.sliced(rest.startsWith(u"%%") ? 2 : std::max<qsizetype>(directive, 1));
    }
    return made;
}

QString asFormat(QString text)
{
    return std::move(text.replace(QLatin1Char('%'), QLatin1String("%%")));
}

} // namespace nimbrel
