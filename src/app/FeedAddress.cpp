#include "app/FeedAddress.h"

namespace nimbrel {

namespace {

bool isThisMachine(const QUrl &url)
{
    const QString host = url.host();
    return host == QLatin1String("127.0.0.1") || host == QLatin1String("::1") ||
           host == QLatin1String("localhost");
}

bool isPlain(const QUrl &url)
{
    return url.scheme() == QLatin1String("http");
}

bool mayBeAsked(const QUrl &url)
{
    const bool isSafe = url.scheme() == QLatin1String("https");
    return url.isValid() && !url.host().isEmpty() &&
           (isSafe || (isPlain(url) && isThisMachine(url)));
}

// QUrlQuery leaves a "+" as it is, which a server reads as a blank.
QString encoded(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

} // namespace

QUrl feedAddress(const QString &address)
{
    const QUrl url(address.trimmed(), QUrl::StrictMode);
    return mayBeAsked(url) ? url : QUrl();
}

bool mayFollow(const QUrl &feed, const QUrl &target)
{
    return mayBeAsked(target) && (!isPlain(target) || isThisMachine(feed));
}

QUrl withParameters(const QUrl &feed, const FeedParameters &parameters)
{
    QStringList query;
    if (feed.hasQuery())
        query.append(feed.query(QUrl::FullyEncoded));
    for (const FeedParameter &parameter : parameters)
        query.append(encoded(parameter.key) + u'=' + encoded(parameter.text()));
    QUrl url = feed;
    url.setFragment(QString());
    url.setQuery(query.join(u'&'), QUrl::StrictMode);
    return url;
}

} // namespace nimbrel
