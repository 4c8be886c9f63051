#include "discovery/NBGoogleDriveCloudService.h"

#include "ClientHome.h"
#include "crypto/CHandle.h"
#include "support/Files.h"

#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <set>
#include <sqlite3.h>

namespace nimbrel::test {

namespace {

using Database = CHandle<sqlite3, sqlite3_close>;

std::string fileOf(const ClientHome &home)
{
    return home / clientFiles::googleDrive;
}

// A new file each time: its root is what these statements say.
std::optional<std::string> rootWith(const ClientHome &home, const std::string &statements)
{
    std::filesystem::remove(fileOf(home));
    runSql(fileOf(home), statements);
    return rootBy<NBGoogleDriveCloudService>();
}

Database openedFile(const ClientHome &home)
{
    std::filesystem::create_directories(std::filesystem::path(fileOf(home)).parent_path());
    sqlite3 *opened = nullptr;
    EXPECT_EQ(sqlite3_open(fileOf(home).c_str(), &opened), SQLITE_OK);
    return Database(opened);
}

void execute(const Database &database, const std::string &statements)
{
    ASSERT_EQ(sqlite3_exec(database.get(), statements.c_str(), nullptr, nullptr, nullptr),
              SQLITE_OK)
        << sqlite3_errmsg(database.get());
}

std::set<std::string> filesBeside(const std::string &file)
{
    std::set<std::string> names;
    for (const auto &entry :
         std::filesystem::directory_iterator(std::filesystem::path(file).parent_path()))
        names.insert(entry.path().filename());
    return names;
}

TEST(NBGoogleDriveCloudServiceTest, TheRootIsInTheTableOfSettings)
{
    const ClientHome home;
    EXPECT_EQ(NBGoogleDriveCloudService().name(), QStringLiteral("Google Drive"));
    EXPECT_EQ(rootBy<NBGoogleDriveCloudService>(), std::nullopt);
    const std::string root = home.makeFolder("Google Dr\xC3\xA4ive");
    EXPECT_EQ(rootWith(home, googleDriveTable(root)), root);
    EXPECT_EQ(rootWith(home, googleDriveTable("~/Google Dr\xC3\xA4ive")), root);
    EXPECT_EQ(rootWith(home, googleDriveTable(" \n" + root + " \t\n")), root);
}

TEST(NBGoogleDriveCloudServiceTest, NoRowGivesFalse)
{
    const ClientHome home;
    EXPECT_EQ(rootWith(home, googleDriveTable("/") + "DELETE FROM data;"), std::nullopt);
}

TEST(NBGoogleDriveCloudServiceTest, SeveralRowsAreLinesOfOneText)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Drive");
    const auto row = [](const char *value) {
        return fmt::format("INSERT INTO data VALUES ('local_sync_root_path', 'v', {});", value);
    };
    EXPECT_EQ(rootWith(home, googleDriveTable(root) + row("'more'")), std::nullopt);
    const std::string odd = home.makeFolder("Drive\nmore");
    EXPECT_EQ(rootWith(home, googleDriveTable(root) + row("'more'")), odd);
    EXPECT_EQ(rootWith(home, googleDriveTable(root) + row("NULL")), root);
}

TEST(NBGoogleDriveCloudServiceTest, WhatIsNoSuchDatabaseGivesFalse)
{
    const ClientHome home;
    EXPECT_EQ(rootWith(home, "CREATE TABLE other (x);"), std::nullopt);
    EXPECT_EQ(rootWith(home, "CREATE TABLE data (x);"), std::nullopt);
    home.write(clientFiles::googleDrive, "no database at all");
    EXPECT_EQ(rootBy<NBGoogleDriveCloudService>(), std::nullopt);
    home.write(clientFiles::googleDrive, "");
    EXPECT_EQ(rootBy<NBGoogleDriveCloudService>(), std::nullopt);
}

TEST(NBGoogleDriveCloudServiceTest, WhatTheClientHasNotMergedYetIsReadToo)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Drive");
    const Database client = openedFile(home);
    execute(client, "PRAGMA journal_mode=WAL;" + googleDriveTable(root));
    ASSERT_TRUE(std::filesystem::exists(fileOf(home) + "-wal"));
    EXPECT_EQ(rootBy<NBGoogleDriveCloudService>(), root);
}

TEST(NBGoogleDriveCloudServiceTest, AClientAtWorkIsNotWaitedFor)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Drive");
    const Database client = openedFile(home);
    execute(client, googleDriveTable(root) + "BEGIN EXCLUSIVE; DELETE FROM data;");
    EXPECT_EQ(rootBy<NBGoogleDriveCloudService>(), root);
    execute(client, "ROLLBACK;");
}

TEST(NBGoogleDriveCloudServiceTest, NothingChangesInTheClientsFolder)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Drive");
    runSql(fileOf(home), "PRAGMA journal_mode=WAL;" + googleDriveTable(root));
    const std::string before = readFile(fileOf(home));
    EXPECT_EQ(rootBy<NBGoogleDriveCloudService>(), root);
    EXPECT_EQ(filesBeside(fileOf(home)), std::set<std::string>{"sync_config.db"});
    EXPECT_EQ(readFile(fileOf(home)), before);
}

TEST(NBGoogleDriveCloudServiceTest, ATableThatNeverEndsIsLeft)
{
    const ClientHome home;
    const char *endless = "CREATE VIEW data AS WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x "
                          "FROM n) SELECT 'no' AS entry_key, x AS data_value FROM n;";
    EXPECT_EQ(rootWith(home, endless), std::nullopt);
}

} // namespace

} // namespace nimbrel::test
