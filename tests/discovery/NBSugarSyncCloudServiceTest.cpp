#include "discovery/NBSugarSyncCloudService.h"

#include "ClientHome.h"
#include "support/BinaryPropertyList.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

constexpr const char *key = "General.DefaultSyncFolderPath";

class NBSugarSyncCloudServiceTest : public ::testing::Test
{
protected:
    std::optional<std::string> rootWith(std::string_view file) const
    {
        home.write(clientFiles::sugarSync, file);
        return rootBy<NBSugarSyncCloudService>();
    }
    std::optional<std::string> rootWithXml(std::string_view content) const
    {
        return rootWith(fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                    "<plist version=\"1.0\">\n{}\n</plist>\n",
                                    content));
    }

    ClientHome home;
    std::string root = home.makeFolder("Magic & Briefcase");
};

TEST_F(NBSugarSyncCloudServiceTest, TheRootIsInTheBinaryPreferences)
{
    EXPECT_EQ(NBSugarSyncCloudService().name(), QStringLiteral("Sugar Sync"));
    EXPECT_EQ(rootBy<NBSugarSyncCloudService>(), std::nullopt);
    EXPECT_EQ(rootWith(clientFiles::ofSugarSync(root)), root);
    EXPECT_EQ(rootWith(clientFiles::ofSugarSync("~/Magic & Briefcase")), root);
}

TEST_F(NBSugarSyncCloudServiceTest, TheRootIsInTheXmlPreferences)
{
    EXPECT_EQ(rootWithXml(fmt::format("<dict><key>a</key><array><string>{0}</string></array>"
                                      "<!-- the folder --><key>{1}</key>\n"
                                      "<string>~/Magic &amp; Briefcase</string></dict>",
                                      home.path(), key)),
              root);
}

TEST_F(NBSugarSyncCloudServiceTest, APropertyListWithoutTheKeyGivesFalse)
{
    BinaryPropertyList list;
    EXPECT_EQ(rootWith(list.text(list.dictionary({{list.ascii("Other"), list.ascii("/")}}))),
              std::nullopt);
    EXPECT_EQ(rootWithXml("<dict><key>Other</key><string>/</string></dict>"), std::nullopt);
    EXPECT_EQ(rootWithXml("<dict/>"), std::nullopt);
}

TEST_F(NBSugarSyncCloudServiceTest, ThePointInTheKeyLeadsNowhere)
{
    BinaryPropertyList list;
    const auto inner = list.dictionary({{list.ascii("DefaultSyncFolderPath"), list.ascii("/")}});
    EXPECT_EQ(rootWith(list.text(list.dictionary({{list.ascii("General"), inner}}))), std::nullopt);
}

TEST_F(NBSugarSyncCloudServiceTest, AValueThatIsNoTextGivesFalse)
{
    BinaryPropertyList list;
    EXPECT_EQ(rootWith(list.text(list.dictionary({{list.ascii(key), list.data("/")}}))),
              std::nullopt);
    EXPECT_EQ(rootWithXml(fmt::format("<dict><key>{}</key><data>/</data></dict>", key)),
              std::nullopt);
}

TEST_F(NBSugarSyncCloudServiceTest, WhatIsNoDictionaryGivesFalse)
{
    BinaryPropertyList list;
    EXPECT_EQ(rootWith(list.text(list.array({list.ascii(key), list.ascii("/")}))), std::nullopt);
    EXPECT_EQ(rootWithXml(fmt::format("<array><key>{}</key><string>/</string></array>", key)),
              std::nullopt);
    EXPECT_EQ(rootWithXml(fmt::format("<dict><key>{}</key></dict>", key)), std::nullopt);
    EXPECT_EQ(rootWithXml(""), std::nullopt);
    EXPECT_EQ(
        rootWith(fmt::format("<other><dict><key>{}</key><string>/</string></dict></other>", key)),
        std::nullopt);
    EXPECT_EQ(rootWith(""), std::nullopt);
    EXPECT_EQ(rootWith("no property list"), std::nullopt);
    EXPECT_EQ(rootWith("bplist00"), std::nullopt);
}

TEST_F(NBSugarSyncCloudServiceTest, AFileThatDeclaresEntitiesGivesFalse)
{
    EXPECT_EQ(rootWith(fmt::format("<!DOCTYPE plist [<!ENTITY r \"/\">]><plist><dict>"
                                   "<key>{}</key><string>&r;</string></dict></plist>",
                                   key)),
              std::nullopt);
}

} // namespace

} // namespace nimbrel::test
