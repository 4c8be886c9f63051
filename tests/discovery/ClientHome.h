// A home folder in which clients are installed, for one test.
#pragma once

#include "discovery/NBCloudService.h"

#include "support/PrivateDesktop.h"

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel::test {

class ClientHome final
{
public:
    [[nodiscard]] const std::string &path() const { return _desktop.home(); }
    [[nodiscard]] std::string operator/(std::string_view name) const;
    // A file below it, with the folders on the way; its path.
    std::string write(std::string_view name, std::string_view text) const;
    // A folder below it; its path.
    std::string makeFolder(std::string_view name) const;

private:
    PrivateDesktop _desktop{{.bus = false, .keyring = false}};
};

// The sync root that a probe finds; nothing when it says no.
[[nodiscard]] std::optional<std::string> rootOf(NBCloudService &service);

template <class Service>
[[nodiscard]] std::optional<std::string> rootBy()
{
    Service service;
    return rootOf(service);
}

[[nodiscard]] std::string base64(std::string_view text);

// The files of clients that are installed, their sync root being `root`: for each class one, and
// for each client on Linux.
namespace clientFiles {
inline constexpr std::string_view dropbox = ".dropbox/host.db";
inline constexpr std::string_view googleDrive =
    "Library/Application Support/Google/Drive/sync_config.db";
inline constexpr std::string_view skyDriveFolder =
    "Library/Containers/com.microsoft.skydrive-mac/Data/Library/Application Support/SkyDrive/"
    "settings";
inline constexpr std::string_view sugarSync = "Library/Preferences/com.sharpcast.SugarSync.plist";
inline constexpr std::string_view box =
    "Library/Application Support/Box Sync/LastLoggedInUserData.yaml";

[[nodiscard]] std::string ofDropbox(std::string_view root);
[[nodiscard]] std::string ofSkyDrive(std::string_view root);
[[nodiscard]] std::string ofSugarSync(std::string_view root);
[[nodiscard]] std::string ofBox(std::string_view root);
} // namespace clientFiles

// Runs statements on a new or an existing SQLite file. Throws std::runtime_error.
void runSql(const std::string &path, const std::string &statements);
// The statements that make Google Drive's table.
[[nodiscard]] std::string googleDriveTable(std::string_view root);

} // namespace nimbrel::test
