#include "assistants/widgets/CapsLock.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QKeyEvent>

#include <optional>

namespace nimbrel::capsLock {

namespace {

bool shines(const QString &light)
{
    QFile brightness(light + QLatin1String("/brightness"));
    constexpr qint64 digits = 8;
    return brightness.open(QIODevice::ReadOnly) && brightness.read(digits).trimmed().toInt() > 0;
}

// X11's and Wayland's modifiers have the lock in the second bit, as it was before this press.
// Nothing where the platform gives no modifiers of its own.
std::optional<bool> lockOfWindowSystem(const QKeyEvent &press)
{
    constexpr quint32 lockMask = 2;
    const QString platform = QGuiApplication::platformName();
    const bool tells = press.nativeModifiers() != 0 || platform == QLatin1String("xcb") ||
                       platform.startsWith(QLatin1String("wayland"));
    return tells ? std::optional((press.nativeModifiers() & lockMask) != 0) : std::nullopt;
}

// A capital without Shift, or a small letter with it. Nothing for what is no single letter.
std::optional<bool> lockOfLetter(const QKeyEvent &press)
{
    const QString text = press.text();
    if (text.size() != 1 || text.front().toUpper() == text.front().toLower())
        return std::nullopt;
    return text.front().isUpper() != press.modifiers().testFlag(Qt::ShiftModifier);
}

} // namespace

bool isLightOn()
{
    const QDir lights(QStringLiteral("/sys/class/leds"));
    for (const QString &light : lights.entryList({QStringLiteral("*::capslock")}))
        if (shines(lights.filePath(light)))
            return true;
    return false;
}

bool isOnBehind(const QKeyEvent &press, bool before)
{
    const std::optional<bool> told = lockOfWindowSystem(press);
    if (press.key() == Qt::Key_CapsLock)
        return !told.value_or(before);
    return told ? *told : lockOfLetter(press).value_or(before);
}

} // namespace nimbrel::capsLock
