#pragma once

#include "config/UniqueFd.h"

#include <QObject>

class QSessionManager;

namespace nimbrel {

class NBAppDelegate;
class OrderlyEnd;

// Logout and shutdown: the session manager's word, the window system's, and systemd's
// (org.freedesktop.login1, whose shutdown waits some seconds for who asked it to). Main thread
// only.
class SessionEnd final : public QObject
{
    Q_OBJECT

public:
    SessionEnd(NBAppDelegate &delegate, OrderlyEnd &end);
    ~SessionEnd() override;

protected:
    // The window system's wish to quit would first ask every window whether it may be closed.
    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    void prepareForShutdown(bool isComing);

private:
    void save(QSessionManager &manager);
    void delayShutdown();

    NBAppDelegate &_delegate;
    OrderlyEnd &_end;
    UniqueFd _delay; // while it is open, a shutdown waits
};

} // namespace nimbrel
