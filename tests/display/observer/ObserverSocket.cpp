#include "observer/ObserverSocket.h"

#include "observer/Facts.h"
#include "observer/Places.h"

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace nimbrel::observer {

namespace {

int connected(const QByteArray &path)
{
    sockaddr_un address = {};
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        qFatal("the observer's socket has too long a path: %s", path.constData());
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int end = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto *general = reinterpret_cast<const sockaddr *>(&address);
    if (end < 0 || ::connect(end, general, sizeof address) != 0)
        qFatal("nobody listens to the observer at %s", path.constData());
    return end;
}

QJsonValue json(const Place &place)
{
    return place ? QJsonValue(QJsonArray{place->x(), place->y()}) : QJsonValue();
}

QJsonArray cutControlsInFront()
{
    const QWidget *window = QApplication::activeWindow();
    return window == nullptr ? QJsonArray() : QJsonArray::fromStringList(cutControls(*window));
}

} // namespace

ObserverSocket::ObserverSocket(const QString &path)
    : _socket(connected(QFile::encodeName(path))),
      _notifier(std::make_unique<QSocketNotifier>(_socket, QSocketNotifier::Read)),
      _observer([this](const QString &what, const QString &which) { say(what, which); })
{
    // Programs that this one starts aren't observed.
    qunsetenv("QT_QPA_GENERIC_PLUGINS");
    qunsetenv("NIMBREL_OBSERVER_SOCKET");
    QObject::connect(_notifier.get(), &QSocketNotifier::activated, this, &ObserverSocket::read);
    QCoreApplication::instance()->installEventFilter(&_observer);
    say(QStringLiteral("observing"), QString::number(::getpid()));
}

ObserverSocket::~ObserverSocket()
{
    _notifier.reset();
    ::close(_socket);
}

void ObserverSocket::say(const QString &what, const QString &which) const
{
    const QByteArray line = QStringLiteral("%1\t%2\n").arg(what, which).toUtf8();
    // Whoever listened may have gone; the program goes on as it would without.
    qsizetype sent = 0;
    while (sent < line.size()) {
        const ssize_t part = ::send(_socket, line.constData() + sent,
                                    static_cast<std::size_t>(line.size() - sent), MSG_NOSIGNAL);
        if (part <= 0)
            return;
        sent += part;
    }
}

void ObserverSocket::read()
{
    char bytes[4096];
    const ssize_t count = ::read(_socket, bytes, sizeof bytes);
    if (count <= 0)
        return _notifier->setEnabled(false);
    _text.append(bytes, static_cast<qsizetype>(count));
    while (const qsizetype end = _text.indexOf('\n') + 1) {
        const QStringList words = QString::fromUtf8(_text.left(end - 1)).split(u'\t');
        _text.remove(0, end);
        const QJsonDocument document(QJsonArray{answer(words)});
        say(QStringLiteral("answer"), QString::fromUtf8(document.toJson(QJsonDocument::Compact)));
    }
}

QJsonValue ObserverSocket::answer(const QStringList &words)
{
    const QString &question = words[0];
    if (question == QLatin1String("where"))
        return json(placeOf(words.value(1)));
    if (question == QLatin1String("where-row"))
        return json(placeOfRow(words.value(1), words.value(2)));
    if (question == QLatin1String("tell"))
        return factsOf(words.value(1));
    if (question == QLatin1String("tell-table"))
        return rowsOf(words.value(1));
    if (question == QLatin1String("windows"))
        return windows();
    if (question == QLatin1String("check-layout"))
        return cutControlsInFront();
    qFatal("no such question: %s", qUtf8Printable(question));
}

} // namespace nimbrel::observer
