#include "app/SessionEnd.h"

#include "app/NBAppDelegate.h"
#include "app/OrderlyEnd.h"
#include "app/Texts.h"
#include "volume/NBVolumesController.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>

#include <fcntl.h>

namespace nimbrel {

namespace {

const QString loginService = QStringLiteral("org.freedesktop.login1");
const QString loginPath = QStringLiteral("/org/freedesktop/login1");
const QString loginInterface = QStringLiteral("org.freedesktop.login1.Manager");

} // namespace

SessionEnd::SessionEnd(NBAppDelegate &delegate, OrderlyEnd &end) : _delegate(delegate), _end(end)
{
    qGuiApp->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, &SessionEnd::save,
            Qt::DirectConnection);
    delayShutdown();
}

SessionEnd::~SessionEnd() = default;

bool SessionEnd::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != qGuiApp || event->type() != QEvent::Quit)
        return QObject::eventFilter(watched, event);
    event->accept();
    _end.terminate();
    return true;
}

// The logout may yet be cancelled: disks stay. The autostart entry brings the program back, not the
// session manager.
void SessionEnd::save(QSessionManager &manager)
{
    manager.setRestartHint(QSessionManager::RestartNever);
    if (_delegate.hasVolumesController())
        _delegate.volumesController().saveVolumes();
}

void SessionEnd::delayShutdown()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return; // a machine without it has no such word to give
    bus.connect(loginService, loginPath, loginInterface, QStringLiteral("PrepareForShutdown"), this,
                SLOT(prepareForShutdown(bool)));
    QDBusMessage call = QDBusMessage::createMethodCall(loginService, loginPath, loginInterface,
                                                       QStringLiteral("Inhibit"));
    call.setArguments({QStringLiteral("shutdown"), QStringLiteral("Nimbrel"),
                       texts::tr("Disks are unmounted"), QStringLiteral("delay")});
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *watcher;
        if (!reply.isError())
            _delay = UniqueFd(::fcntl(reply.value().fileDescriptor(), F_DUPFD_CLOEXEC, 0));
    });
}

void SessionEnd::prepareForShutdown(bool isComing)
{
    if (isComing)
        _end.terminate(); // the delay ends with the process
}

} // namespace nimbrel
