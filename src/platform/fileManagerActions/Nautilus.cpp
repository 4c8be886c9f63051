// A script in its menu "Scripts", under the name of its file.
#include "platform/FileManagerActions.h"
#include "platform/SystemFacts.h"
#include "platform/fileManagerActions/EntryFile.h"
#include "platform/fileManagerActions/FileManager.h"

#include <QDir>
#include <QFile>

namespace nimbrel::fileManagerActions {

namespace {

QString folder()
{
    return systemFacts::dataFolder() + QLatin1String("/nautilus/scripts");
}

// Titles are texts, and this one is a file's name.
QString pathOf(const QString &title)
{
    QString name = title;
    name.replace(u'/', u'-');
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    return folder() + u'/' + (name.isEmpty() ? QStringLiteral("Nimbrel") : name);
}

// Nautilus gives one path a line. Each is a call of its own, and none waits for another: the first
// may start the program, which stays.
QByteArray textFor(const QString &path)
{
    return "#!/bin/sh\n" + mark + "\nprogram=" + shellWord(QFile::encodeName(path)) +
           "\nprintf '%s\\n' \"$NAUTILUS_SCRIPT_SELECTED_FILE_PATHS\" |\n"
           "    while IFS= read -r file; do\n"
           "        [ -z \"$file\" ] || \"$program\" " +
           revealArgument.toUtf8() +
           " \"$file\" </dev/null &\n"
           "    done\n";
}

// All that bear the mark: titles change with the language.
QStringList ours()
{
    QStringList paths;
    for (const QString &name : QDir(folder()).entryList(QDir::Files | QDir::Hidden)) {
        const QString path = folder() + u'/' + name;
        if (bearsMark(readText(path).value_or(QByteArray())))
            paths.append(path);
    }
    return paths;
}

std::optional<QString> removeAllBut(const QString &kept)
{
    std::optional<QString> error;
    for (const QString &path : ours())
        if (path != kept && !error)
            error = removeEntry(path);
    return error;
}

bool isInstalled(const QString &path)
{
    const QStringList scripts = ours();
    return scripts.size() == 1 && readText(scripts.first()) == textFor(path) &&
           QFile(scripts.first()).permissions().testFlag(QFile::ExeOwner);
}

std::optional<QString> put(const QString &path, const QString &title)
{
    const QString script = pathOf(title);
    if (auto error = writeEntry(script, textFor(path), true))
        return error;
    return removeAllBut(script);
}

std::optional<QString> takeAway()
{
    return removeAllBut(QString());
}

} // namespace

const FileManager nautilus{isInstalled, put, takeAway};

} // namespace nimbrel::fileManagerActions
