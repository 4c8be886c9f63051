// A service menu of KDE, for one selected item of any kind.
#include "platform/DesktopEntry.h"
#include "platform/FileManagerActions.h"
#include "platform/SystemFacts.h"
#include "platform/fileManagerActions/EntryFile.h"
#include "platform/fileManagerActions/FileManager.h"

#include <QFile>
#include <QFileInfo>

namespace nimbrel::fileManagerActions {

namespace {

QString menuPath()
{
    return systemFacts::dataFolder() +
           QLatin1String("/kio/servicemenus/com.nimbrel.Nimbrel.desktop");
}

QByteArray execLine(const QString &path)
{
    return "Exec=" + execValue(QFile::encodeName(path), revealArgument.toUtf8() + " %f");
}

// KDE asks before it runs what isn't executable.
bool isInstalled(const QString &path)
{
    return hasLine(menuPath(), execLine(path)) && QFileInfo(menuPath()).isExecutable();
}

std::optional<QString> put(const QString &path, const QString &title)
{
    const QByteArray text =
        "[Desktop Entry]\n" + mark +
        "\nType=Service\nServiceTypes=KonqPopupMenu/Plugin\nMimeType=all/all;\n"
        "X-KDE-Protocols=file\nX-KDE-RequiredNumberOfUrls=1\nActions=revealEncrypted;\n\n"
        "[Desktop Action revealEncrypted]\nName=" +
        keyFileValue(title) + "\nIcon=com.nimbrel.Nimbrel\n" + execLine(path) + "\n";
    return writeEntry(menuPath(), text, true);
}

std::optional<QString> takeAway()
{
    return removeEntry(menuPath());
}

} // namespace

const FileManager dolphin{isInstalled, put, takeAway};

} // namespace nimbrel::fileManagerActions
