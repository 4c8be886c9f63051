// An action for one selected item of any kind.
#include "platform/DesktopEntry.h"
#include "platform/FileManagerActions.h"
#include "platform/SystemFacts.h"
#include "platform/fileManagerActions/EntryFile.h"
#include "platform/fileManagerActions/FileManager.h"

#include <QFile>

namespace nimbrel::fileManagerActions {

namespace {

QString actionPath()
{
    return systemFacts::dataFolder() +
           QLatin1String("/nemo/actions/com.nimbrel.Nimbrel.nemo_action");
}

// Nemo puts the path between the quotation marks that "Quote" names.
QByteArray execLine(const QString &path)
{
    return "Exec=" + execValue(QFile::encodeName(path), revealArgument.toUtf8() + " %F");
}

bool isInstalled(const QString &path)
{
    return hasLine(actionPath(), execLine(path));
}

std::optional<QString> put(const QString &path, const QString &title)
{
    const QByteArray text = "[Nemo Action]\n" + mark +
                            "\nActive=true\nName=" + keyFileValue(title) +
                            "\nIcon-Name=com.nimbrel.Nimbrel\n" + execLine(path) +
                            "\nQuote=double\nSelection=s\nExtensions=any;\n";
    return writeEntry(actionPath(), text, false);
}

std::optional<QString> takeAway()
{
    return removeEntry(actionPath());
}

} // namespace

const FileManager nemo{isInstalled, put, takeAway};

} // namespace nimbrel::fileManagerActions
