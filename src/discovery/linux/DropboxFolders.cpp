#include "discovery/ClientFile.h"
#include "discovery/HomePath.h"
#include "discovery/linux/LinuxClient.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace nimbrel {

QList<QString> dropboxFolders()
{
    QList<QString> folders;
    const auto file = clientFile(inHomeFolder(QLatin1String(".dropbox/info.json")));
    if (!file)
        return folders;
    const QJsonObject accounts = QJsonDocument::fromJson(QByteArray::fromStdString(*file)).object();
    for (const char *account : {"personal", "business"}) {
        const QJsonValue path = accounts[QLatin1String(account)].toObject()[QLatin1String("path")];
        if (path.isString())
            folders.append(path.toString());
    }
    return folders;
}

} // namespace nimbrel
