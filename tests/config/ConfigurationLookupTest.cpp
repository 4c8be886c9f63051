#include "config/ConfigurationLookup.h"

#include "support/Files.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

TEST(ConfigurationLookupTest, NewNameComesBeforeTheOldOne)
{
    const TempFolder folder;
    EXPECT_EQ(findConfiguration(folder.path()), std::nullopt);
    writeFile(folder / "Keyfile.nmx", "");
    EXPECT_EQ(findConfiguration(folder.path()), folder / "Keyfile.nmx");
    writeFile(folder / ".encfs6.xml", "");
    EXPECT_EQ(findConfiguration(folder.path()), folder / ".encfs6.xml");
    EXPECT_EQ(findConfiguration(folder.path() + "/"), folder / ".encfs6.xml");
}

TEST(ConfigurationLookupTest, FolderOfThatNameIsNoConfiguration)
{
    const TempFolder folder;
    static_cast<void>(folder.makeFolder(".encfs6.xml"));
    EXPECT_EQ(findConfiguration(folder.path()), std::nullopt);
}

TEST(ConfigurationLookupTest, LinksAreFollowed)
{
    const TempFolder folder;
    std::filesystem::create_symlink("elsewhere.xml", folder / ".encfs6.xml");
    EXPECT_EQ(findConfiguration(folder.path()), std::nullopt);
    writeFile(folder / "elsewhere.xml", "");
    EXPECT_EQ(findConfiguration(folder.path()), folder / ".encfs6.xml");
}

TEST(ConfigurationLookupTest, MissingFolderHasNone)
{
    const TempFolder folder;
    EXPECT_EQ(findConfiguration(folder / "none"), std::nullopt);
}

} // namespace

} // namespace nimbrel::test
