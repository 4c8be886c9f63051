// A real HTTP server on this machine, in the test's own event loop.
#pragma once

#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>
#include <QUrlQuery>

#include <functional>

namespace nimbrel::test {

struct FeedRequestSeen
{
    QByteArray head; // request line and headers

    [[nodiscard]] QByteArray path() const { return head.split(' ').value(1); }
    [[nodiscard]] QUrlQuery query() const { return QUrlQuery(QUrl::fromEncoded(path())); }
    // Of a header, without blanks around it; empty when it isn't there.
    [[nodiscard]] QByteArray header(const QByteArray &name) const
    {
        for (const QByteArray &line : head.split('\n'))
            if (line.toLower().startsWith(name.toLower() + ':'))
                return line.sliced(name.size() + 1).trimmed();
        return {};
    }
};

class FeedServer final
{
public:
    // Writes whatever it likes, and closes or doesn't.
    using Answer = std::function<void(QTcpSocket &connection)>;

    explicit FeedServer(Answer first = {}) : answer(std::move(first))
    {
        QObject::connect(&_server, &QTcpServer::newConnection, &_server, [this] { accept(); });
        _server.listen(QHostAddress::LocalHost);
    }

    [[nodiscard]] QString address(const QString &path = QStringLiteral("/feed")) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(_server.serverPort()).arg(path);
    }

    Answer answer; // for the next requests; none leaves them waiting
    QList<FeedRequestSeen> seen;

private:
    void accept()
    {
        QTcpSocket *connection = _server.nextPendingConnection();
        QObject::connect(connection, &QTcpSocket::disconnected, connection, &QObject::deleteLater);
        QObject::connect(connection, &QTcpSocket::readyRead, &_server, [this, connection] {
            const QByteArray head = connection->peek(65536);
            if (!head.contains("\r\n\r\n"))
                return;
            connection->readAll();
            seen.append({head});
            if (answer)
                answer(*connection);
        });
    }

    QTcpServer _server;
};

// The connection's end is the answer's: after it the client asks anew.
[[nodiscard]] inline FeedServer::Answer response(const QByteArray &status, const QByteArray &body,
                                                 const QByteArray &headers = {})
{
    return [=](QTcpSocket &connection) {
        connection.write("HTTP/1.1 " + status + "\r\nConnection: close\r\nContent-Length: " +
                         QByteArray::number(body.size()) + "\r\n" + headers + "\r\n" + body);
        connection.disconnectFromHost();
    };
}

// Of one version.
[[nodiscard]] inline QByteArray feedOf(const QByteArray &version)
{
    return "<?xml version=\"1.0\"?><rss version=\"2.0\" xmlns:u=\"urn:update\"><channel>"
           "<title>Nimbrel</title><item><title>Nimbrel " +
           version +
           "</title><link>https://example.org/get</link><enclosure url=\"https://example.org/a\" "
           "u:version=\"" +
           version + "\"/></item></channel></rss>";
}

} // namespace nimbrel::test
