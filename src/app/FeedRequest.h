// One request for the update feed.
#pragma once

#include "app/UpdateFailure.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

namespace nimbrel {

// Sends no cookies, keeps nothing, and sees no more of an answer than its limits. Main thread; its
// end takes the request back.
class FeedRequest final : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 maximumSize = qint64{1024} * 1024; // bytes of the answer

    using Answer = std::variant<QByteArray, UpdateFailure>;
    // Called once, and not while this is made. It may end this.
    using Done = std::function<void(const Answer &answer)>;

    // `feed` has the parameters. `limit` is for all of it, however the bytes come.
    FeedRequest(const QUrl &feed, QString version, std::chrono::milliseconds limit, Done done);
    ~FeedRequest() override;

private:
    void send(const QUrl &url);
    [[nodiscard]] std::optional<QUrl> redirection() const;
    [[nodiscard]] bool follow(const QUrl &target);
    void checkSize();
    void read();
    void stop(UpdateFailure::Cause cause);
    void finished();
    [[nodiscard]] Answer answer();

    QUrl _feed;
    QString _version;
    Done _done;
    QTimer _limit;
    QNetworkAccessManager _network;
    std::unique_ptr<QNetworkReply> _reply;
    QByteArray _body;
    int _redirections = 0;
    std::optional<UpdateFailure> _stopped; // why we ended it ourselves
};

} // namespace nimbrel
