#include "discovery/NBDropboxCloudService.h"

#include "ClientHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace nimbrel::test {

namespace {

std::optional<std::string> rootWith(const ClientHome &home, std::string_view hostDb)
{
    home.write(clientFiles::dropbox, hostDb);
    return rootBy<NBDropboxCloudService>();
}

std::string decoded(std::string_view text)
{
    const QByteArray bytes(text.data(), static_cast<qsizetype>(text.size()));
    return NBDropboxCloudService::stringWithBase64String(bytes).toStdString();
}

TEST(NBDropboxCloudServiceTest, TheSecondLineIsTheRoot)
{
    const ClientHome home;
    EXPECT_EQ(NBDropboxCloudService().name(), QStringLiteral("Dropbox"));
    EXPECT_EQ(rootBy<NBDropboxCloudService>(), std::nullopt);
    // All three lengths of padding.
    for (const char *name : {"Dropbox", "Dropbox1", "Dropbox12"}) {
        const std::string root = home.makeFolder(name);
        EXPECT_EQ(rootWith(home, clientFiles::ofDropbox(root)), root);
    }
}

TEST(NBDropboxCloudServiceTest, TheSecondLineNeedsNoLineFeed)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Dropbox");
    EXPECT_EQ(rootWith(home, "first\n" + base64(root)), root);
    EXPECT_EQ(rootWith(home, "first\n" + base64(root) + "\r\nthird\n"), root);
}

TEST(NBDropboxCloudServiceTest, AFileOfOneLineGivesFalse)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Dropbox");
    EXPECT_EQ(rootWith(home, base64(root)), std::nullopt);
    EXPECT_EQ(rootWith(home, base64(root) + "\n"), std::nullopt);
    EXPECT_EQ(rootWith(home, ""), std::nullopt);
}

TEST(NBDropboxCloudServiceTest, AnEmptySecondLineGivesFalse)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Dropbox");
    EXPECT_EQ(rootWith(home, "first\n\n" + base64(root) + "\n"), std::nullopt);
    EXPECT_EQ(rootWith(home, std::string("first\n\0", 7) + base64(root)), std::nullopt);
}

TEST(NBDropboxCloudServiceTest, ALineOfMoreThan511CharactersIsReadInPieces)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Dropbox");
    EXPECT_EQ(rootWith(home, std::string(510, 'x') + "\n" + base64(root)), root);
    EXPECT_EQ(rootWith(home, std::string(511, 'x') + base64(root)), root);
    EXPECT_EQ(rootWith(home, std::string(511, 'x') + "\n" + base64(root)), std::nullopt);
}

TEST(NBDropboxCloudServiceTest, ARootThatIsNotAsciiGivesFalse)
{
    const ClientHome home;
    const std::string root = home.makeFolder("Dropb\xC3\xB6x");
    EXPECT_EQ(rootWith(home, clientFiles::ofDropbox(root)), std::nullopt);
}

TEST(NBDropboxCloudServiceTest, APipeInTheFilesPlaceIsNotWaitedFor)
{
    const ClientHome home;
    home.makeFolder(".dropbox");
    ASSERT_EQ(::mkfifo((home / clientFiles::dropbox).c_str(), 0600), 0);
    EXPECT_EQ(rootBy<NBDropboxCloudService>(), std::nullopt);
}

TEST(NBDropboxCloudServiceTest, Base64IsDecodedUpToTheFirstZero)
{
    EXPECT_EQ(decoded("L2hvbWU="), "/home");
    EXPECT_EQ(decoded("L2hvbWU=\n"), "/home");
    EXPECT_EQ(decoded(base64(std::string_view("/a\0b", 4))), "/a");
    EXPECT_EQ(decoded(base64(std::string(380, 'y'))), std::string(380, 'y'));
}

TEST(NBDropboxCloudServiceTest, WhatIsNoBase64DecodesToNothing)
{
    EXPECT_EQ(decoded(""), "");
    EXPECT_EQ(decoded("\n"), "");
    EXPECT_EQ(decoded("!!!!"), "");
    EXPECT_EQ(decoded("\xFF\xFE\x80\x81"), "");
}

} // namespace

} // namespace nimbrel::test
