#include "config/BoundedFile.h"
#include "platform/Account.h"
#include "platform/SystemFacts.h"

#include <QFile>

#include <optional>

namespace nimbrel::systemFacts {

namespace {

// The folder that an environment variable names; an empty text when it isn't an absolute path.
QString folderOfVariable(const char *name)
{
    const QString value = QFile::decodeName(qgetenv(name));
    return value.startsWith(QLatin1Char('/')) ? value : QString();
}

QString baseFolder(const char *name, QLatin1String insteadBelowHome)
{
    const QString folder = folderOfVariable(name);
    return folder.isEmpty() ? homeFolder() + insteadBelowHome : folder;
}

// The text between quotation marks, a backslash keeping the character behind it. Nothing when it
// has no end.
std::optional<QByteArray> quotedText(QByteArrayView text)
{
    QByteArray made;
    for (qsizetype at = 1; text.startsWith('"') && at < text.size(); ++at) {
        if (text[at] == '"')
            return made;
        if (text[at] == '\\' && at + 1 < text.size())
            ++at;
        made += text[at];
    }
    return std::nullopt;
}

// The folder of a line such as XDG_DESKTOP_DIR="$HOME/Desktop" (user-dirs.dirs(5)): below the home
// folder or absolute, all else doesn't count.
std::optional<QString> desktopOfLine(const QByteArray &line)
{
    const qsizetype sign = line.indexOf('=');
    if (sign < 0 || line.first(sign).trimmed() != "XDG_DESKTOP_DIR")
        return std::nullopt;
    const std::optional<QByteArray> value = quotedText(line.sliced(sign + 1).trimmed());
    if (!value)
        return std::nullopt;
    const QString path = QFile::decodeName(*value);
    if (path == QLatin1String("$HOME") || path.startsWith(QLatin1String("$HOME/")))
        return homeFolder() + path.sliced(5);
    return path.startsWith(QLatin1Char('/')) ? std::optional(path) : std::nullopt;
}

QString withoutSlash(QString folder)
{
    while (folder.size() > 1 && folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    return folder;
}

} // namespace

QString homeFolder()
{
    QString folder = folderOfVariable("HOME");
    if (folder.isEmpty())
        if (const auto account = ownAccount())
            folder = account->homeFolder;
    return folder.isEmpty() ? QStringLiteral("/") : withoutSlash(folder);
}

QString desktopFolder()
{
    constexpr std::size_t maximumSize = std::size_t{1} << 16U;
    QString desktop = homeFolder() + QLatin1String("/Desktop");
    const std::string path =
        QFile::encodeName(configFolder() + QLatin1String("/user-dirs.dirs")).toStdString();
    const auto read = readBoundedFile(path, maximumSize);
    if (const auto *text = std::get_if<std::string>(&read))
        for (const QByteArray &line : QByteArray::fromStdString(*text).split('\n'))
            desktop = desktopOfLine(line).value_or(desktop); // a shell script: the last one counts
    return withoutSlash(desktop);
}

QString configFolder()
{
    return baseFolder("XDG_CONFIG_HOME", QLatin1String("/.config"));
}

QString dataFolder()
{
    return baseFolder("XDG_DATA_HOME", QLatin1String("/.local/share"));
}

QString stateFolder()
{
    return baseFolder("XDG_STATE_HOME", QLatin1String("/.local/state"));
}

} // namespace nimbrel::systemFacts
