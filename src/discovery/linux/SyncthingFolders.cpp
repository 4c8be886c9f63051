#include "discovery/ClientFile.h"
#include "discovery/HomePath.h"
#include "discovery/XmlDocument.h"
#include "discovery/linux/LinuxClient.h"
#include "platform/SystemFacts.h"

namespace nimbrel {

namespace {

// Not "receiveonly", which keeps changes to itself, nor "receiveencrypted", which holds what others
// encrypted. Old versions said "readwrite" and "readonly", and nothing stands for the first.
bool sendsChanges(const xmlNode *folder)
{
    const std::string type = attributeOf(folder, "type").value_or("sendreceive");
    return type == "sendreceive" || type == "sendonly" || type == "readwrite" || type == "readonly";
}

// The file's own folders alone: one further inside ("defaults") is the pattern of new ones. A
// paused one is taken, for that is a state that passes.
QList<QString> foldersIn(const std::string &file)
{
    QList<QString> folders;
    const XmlDocument document = xmlDocument(file);
    const xmlNode *const root = rootElement(document, "configuration");
    const xmlNode *element = root == nullptr ? nullptr : firstElement(root);
    for (; element != nullptr; element = nextElement(element)) {
        const auto path = attributeOf(element, "path");
        if (isElement(element, "folder") && path && sendsChanges(element))
            folders.append(expandedTilde(QString::fromStdString(*path)));
    }
    return folders;
}

} // namespace

QList<QString> syncthingFolders()
{
    const QLatin1String name("/syncthing/config.xml");
    for (const QString &folder : {systemFacts::stateFolder(), systemFacts::configFolder()})
        if (const auto file = clientFile(folder + name))
            return foldersIn(*file);
    return {};
}

} // namespace nimbrel
