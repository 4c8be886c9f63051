#include "app/ApplicationBus.h"

#include "app/SystemLog.h"
#include "platform/SessionBusAddress.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

namespace nimbrel {

namespace {

// Qt takes it for the next window that comes up.
void takeActivationToken(const QVariantMap &platformData)
{
    const QString token = platformData.value(QStringLiteral("activation-token")).toString();
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

} // namespace

ApplicationBus::Ownership ApplicationBus::takeName()
{
    if (sessionBusAddress().empty() || !QDBusConnection::sessionBus().isConnected()) {
        systemLog(
            QStringLiteral("There is no session bus: file managers can't hand folders over."));
        return Ownership::NoBus;
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(runningApplication::objectPath, this, QDBusConnection::ExportAllSlots))
        systemLog(QStringLiteral("The application can't be reached over the session bus."));
    return bus.registerService(runningApplication::busName) ? Ownership::Ours : Ownership::Anothers;
}

void ApplicationBus::Activate(const QVariantMap &platformData)
{
    takeActivationToken(platformData);
    Q_EMIT requested({ApplicationRequest::Kind::Activate, {}});
}

void ApplicationBus::Open(const QStringList &uris, const QVariantMap &platformData)
{
    takeActivationToken(platformData);
    Q_EMIT requested({ApplicationRequest::Kind::Open, uris});
}

void ApplicationBus::ActivateAction(const QString &name, const QVariantList &parameters,
                                    const QVariantMap &platformData)
{
    takeActivationToken(platformData);
    if (name == runningApplication::revealAction)
        Q_EMIT requested({ApplicationRequest::Kind::Reveal, parameters.value(0).toStringList()});
    else
        systemLog(QStringLiteral("Nobody knows the action \"%1\".").arg(name));
}

} // namespace nimbrel
