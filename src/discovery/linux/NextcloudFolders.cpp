// Nextcloud's client and ownCloud's, which it comes from, keep their folders the same way.
#include "discovery/ClientFile.h"
#include "discovery/linux/LinuxClient.h"
#include "platform/SettingsCoding.h"
#include "platform/SettingsFileCheck.h"
#include "platform/SystemFacts.h"

#include <QRegularExpression>

namespace nimbrel {

namespace {

// "FoldersWithPlaceholders" are folders that download on demand, "Multifolders" several of one
// account.
bool isPathOfFolder(const QString &key)
{
    static const QRegularExpression form(QStringLiteral(
        "^Accounts/[0-9]+/(Folders|FoldersWithPlaceholders|Multifolders)/[^/]+/localPath$"));
    return form.match(key).hasMatch();
}

QList<QString> foldersIn(const QString &path)
{
    QList<QString> folders;
    const auto file = clientFile(path);
    if (!file)
        return folders;
    // Lines of other kinds are left out, and were none of ours.
    const auto values = settingsValues(checkedSettings(QByteArray::fromStdString(*file)).text);
    if (!values)
        return folders;
    for (auto value = values->cbegin(); value != values->cend(); ++value)
        if (isPathOfFolder(value.key()))
            folders.append(value->toString());
    return folders;
}

} // namespace

QList<QString> nextcloudFolders()
{
    return foldersIn(systemFacts::configFolder() + QLatin1String("/Nextcloud/nextcloud.cfg"));
}

QList<QString> ownCloudFolders()
{
    return foldersIn(systemFacts::configFolder() + QLatin1String("/ownCloud/owncloud.cfg"));
}

} // namespace nimbrel
