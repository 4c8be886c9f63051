// The observer's way out of the program: one line an event, and one answer a question.
#pragma once

#include "observer/Observer.h"

#include <QByteArray>
#include <QJsonValue>
#include <QSocketNotifier>
#include <QStringList>

#include <memory>

namespace nimbrel::observer {

// Connects to a listening local socket. Events go out as "WHAT\tWHICH". A question is a line of
// words apart by tabs, its answer "answer\t[JSON]":
//   where NAME            [x, y] or null
//   where-row TABLE ROW   likewise
//   tell NAME             see factsOf
//   tell-table NAME       see rowsOf
//   windows               see windows
//   check-layout          the cut controls of the active window
// Main thread. Reads alone; nothing is done in a person's place.
class ObserverSocket final : public QObject
{
public:
    explicit ObserverSocket(const QString &path);
    ~ObserverSocket() override;
    ObserverSocket(const ObserverSocket &) = delete;
    ObserverSocket &operator=(const ObserverSocket &) = delete;

private:
    void say(const QString &what, const QString &which) const;
    void read();
    [[nodiscard]] static QJsonValue answer(const QStringList &words);

    int _socket;
    std::unique_ptr<QSocketNotifier> _notifier;
    Observer _observer;
    QByteArray _text; // of a question whose end hasn't come yet
};

} // namespace nimbrel::observer
