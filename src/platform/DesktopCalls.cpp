#include "platform/DesktopCalls.h"

#include "config/UniqueFd.h"
#include "platform/SessionBusAddress.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <fcntl.h>
#include <functional>
#include <optional>

namespace nimbrel::desktop {

namespace {

// Makes the call when its turn comes; nothing when that can't be done.
using Way = std::function<std::optional<QDBusMessage>()>;

struct Ways
{
    QList<Way> calls; // in the order of trying
    QString argument; // what xdg-open gets at last
};

Way fileManagerCall(const QString &method, const QString &path)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                       QStringLiteral("/org/freedesktop/FileManager1"),
                                       QStringLiteral("org.freedesktop.FileManager1"), method);
    const QString uri = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
    call.setArguments({QStringList{uri}, QString()});
    return [call] { return call; };
}

// Every method takes the window it belongs to, the thing itself, and options; we have neither.
QDBusMessage portalCall(const QString &method, const QVariant &thing)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
                                       QStringLiteral("/org/freedesktop/portal/desktop"),
                                       QStringLiteral("org.freedesktop.portal.OpenURI"), method);
    call.setArguments({QString(), thing, QVariantMap()});
    return call;
}

// The portal takes items as descriptors. One that only names the item asks nothing of its disk. But
// it keeps the disk from being unmounted: it isn't opened before it is needed.
Way portalCallWithItem(const QString &method, const QString &path)
{
    return [method, path]() -> std::optional<QDBusMessage> {
        const UniqueFd item(::open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC));
        if (!item)
            return std::nullopt;
        return portalCall(method, QVariant::fromValue(QDBusUnixFileDescriptor(item.get())));
    };
}

bool isBusThere()
{
    return !sessionBusAddress().empty() && QDBusConnection::sessionBus().isConnected();
}

void startProgram(const QString &argument)
{
    if (!QProcess::startDetached(QStringLiteral("xdg-open"), {argument}))
        qWarning() << "Nothing on this desktop opens" << argument;
}

void tryWays(Ways ways)
{
    if (ways.calls.isEmpty() || !isBusThere())
        return startProgram(ways.argument);
    const std::optional<QDBusMessage> call = ways.calls.takeFirst()();
    if (!call)
        return tryWays(ways);
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(*call),
                                                QCoreApplication::instance());
    // It deletes itself when the answer is there.
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, ways] {
        watcher->deleteLater();
        if (watcher->isError())
            tryWays(ways);
    });
}

} // namespace

void showFolder(const QString &folder)
{
    tryWays({{fileManagerCall(QStringLiteral("ShowFolders"), folder),
              portalCallWithItem(QStringLiteral("OpenFile"), folder)},
             folder});
}

void wakeFileManager()
{
    if (!isBusThere())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("StartServiceByName"));
    call.setArguments({QStringLiteral("org.freedesktop.FileManager1"), quint32(0)});
    QDBusConnection::sessionBus().asyncCall(call); // nothing depends on its answer
}

void openFile(const QString &file)
{
    tryWays({{portalCallWithItem(QStringLiteral("OpenFile"), file)}, file});
}

void revealItem(const QString &item)
{
    tryWays({{fileManagerCall(QStringLiteral("ShowItems"), item),
              portalCallWithItem(QStringLiteral("OpenDirectory"), item)},
             QFileInfo(item).path()});
}

void openAddress(const QUrl &url)
{
    const QString address = QString::fromLatin1(url.toEncoded());
    tryWays({{[address] { return portalCall(QStringLiteral("OpenURI"), address); }}, address});
}

} // namespace nimbrel::desktop
