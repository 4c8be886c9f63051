#include "platform/LoginItem.h"

#include "config/AtomicFile.h"
#include "config/BoundedFile.h"
#include "platform/DesktopEntry.h"
#include "platform/SystemFacts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <optional>

namespace nimbrel::loginItem {

namespace {

QString entryFolder()
{
    return systemFacts::configFolder() + QLatin1String("/autostart");
}

std::string entryPath()
{
    return QFile::encodeName(entryFolder() + QLatin1String("/com.nimbrel.Nimbrel.desktop"))
        .toStdString();
}

// An empty entry where there is no file; nothing when there is one that can't be read.
std::optional<DesktopEntry> readEntry()
{
    constexpr std::size_t maximumSize = std::size_t{1} << 16U;
    const auto read = readBoundedFile(entryPath(), maximumSize);
    if (const auto *text = std::get_if<std::string>(&read))
        return DesktopEntry(QByteArray::fromStdString(*text));
    const auto &error = std::get<NBPreferencesError>(read);
    const bool isMissing = error.domain == posixErrorDomain && error.code == ENOENT;
    return isMissing ? std::optional<DesktopEntry>(std::in_place) : std::nullopt;
}

bool writeEntry(const DesktopEntry &entry)
{
    return QDir().mkpath(entryFolder()) && !replaceFile(entryPath(), entry.text().toStdString());
}

bool isTrue(const QByteArray &value)
{
    return value.compare("true", Qt::CaseInsensitive) == 0 || value == "1";
}

bool isSame(const QString &path, const QString &other)
{
    if (path == other)
        return true;
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(other).canonicalFilePath();
}

bool startsProgram(const DesktopEntry &entry, const QString &path)
{
    const QByteArray program = programOfExec(entry.value("Exec").value_or(QByteArray()));
    return !program.isEmpty() && isSame(QFile::decodeName(program), path);
}

// The second key is GNOME's own, and its settings write it.
bool isInForce(const DesktopEntry &entry)
{
    return !isTrue(entry.value("Hidden").value_or("false")) &&
           isTrue(entry.value("X-GNOME-Autostart-enabled").value_or("true"));
}

void setWhereMissing(DesktopEntry &entry, const QByteArray &key, const QByteArray &value)
{
    if (!entry.value(key))
        entry.setValue(key, value);
}

} // namespace

bool isEnabled(const QString &path)
{
    const auto entry = readEntry();
    return entry && isInForce(*entry) && startsProgram(*entry, path);
}

bool enable(const QString &path)
{
    auto entry = readEntry();
    if (!entry)
        return false;
    entry->setValue("Type", "Application");
    setWhereMissing(*entry, "Name", "Nimbrel");
    if (!startsProgram(*entry, path))
        entry->setValue("Exec", execValue(QFile::encodeName(path), launchArgument.toUtf8()));
    setWhereMissing(*entry, "Icon", "com.nimbrel.Nimbrel");
    setWhereMissing(*entry, "Terminal", "false");
    entry->setValue("X-GNOME-Autostart-enabled", "true");
    entry->setValue("Hidden", "false");
    return writeEntry(*entry);
}

bool disable(const QString &path)
{
    auto entry = readEntry();
    if (!entry)
        return false;
    if (!startsProgram(*entry, path))
        return true; // nothing starts this program
    entry->setValue("Hidden", "true");
    return writeEntry(*entry);
}

} // namespace nimbrel::loginItem
