#include "platform/SettingsFile.h"

#include "config/AtomicFile.h"
#include "config/BoundedFile.h"
#include "config/FileWork.h"
#include "config/UniqueFd.h"
#include "platform/SettingsFileCheck.h"
#include "platform/SystemFacts.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLockFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr std::size_t maximumSize = std::size_t{32} << 20U; // far more than we ever write
constexpr int longestWriting = 3000;                        // ms, of another process

QString userFile()
{
    const QString folder = systemFacts::configFolder();
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/Nimbrel/Nimbrel.conf");
}

// What the file says is nobody else's business. A filesystem without modes can't do better.
void narrow(const std::string &path)
{
    static_cast<void>(::chmod(path.c_str(), 0600));
}

// A new file of that content. False with errno when the name is taken or it fails.
bool makeFile(const std::string &path, std::string_view text)
{
    const UniqueFd descriptor(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!descriptor)
        return false;
    if (writeToDisk(descriptor.get(), text) && syncFolder(folderOfPath(path)))
        return true;
    const int code = errno;
    ::unlink(path.c_str());
    errno = code;
    return false;
}

QString messageOf(const FileError &error)
{
    return QString::fromStdString(error.message);
}

QString temporaryTrouble()
{
    return QStringLiteral("Could not keep the preferences in a temporary file in \"%1\".")
        .arg(QDir::tempPath());
}

// What the file gives back: UTF-8 holds no half characters.
QVariant storedForm(const QVariant &value)
{
    if (!value.isValid() || value.typeId() == QMetaType::QByteArray)
        return value;
    return QString::fromUtf8(value.toString().toUtf8());
}

} // namespace

SettingsFile::SettingsFile() : SettingsFile(userFile()) {}

SettingsFile::SettingsFile(const QString &path) : _path(QFile::encodeName(path).toStdString())
{
    const auto failure = load();
    _trouble = failure ? failure : damage();
}

SettingsFile::~SettingsFile()
{
    if (!_changes.isEmpty() && !synchronize())
        qWarning("%s", qUtf8Printable(*_trouble));
}

QVariant SettingsFile::value(const QString &key) const
{
    const auto change = _changes.constFind(key);
    const QVariant value = change == _changes.cend() ? _stored.value(key) : *change;
    return value.isValid() ? value : _defaults.value(key);
}

void SettingsFile::setValue(const QString &key, const QVariant &value)
{
    _changes.insert(key, storedForm(value));
}

void SettingsFile::remove(const QString &key)
{
    _changes.insert(key, QVariant());
}

void SettingsFile::registerDefaults(const QHash<QString, QVariant> &defaults)
{
    _defaults.insert(defaults);
}

std::optional<QString> SettingsFile::load()
{
    if (_path.empty())
        return QStringLiteral("There is no home folder to keep the preferences in.");
    const auto file = readBoundedFile(_path, maximumSize);
    const auto *error = std::get_if<NBPreferencesError>(&file);
    if (error && (error->domain != posixErrorDomain || error->code != ENOENT))
        return QString::fromStdString(error->message);
    const auto checked =
        error ? CheckedSettings() : checkedSettings(QByteArrayView(std::get<std::string>(file)));
    const auto values = settingsValues(checked.text);
    if (!values)
        return temporaryTrouble();
    _stored = *values;
    _isDamaged = checked.isDamaged;
    return std::nullopt;
}

std::optional<QString> SettingsFile::damage() const
{
    if (!_isDamaged)
        return std::nullopt;
    return QStringLiteral("Some lines of the preferences in \"%1\" can't be understood.")
        .arg(QFile::decodeName(_path.c_str()));
}

bool SettingsFile::synchronize()
{
    const auto failure = _changes.isEmpty() ? load() : store();
    _trouble = failure ? failure : damage();
    return !failure;
}

std::optional<QString> SettingsFile::store()
{
    if (_path.empty())
        return load(); // says why
    const std::string folder = folderOfPath(_path);
    if (!makePrivateFolder(folder))
        return messageOf(fileError("make the folder", folder, errno));
    QLockFile lock(QFile::decodeName(_path.c_str()) + QStringLiteral(".lock"));
    // Where there can be no lock, the writing itself tells why.
    if (!lock.tryLock(longestWriting) && lock.error() == QLockFile::LockFailedError)
        return QStringLiteral("Another program keeps the preferences from being stored.");
    if (auto failure = load())
        return failure;
    if (_isDamaged && !keepCopy(QStringLiteral("damaged")))
        return *damage() + QStringLiteral(" They can't be copied either, so nothing is stored.");
    return writeChanges();
}

std::optional<QString> SettingsFile::writeChanges()
{
    SettingsValues values = _stored;
    values.insert(_changes);
    values.removeIf([](const auto &value) { return !value->isValid(); });
    const auto text = settingsText(values);
    if (!text)
        return temporaryTrouble();
    if (auto failure = write(*text))
        return failure;
    _stored = std::move(values);
    _isDamaged = false;
    _changes.clear();
    return std::nullopt;
}

std::optional<QString> SettingsFile::write(const QByteArray &text) const
{
    narrow(_path); // the new file takes over the old one's mode
    const std::string_view bytes(text.constData(), static_cast<std::size_t>(text.size()));
    if (const auto error = replaceFile(_path, bytes, 0600))
        return messageOf(*error);
    narrow(_path); // where the old one was somebody else's
    return std::nullopt;
}

std::optional<QString> SettingsFile::keepCopy(const QString &reason)
{
    const auto text = readBoundedFile(_path, maximumSize);
    if (std::holds_alternative<NBPreferencesError>(text))
        return std::nullopt;
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString base =
        QStringLiteral("%1.%2-%3").arg(QFile::decodeName(_path.c_str()), reason, time);
    QString path = base;
    for (int number = 2;
         !makeFile(QFile::encodeName(path).toStdString(), std::get<std::string>(text)); ++number) {
        if (errno != EEXIST)
            return std::nullopt;
        path = QStringLiteral("%1-%2").arg(base).arg(number);
    }
    return path;
}

} // namespace nimbrel
