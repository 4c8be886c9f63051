// A custom action among the user's own.
#include "platform/FileManagerActions.h"
#include "platform/SystemFacts.h"
#include "platform/fileManagerActions/EntryFile.h"
#include "platform/fileManagerActions/FileManager.h"
#include "platform/fileManagerActions/ThunarActions.h"

#include <QFile>
#include <QFileInfo>

namespace nimbrel::fileManagerActions {

namespace {

const QString listName = QStringLiteral("/Thunar/uca.xml");

QString listPath()
{
    return systemFacts::configFolder() + listName;
}

// As soon as the user has a list, Thunar doesn't read the machine's any more: the user's begins
// with what was in that.
QString machineListPath()
{
    const QString folders = QFile::decodeName(qgetenv("XDG_CONFIG_DIRS"));
    for (const QString &folder : folders.isEmpty() ? QStringList{QStringLiteral("/etc/xdg")}
                                                   : folders.split(u':', Qt::SkipEmptyParts))
        if (folder.startsWith(u'/') && QFileInfo::exists(folder + listName))
            return folder + listName;
    return {};
}

std::optional<ThunarActions> readList(const QString &path, QString &error)
{
    const auto text = readText(path, &error);
    if (!text)
        return std::nullopt;
    auto actions = ThunarActions::read(*text);
    if (!actions)
        error =
            QStringLiteral("\"%1\" isn't a list of actions, so it was left as it is.").arg(path);
    return actions;
}

// A shell runs it, when Thunar has put the path, quoted, in the code's place.
QByteArray commandFor(const QString &path)
{
    QByteArray program = QFile::encodeName(path);
    return shellWord(program.replace('%', "%%")) + ' ' + revealArgument.toUtf8() + " %f";
}

bool isInstalled(const QString &path)
{
    QString error;
    const auto actions = readList(listPath(), error);
    return actions && actions->command() == commandFor(path);
}

std::optional<QString> write(const ThunarActions &actions)
{
    const QByteArray text = actions.text();
    if (text.isEmpty())
        return QStringLiteral("There is no memory for \"%1\".").arg(listPath());
    return writeText(listPath(), text);
}

std::optional<QString> put(const QString &path, const QString &title)
{
    QString error;
    const bool hasOwn = QFileInfo::exists(listPath());
    auto actions = readList(hasOwn ? listPath() : machineListPath(), error);
    if (!actions)
        return error;
    if (!actions->set(title.toUtf8(), commandFor(path)))
        return QStringLiteral("There is no memory for \"%1\".").arg(listPath());
    return write(*actions);
}

std::optional<QString> takeAway()
{
    QString error;
    auto actions = readList(listPath(), error);
    if (!actions)
        return error;
    return actions->remove() ? write(*actions) : std::nullopt;
}

} // namespace

const FileManager thunar{isInstalled, put, takeAway};

} // namespace nimbrel::fileManagerActions
