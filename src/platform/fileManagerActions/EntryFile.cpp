#include "platform/fileManagerActions/EntryFile.h"

#include "config/AtomicFile.h"
#include "config/BoundedFile.h"
#include "config/FileWork.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

namespace nimbrel::fileManagerActions {

namespace {

constexpr std::size_t maximumSize = std::size_t{1} << 20U;

std::string coreOf(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

QString messageOf(const FileError &error)
{
    return QString::fromStdString(error.message);
}

// Replacing keeps an old file's permissions.
std::optional<QString> makeExecutable(const QString &path)
{
    QFile file(path);
    const auto wanted = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup |
                        QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    if (file.setPermissions(file.permissions() | wanted))
        return std::nullopt;
    return messageOf(fileError("make executable", coreOf(path), errno));
}

} // namespace

std::optional<QByteArray> readText(const QString &path, QString *error)
{
    const auto read = readBoundedFile(coreOf(path), maximumSize);
    if (const auto *text = std::get_if<std::string>(&read))
        return QByteArray::fromStdString(*text);
    const auto &trouble = std::get<NBPreferencesError>(read);
    if (trouble.domain == posixErrorDomain && trouble.code == ENOENT)
        return QByteArray();
    if (error != nullptr)
        *error = QStringLiteral("\"%1\" can't be read, so it was left as it is.").arg(path);
    return std::nullopt;
}

bool bearsMark(const QByteArray &text)
{
    return text.split('\n').contains(mark);
}

bool hasLine(const QString &path, const QByteArray &line)
{
    const auto text = readText(path);
    return text && bearsMark(*text) && text->split('\n').contains(line);
}

std::optional<QString> writeText(const QString &path, const QByteArray &text)
{
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder))
        return messageOf(fileError("make the folder", coreOf(folder), errno));
    if (const auto error = replaceFile(coreOf(path), text.toStdString()))
        return messageOf(*error);
    return std::nullopt;
}

std::optional<QString> writeEntry(const QString &path, const QByteArray &text, bool isExecutable)
{
    QString error;
    const auto old = readText(path, &error);
    if (!old)
        return error;
    if (QFileInfo::exists(path) && !bearsMark(*old))
        return QStringLiteral("\"%1\" isn't Nimbrel's, so it was left as it is.").arg(path);
    if (auto failure = writeText(path, text))
        return failure;
    return isExecutable ? makeExecutable(path) : std::nullopt;
}

std::optional<QString> removeEntry(const QString &path)
{
    const auto text = readText(path);
    if (!text || !bearsMark(*text) || QFile::remove(path))
        return std::nullopt;
    return messageOf(fileError("remove", coreOf(path), errno));
}

QByteArray shellWord(const QByteArray &text)
{
    QByteArray word = text;
    return '\'' + word.replace("'", "'\\''") + '\'';
}

QByteArray keyFileValue(const QString &text)
{
    QByteArray value = text.toUtf8();
    return value.replace('\\', "\\\\");
}

} // namespace nimbrel::fileManagerActions
