#include "app/FeedDate.h"

namespace nimbrel {

namespace {

// Qt reads the offset alone.
constexpr struct
{
    const char *name;
    const char *offset;
} zones[] = {{"UT", "+0000"},  {"UTC", "+0000"}, {"GMT", "+0000"}, {"Z", "+0000"},
             {"EST", "-0500"}, {"EDT", "-0400"}, {"CST", "-0600"}, {"CDT", "-0500"},
             {"MST", "-0700"}, {"MDT", "-0600"}, {"PST", "-0800"}, {"PDT", "-0700"}};

} // namespace

QDateTime feedDate(const QString &text)
{
    QString date = text.simplified();
    for (const auto &zone : zones) {
        const QString end = u' ' + QString::fromLatin1(zone.name);
        if (!date.endsWith(end, Qt::CaseInsensitive))
            continue;
        date = date.chopped(end.size()) + u' ' + QLatin1String(zone.offset);
        break;
    }
    return QDateTime::fromString(date, Qt::RFC2822Date);
}

} // namespace nimbrel
