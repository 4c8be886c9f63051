#include "discovery/ClientFile.h"
#include "discovery/HomePath.h"
#include "discovery/linux/LinuxClient.h"
#include "platform/SystemFacts.h"

#include <QRegularExpression>

namespace nimbrel {

namespace {

// Its lines are: name = "value". The last one counts.
QString syncFolder(const std::string &configuration)
{
    static const QRegularExpression form(QStringLiteral("^sync_dir\\s*=\\s*\"(.*)\"\\s*$"));
    QString folder = QStringLiteral("~/OneDrive");
    for (const QString &line : QString::fromStdString(configuration).split(u'\n'))
        if (const auto match = form.match(line.trimmed()); match.hasMatch())
            folder = match.captured(1);
    return expandedTilde(folder);
}

} // namespace

QList<QString> oneDriveFolders()
{
    const QString folder = systemFacts::configFolder() + QLatin1String("/onedrive/");
    if (const auto file = clientFile(folder + QLatin1String("config")))
        return {syncFolder(*file)};
    // Logged in, and everything left as it comes.
    if (somethingExists(folder + QLatin1String("refresh_token")))
        return {syncFolder({})};
    return {};
}

} // namespace nimbrel
