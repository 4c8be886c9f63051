#pragma once

#include "platform/RunningApplication.h"

#include <QList>
#include <QObject>
#include <QTimer>

namespace nimbrel {

class NBAppDelegate;

// What was asked of the application from outside, one after the other. A request waits while an
// assistant or an alert has the user: its own questions would lie on top of those. Main thread
// only.
class Requests final : public QObject
{
    Q_OBJECT

public:
    explicit Requests(NBAppDelegate &delegate);

    void add(const ApplicationRequest &request);
    // The start has come to its end: requests are taken from now on.
    void begin();

private:
    void takeNext();
    void take(const ApplicationRequest &request);
    void open(const QString &url);

    NBAppDelegate &_delegate;
    QList<ApplicationRequest> _waiting;
    QTimer _again;
    bool _hasBegun = false;
    bool _isTaking = false;
};

} // namespace nimbrel
