#include "discovery/NBSkyDriveCloudService.h"

#include "discovery/ClientFile.h"
#include "discovery/HomePath.h"

#include <QDir>

namespace nimbrel {

namespace {

constexpr std::string_view marker = "Me personal \"";
constexpr QLatin1String extension(".ini");

// Between the last marker and the quotation mark behind it.
std::optional<std::string_view> quotedPath(std::string_view text)
{
    const std::size_t found = text.rfind(marker);
    if (found == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(found + marker.size());
    const std::size_t end = text.find('"');
    return end == std::string_view::npos ? std::nullopt : std::optional(text.substr(0, end));
}

// Sorted, so that the same files always give the same answer. A name that is only an extension has
// none.
QStringList settingsFilesIn(const QDir &folder)
{
    QStringList names;
    const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const QString &name : folder.entryList(all, QDir::Name))
        if (name.size() > extension.size() && name.endsWith(extension))
            names.append(name);
    return names;
}

} // namespace

NBSkyDriveCloudService::NBSkyDriveCloudService() : NBCloudService(QStringLiteral("SkyDrive")) {}

bool NBSkyDriveCloudService::isAvailable()
{
    const QDir folder(inHomeFolder(QLatin1String(
        "Library/Containers/com.microsoft.skydrive-mac/Data/Library/Application Support/"
        "SkyDrive/settings")));
    QString candidate;
    for (const QString &name : settingsFilesIn(folder)) {
        const QString data = name.chopped(extension.size()) + QLatin1String(".dat");
        if (!somethingExists(folder.filePath(data)))
            continue;
        const auto file = clientFile(folder.filePath(name));
        if (!file)
            continue;
        const auto path = quotedPath(*file);
        if (!path)
            return false; // whatever an earlier file said
        candidate = asciiText(*path);
    }
    return finish(candidate);
}

} // namespace nimbrel
