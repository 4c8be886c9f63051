#include "app/Util.h"

#include "platform/LoginItem.h"
#include "platform/SystemFacts.h"

#include <QCoreApplication>
#include <QCryptographicHash>

#include <algorithm>

namespace nimbrel {

QString Util::OSVersion()
{
    return systemFacts::version();
}

QString Util::hardwareId()
{
    return computeSHA1HashString(systemFacts::serialNumber());
}

// What isn't ASCII has no ASCII bytes: then it is the digest of nothing (kept).
QString Util::computeSHA1HashString(const QString &string)
{
    const bool isAscii = std::all_of(string.begin(), string.end(),
                                     [](QChar character) { return character.unicode() < 0x80; });
    return convertToHexString(computeSHA1Hash(isAscii ? string.toLatin1() : QByteArray()));
}

QByteArray Util::computeSHA1Hash(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha1);
}

QString Util::convertToHexString(const QByteArray &data)
{
    return QString::fromLatin1(data.toHex());
}

bool Util::willAutostart()
{
    return willAutostart(systemFacts::programPath());
}

bool Util::willAutostart(const QString &path)
{
    return loginItem::isEnabled(path);
}

bool Util::setAutostart(bool enabled)
{
    return setAutostart(systemFacts::programPath(), enabled);
}

bool Util::setAutostart(const QString &path, bool enabled)
{
    if (willAutostart(path) == enabled)
        return false;
    return enabled ? loginItem::enable(path) : loginItem::disable(path);
}

bool Util::wasLaunchedAsLoginItem()
{
    return wasLaunchedByProcess(QStringLiteral("lgnw"));
}

// Programs have no creator codes here. The session's own is known by the argument it gives.
bool Util::wasLaunchedByProcess(const QString &creatorCode)
{
    return creatorCode == QLatin1String("lgnw") && QCoreApplication::instance() != nullptr &&
           QCoreApplication::arguments().contains(loginItem::launchArgument);
}

} // namespace nimbrel
