#include "discovery/NBBoxCloudService.h"

#include "discovery/ClientFile.h"
#include "discovery/HomePath.h"

namespace nimbrel {

namespace {

constexpr std::string_view marker = "SyncRootPath: !!python/unicode '";

// Empty when the line isn't there or its quote isn't closed.
std::string_view quotedPath(std::string_view text)
{
    const std::size_t found = text.find(marker);
    if (found == std::string_view::npos)
        return {};
    text.remove_prefix(found + marker.size());
    const std::size_t end = text.find('\'');
    return end == std::string_view::npos ? std::string_view() : text.substr(0, end);
}

} // namespace

NBBoxCloudService::NBBoxCloudService() : NBCloudService(QStringLiteral("Box")) {}

bool NBBoxCloudService::isAvailable()
{
    const auto file = clientFile(inHomeFolder(
        QLatin1String("Library/Application Support/Box Sync/LastLoggedInUserData.yaml")));
    return file && finish(utf8Text(quotedPath(*file)));
}

} // namespace nimbrel
