#include "ClientHome.h"

#include "crypto/Base64.h"
#include "crypto/CHandle.h"
#include "support/BinaryPropertyList.h"
#include "support/Files.h"

#include <filesystem>
#include <fmt/format.h>
#include <sqlite3.h>
#include <stdexcept>

namespace nimbrel::test {

std::string ClientHome::operator/(std::string_view name) const
{
    return path() + "/" + std::string(name);
}

std::string ClientHome::write(std::string_view name, std::string_view text) const
{
    const std::string file = *this / name;
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    writeFile(file, text);
    return file;
}

std::string ClientHome::makeFolder(std::string_view name) const
{
    const std::string folder = *this / name;
    std::filesystem::create_directories(folder);
    return folder;
}

std::optional<std::string> rootOf(NBCloudService &service)
{
    if (!service.isAvailable())
        return std::nullopt;
    return service.storageURL().toLocalFile().toStdString();
}

std::string base64(std::string_view text)
{
    return base64EncodedString(bytesOf(text));
}

std::string clientFiles::ofDropbox(std::string_view root)
{
    return "5d1f6fe4a8f0a8a6\n" + base64(root) + "\n";
}

std::string clientFiles::ofSkyDrive(std::string_view root)
{
    return fmt::format("library = 1 4 ABC!1 1340000000 \"SkyDrive\" Me personal \"{}\"\nlast = 1\n",
                       root);
}

std::string clientFiles::ofSugarSync(std::string_view root)
{
    BinaryPropertyList list;
    const auto dictionary =
        list.dictionary({{list.ascii("General.Other"), list.integer(3)},
                         {list.ascii("General.DefaultSyncFolderPath"), list.ascii(root)}});
    return list.text(dictionary);
}

std::string clientFiles::ofBox(std::string_view root)
{
    return fmt::format("!!python/object:login.User\nName: me\n"
                       "SyncRootPath: !!python/unicode '{}'\nState: 2\n",
                       root);
}

void runSql(const std::string &path, const std::string &statements)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    sqlite3 *opened = nullptr;
    int code = sqlite3_open(path.c_str(), &opened);
    const CHandle<sqlite3, sqlite3_close> database(opened);
    if (code == SQLITE_OK)
        code = sqlite3_exec(opened, statements.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        throw std::runtime_error(path + ": " + sqlite3_errmsg(opened));
}

std::string googleDriveTable(std::string_view root)
{
    return fmt::format("CREATE TABLE data (entry_key TEXT, data_key TEXT, data_value TEXT);"
                       "INSERT INTO data VALUES ('highest_app_version', 'value', '1.15');"
                       "INSERT INTO data VALUES ('local_sync_root_path', 'value', '{}');",
                       root);
}

} // namespace nimbrel::test
