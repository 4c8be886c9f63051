#include "app/ProgramArguments.h"

#include "app/Log.h"
#include "platform/FileManagerActions.h"
#include "platform/LoginItem.h"

#include <QCommandLineParser>
#include <QDir>
#include <QUrl>

namespace nimbrel {

namespace {

// As the option parser wants it: without the two dashes.
QString optionName(const QString &argument)
{
    return argument.sliced(2);
}

// A path, relative to the folder of this start, or a URL.
QString urlOf(const QString &argument)
{
    if (argument.startsWith(QLatin1String("file:")))
        return argument;
    const QString path = QDir::current().absoluteFilePath(argument);
    return QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
}

QStringList urlsOf(const QStringList &arguments)
{
    QStringList urls;
    for (const QString &argument : arguments)
        urls.append(urlOf(argument));
    return urls;
}

QString helpText()
{
    return QStringLiteral(
        "Usage: nimbrel [FOLDER...]\n"
        "       nimbrel --reveal-encrypted FILE...\n"
        "\n"
        "Starts Nimbrel into the desktop's panel, or shows its window where it runs already.\n"
        "With FOLDER, opens these encrypted folders.\n"
        "\n"
        "  --reveal-encrypted    show the encrypted counterparts of files on mounted disks\n"
        "  --launched-at-login   the session starts the program\n"
        "  --version             print the version\n"
        "  --help                print this\n"
        "\n"
        "Settings: $XDG_CONFIG_HOME/Nimbrel/Nimbrel.conf. At a terminal: nimbrelctl(1).\n");
}

} // namespace

ProgramArguments ProgramArguments::of(const QStringList &arguments)
{
    const QCommandLineOption reveal(optionName(fileManagerActions::revealArgument));
    const QCommandLineOption atLogin(optionName(loginItem::launchArgument));
    const QCommandLineOption version(QStringLiteral("version"));
    const QCommandLineOption help(QStringList{QStringLiteral("help"), QStringLiteral("h")});
    QCommandLineParser parser;
    parser.addOptions({reveal, atLogin, version, help});
    ProgramArguments result;
    if (!parser.parse(arguments)) {
        result.error = parser.errorText();
        return result;
    }
    if (parser.isSet(help))
        result.answer = helpText();
    else if (parser.isSet(version))
        result.answer = QStringLiteral("nimbrel %1\n").arg(Log::versionText());
    result.wasLaunchedAtLogin = parser.isSet(atLogin);
    result.request.urls = urlsOf(parser.positionalArguments());
    if (parser.isSet(reveal))
        result.request.kind = ApplicationRequest::Kind::Reveal;
    else if (!result.request.urls.isEmpty())
        result.request.kind = ApplicationRequest::Kind::Open;
    if (parser.isSet(reveal) && result.request.urls.isEmpty())
        result.error = QStringLiteral("Name the file whose encrypted counterpart is to be shown.");
    return result;
}

} // namespace nimbrel
