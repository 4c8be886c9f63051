#include "discovery/linux/LinuxClient.h"

#include "ClientHome.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

using Paths = std::vector<std::string>;

Paths pathsOf(const QList<QString> &folders)
{
    Paths paths;
    for (const QString &folder : folders)
        paths.push_back(folder.toStdString());
    return paths;
}

TEST(LinuxClientsTest, WithoutFilesThereAreNoFolders)
{
    const ClientHome home;
    for (const auto folders :
         {dropboxFolders, nextcloudFolders, ownCloudFolders, syncthingFolders, oneDriveFolders})
        EXPECT_TRUE(folders().isEmpty());
}

TEST(LinuxClientsTest, DropboxNamesTheFoldersOfItsAccounts)
{
    const ClientHome home;
    home.write(".dropbox/info.json",
               R"json({"business": {"path": "/d/Dropbox (Company)", "is_team": true},
                       "personal": {"path": "/d/Dropb\u00f6x", "is_team": false}})json");
    EXPECT_EQ(pathsOf(dropboxFolders()), (Paths{"/d/Dropb\xC3\xB6x", "/d/Dropbox (Company)"}));
}

TEST(LinuxClientsTest, DropboxNamesNothingInOtherForms)
{
    const ClientHome home;
    for (const char *text :
         {"", "[]", "{", R"({"personal": "/d"})", R"({"personal": {"path": 3}})",
          R"({"personal": {"path": {"path": "/d"}}})", R"({"other": {"path": "/d"}})"}) {
        home.write(".dropbox/info.json", text);
        EXPECT_TRUE(dropboxFolders().isEmpty()) << text;
    }
}

constexpr const char *nextcloudFile = R"([General]
clientVersion=3.7.3
confirmExternalStorage=true
localPath=/not/this

[Accounts]
version=2
0\Folders\1\ignoreHiddenFiles=false
0\Folders\1\localPath=/home/me/Nextcloud/
0\Folders\1\paused=false
0\Folders\1\targetPath=/
0\Folders\2\localPath="/home/me/Photos, and more/"
0\FoldersWithPlaceholders\3\localPath=/home/me/Bilder \xfc/
0\Folders\4\deeper\localPath=/not/this
0\authType=webflow
0\geometry=@ByteArray(\x1\xd9\xd0\xcb\0\x3)
0\list=a, b, c
0\typed=@Variant(\0\0\0\x11)
1\Multifolders\1\localPath=/srv/other
)";

const Paths nextcloudPaths = {"/home/me/Nextcloud/", "/home/me/Photos, and more/",
                              "/home/me/Bilder \xC3\xBC/", "/srv/other"};

TEST(LinuxClientsTest, NextcloudNamesTheFoldersOfAllItsAccounts)
{
    const ClientHome home;
    home.write(".config/Nextcloud/nextcloud.cfg", nextcloudFile);
    EXPECT_EQ(pathsOf(nextcloudFolders()), nextcloudPaths);
    EXPECT_TRUE(ownCloudFolders().isEmpty());
}

TEST(LinuxClientsTest, OwnCloudNamesTheFoldersOfAllItsAccounts)
{
    const ClientHome home;
    home.write(".config/ownCloud/owncloud.cfg", nextcloudFile);
    EXPECT_EQ(pathsOf(ownCloudFolders()), nextcloudPaths);
    EXPECT_TRUE(nextcloudFolders().isEmpty());
}

TEST(LinuxClientsTest, TheConfigurationFolderMayLieElsewhere)
{
    const ClientHome home;
    home.write("elsewhere/ownCloud/owncloud.cfg", nextcloudFile);
    home.write("elsewhere/onedrive/config", "sync_dir = \"/here\"\n");
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(home / "elsewhere"));
    EXPECT_EQ(pathsOf(ownCloudFolders()), nextcloudPaths);
    EXPECT_EQ(pathsOf(oneDriveFolders()), Paths{"/here"});
}

constexpr const char *syncthingFile = R"(<configuration version="37">
    <folder id="default" label="Default Folder" path="~/Sync" type="sendreceive" paused="false">
        <filesystemType>basic</filesystemType>
        <device id="ABC" introducedBy=""><encryptionPassword></encryptionPassword></device>
        <folder path="/not/this"/>
    </folder>
    <folder id="a" label="" path="/srv/a &amp; b/" type="sendonly"><paused>true</paused></folder>
    <folder id="b" path="/srv/b"/>
    <folder id="c" path="/not/sent" type="receiveonly"/>
    <folder id="d" path="/not/ours" type="receiveencrypted"/>
    <folder id="e" type="sendreceive"/>
    <device id="ABC" name="here" path="/not/this"/>
    <defaults><folder id="" label="" path="~" type="sendreceive"/></defaults>
</configuration>
)";

TEST(LinuxClientsTest, SyncthingNamesTheFoldersWhoseChangesItSends)
{
    const ClientHome home;
    const Paths expected = {home / "Sync", "/srv/a & b/", "/srv/b"};
    home.write(".config/syncthing/config.xml", syncthingFile);
    EXPECT_EQ(pathsOf(syncthingFolders()), expected);
    home.write(".local/state/syncthing/config.xml",
               "<configuration><folder path=\"/new\"/></configuration>");
    EXPECT_EQ(pathsOf(syncthingFolders()), Paths{"/new"});
}

TEST(LinuxClientsTest, SyncthingNamesNothingInOtherForms)
{
    const ClientHome home;
    for (const char *text :
         {"", "<configuration><folder path=\"/a\"/>", "<other><folder path=\"/a\"/></other>",
          "<!DOCTYPE x [<!ENTITY a \"b\">]><configuration><folder path=\"/&a;\"/></configuration>",
          "<!DOCTYPE x [<!ATTLIST folder path CDATA \"/a\">]><configuration><folder/>"
          "</configuration>"}) {
        home.write(".config/syncthing/config.xml", text);
        EXPECT_TRUE(syncthingFolders().isEmpty()) << text;
    }
}

TEST(LinuxClientsTest, OneDriveNamesItsFolder)
{
    const ClientHome home;
    const auto with = [&](const char *text) {
        home.write(".config/onedrive/config", text);
        return pathsOf(oneDriveFolders());
    };
    EXPECT_EQ(with("monitor_interval = \"300\"\nsync_dir = \"/srv/One Drive\"\n"),
              Paths{"/srv/One Drive"});
    EXPECT_EQ(with("sync_dir=\"~/Cloud\"\r\n"), Paths{home / "Cloud"});
    EXPECT_EQ(with("sync_dir = \"/a\"\nsync_dir = \"/b\"\n"), Paths{"/b"});
}

TEST(LinuxClientsTest, OneDriveHasAFolderBeforeItIsConfigured)
{
    const ClientHome home;
    home.write(".config/onedrive/refresh_token", "secret");
    EXPECT_EQ(pathsOf(oneDriveFolders()), Paths{home / "OneDrive"});
    for (const char *text :
         {"", "# sync_dir = \"/a\"\n", "sync_dir = /a\n", "sync_dirs = \"/a\""}) {
        home.write(".config/onedrive/config", text);
        EXPECT_EQ(pathsOf(oneDriveFolders()), Paths{home / "OneDrive"}) << text;
    }
}

TEST(LinuxClientsTest, RcloneNamesItsMountsThatNothingCovers)
{
    const std::string table =
        "20 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
        "30 20 0:50 / /home/me/My\\040Drive rw,nosuid - fuse.rclone drive: rw,user_id=1000\n"
        "31 20 0:51 / /home/me/Safe rw - fuse.nimbrel /home/me/Safe.nmc rw\n"
        "32 20 0:52 / /mnt/covered rw - fuse.rclone box: rw\n"
        "33 32 0:53 / /mnt/covered rw - tmpfs tmpfs rw\n";
    EXPECT_EQ(pathsOf(rcloneMountsIn(table)), Paths{"/home/me/My Drive"});
    EXPECT_TRUE(rcloneMountsIn("").isEmpty());
}

} // namespace

} // namespace nimbrel::test
