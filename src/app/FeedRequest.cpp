#include "app/FeedRequest.h"

#include "app/FeedAddress.h"

#include <QNetworkRequest>

#include <utility>

namespace nimbrel {

namespace {

QNetworkRequest requestOf(const QUrl &url, const QString &version)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Nimbrel/") + version);
    // What is sent packed could be a thousand times as big as it looks.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    return request;
}

UpdateFailure::Cause causeOf(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
        return UpdateFailure::Cause::Offline;
    case QNetworkReply::TimeoutError:
        return UpdateFailure::Cause::Timeout;
    case QNetworkReply::SslHandshakeFailedError:
        return UpdateFailure::Cause::Insecure;
    case QNetworkReply::InsecureRedirectError:
    case QNetworkReply::TooManyRedirectsError:
        return UpdateFailure::Cause::Redirected;
    default:
        return UpdateFailure::Cause::Broken;
    }
}

} // namespace

FeedRequest::FeedRequest(const QUrl &feed, QString version, std::chrono::milliseconds limit,
                         Done done)
    : _feed(feed), _version(std::move(version)), _done(std::move(done))
{
    connect(&_limit, &QTimer::timeout, this, [this] { stop(UpdateFailure::Cause::Timeout); });
    _limit.setSingleShot(true);
    _limit.start(limit);
    send(feed);
}

void FeedRequest::send(const QUrl &url)
{
    _body.clear();
    _reply.reset(_network.get(requestOf(url, _version)));
    connect(_reply.get(), &QNetworkReply::metaDataChanged, this, &FeedRequest::checkSize);
    connect(_reply.get(), &QNetworkReply::readyRead, this, &FeedRequest::read);
    // Later, so that an answer that is there at once comes later, too, and the reply may go.
    connect(_reply.get(), &QNetworkReply::finished, this, &FeedRequest::finished,
            Qt::QueuedConnection);
}

FeedRequest::~FeedRequest()
{
    _reply->disconnect(this); // it says that it has been ended
}

// Qt 6.4, told to follow, asks again and again when a server closes the connection.
std::optional<QUrl> FeedRequest::redirection() const
{
    const QUrl target = _reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    const bool isOne = !_stopped && _reply->error() == QNetworkReply::NoError && !target.isEmpty();
    return isOne ? std::optional(_reply->url().resolved(target)) : std::nullopt;
}

bool FeedRequest::follow(const QUrl &target)
{
    constexpr int maximumRedirections = 5;
    if (!mayFollow(_feed, target) || ++_redirections > maximumRedirections) {
        _stopped = UpdateFailure{.cause = UpdateFailure::Cause::Redirected};
        return false;
    }
    send(target);
    return true;
}

void FeedRequest::checkSize()
{
    if (_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong() > maximumSize)
        stop(UpdateFailure::Cause::TooBig);
}

void FeedRequest::read()
{
    _body += _reply->read(maximumSize + 1 - _body.size());
    if (_body.size() > maximumSize)
        stop(UpdateFailure::Cause::TooBig);
}

void FeedRequest::stop(UpdateFailure::Cause cause)
{
    if (_stopped)
        return;
    _stopped = UpdateFailure{.cause = cause};
    _reply->abort();
}

void FeedRequest::finished()
{
    if (const auto target = redirection(); target && follow(*target))
        return;
    _limit.stop();
    const Answer found = answer();
    const Done done = std::exchange(_done, {});
    if (done)
        done(found);
}

FeedRequest::Answer FeedRequest::answer()
{
    if (!_stopped && _reply->error() == QNetworkReply::NoError)
        read();
    if (_stopped)
        return *_stopped;
    const int status = _reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status > 200) // smaller ones aren't the server's last word
        return UpdateFailure{UpdateFailure::Cause::Status, QString::number(status)};
    if (_reply->error() != QNetworkReply::NoError || status != 200)
        return UpdateFailure{causeOf(_reply->error()), _reply->errorString()};
    return _body;
}

} // namespace nimbrel
