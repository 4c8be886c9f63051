#include "volume/PathExtension.h"

#include "support/Files.h"
#include "support/TempFolder.h"
#include "volume/TextConversion.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

std::string extensionOf(const std::string &path)
{
    return coreText(pathExtension(qtText(path)));
}

std::string withExtension(const std::string &path, const std::string &extension)
{
    return coreText(withPathExtension(qtText(path), qtText(extension)));
}

class MigratedPathTest : public ::testing::Test
{
protected:
    // What becomes of the item `name` in the folder.
    std::string migrated(const std::string &name) const
    {
        return coreText(migratedPath(qtText(temp / name)));
    }

    const TempFolder temp;
};

TEST(PathExtensionTest, ExtensionStandsBehindTheLastDotOfTheLastComponent)
{
    EXPECT_EQ(extensionOf("/x/Safe.nm"), "nm");
    EXPECT_EQ(extensionOf("/x/Safe.old.nmc"), "nmc");
    EXPECT_EQ(extensionOf("Safe.nmc"), "nmc");
    EXPECT_EQ(extensionOf("/x/S\xC3\xA4"
                          "fe.n\xC3\xBC"),
              "n\xC3\xBC");
}

TEST(PathExtensionTest, NameWithoutADotHasNoExtension)
{
    EXPECT_EQ(extensionOf("/x/Safe"), "");
    EXPECT_EQ(extensionOf("/x.nm/Safe"), "");
    EXPECT_EQ(extensionOf("/"), "");
    EXPECT_EQ(extensionOf(""), "");
}

TEST(PathExtensionTest, DotAtEitherEndOfANameBeginsNoExtension)
{
    EXPECT_EQ(extensionOf("/x/.nm"), "");
    EXPECT_EQ(extensionOf(".nm"), "");
    EXPECT_EQ(extensionOf("/x/Safe."), "");
    EXPECT_EQ(extensionOf("/x/..nm"), "nm");
}

TEST(PathExtensionTest, FinalSlashesDoNotCount)
{
    EXPECT_EQ(extensionOf("/x/Safe.nm/"), "nm");
    EXPECT_EQ(extensionOf("/x/Safe.nm///"), "nm");
    EXPECT_EQ(withExtension("/x/Safe.nm//", "nmc"), "/x/Safe.nmc");
}

TEST(PathExtensionTest, NewExtensionStandsInTheOldOnesPlace)
{
    EXPECT_EQ(withExtension("/x/Safe.nmc", "nm"), "/x/Safe.nm");
    EXPECT_EQ(withExtension("/x/Safe.old.nmc", "nm"), "/x/Safe.old.nm");
    EXPECT_EQ(withExtension("/x.nmc/Safe.nmc", "nm"), "/x.nmc/Safe.nm");
}

TEST(PathExtensionTest, PathWithoutAnExtensionGetsOne)
{
    EXPECT_EQ(withExtension("/x/Safe", "nm"), "/x/Safe.nm");
    EXPECT_EQ(withExtension("/x.y/Safe", "nm"), "/x.y/Safe.nm");
    EXPECT_EQ(withExtension("/x/.hidden", "nm"), "/x/.hidden.nm");
}

TEST_F(MigratedPathTest, FolderWithTheOldExtensionIsRenamedWithAllItHolds)
{
    writeFile(temp.makeFolder("Safe.nm") + "/kept", "words");
    EXPECT_EQ(migrated("Safe.nm"), temp / "Safe.nmc");
    EXPECT_FALSE(fs::exists(temp / "Safe.nm"));
    EXPECT_EQ(readFile(temp / "Safe.nmc/kept"), "words");
}

TEST_F(MigratedPathTest, FolderWhoseNewNameIsTakenKeepsItsName)
{
    writeFile(temp.makeFolder("Safe.nm") + "/kept", "old words");
    writeFile(temp.makeFolder("Safe.nmc") + "/kept", "new words");
    EXPECT_EQ(migrated("Safe.nm"), temp / "Safe.nm");
    EXPECT_EQ(readFile(temp / "Safe.nm/kept"), "old words");
    EXPECT_EQ(readFile(temp / "Safe.nmc/kept"), "new words");
}

TEST_F(MigratedPathTest, EmptyFolderUnderTheNewNameIsNotReplaced)
{
    (void)temp.makeFolder("Safe.nm");
    (void)temp.makeFolder("Safe.nmc");
    EXPECT_EQ(migrated("Safe.nm"), temp / "Safe.nm");
    EXPECT_TRUE(fs::is_directory(temp / "Safe.nm"));
    EXPECT_TRUE(fs::is_directory(temp / "Safe.nmc"));
}

TEST_F(MigratedPathTest, DanglingLinkUnderTheNewNameIsNotReplaced)
{
    (void)temp.makeFolder("Safe.nm");
    fs::create_symlink("nowhere", temp / "Safe.nmc");
    EXPECT_EQ(migrated("Safe.nm"), temp / "Safe.nm");
    EXPECT_TRUE(fs::is_symlink(temp / "Safe.nmc"));
}

TEST_F(MigratedPathTest, LinkToAFolderIsRenamedItselfAndStillLeadsThere)
{
    writeFile(temp.makeFolder("Elsewhere") + "/kept", "words");
    fs::create_symlink("Elsewhere", temp / "Safe.nm");
    EXPECT_EQ(migrated("Safe.nm"), temp / "Safe.nmc");
    EXPECT_TRUE(fs::is_symlink(temp / "Safe.nmc"));
    EXPECT_EQ(readFile(temp / "Safe.nmc/kept"), "words");
}

TEST_F(MigratedPathTest, NothingThereGivesTheNewPath)
{
    EXPECT_EQ(migrated("Safe.nm"), temp / "Safe.nmc");
    EXPECT_TRUE(fs::is_empty(temp.path()));
}

TEST_F(MigratedPathTest, FileUnderTheOldNameStaysAndTheNewPathStands)
{
    writeFile(temp / "Safe.nm", "no folder");
    EXPECT_EQ(migrated("Safe.nm"), temp / "Safe.nmc");
    EXPECT_EQ(readFile(temp / "Safe.nm"), "no folder");
    EXPECT_FALSE(fs::exists(temp / "Safe.nmc"));
}

TEST_F(MigratedPathTest, FinalSlashIsNoPartOfTheNewPath)
{
    (void)temp.makeFolder("Safe.nm");
    EXPECT_EQ(migrated("Safe.nm/"), temp / "Safe.nmc");
    EXPECT_TRUE(fs::is_directory(temp / "Safe.nmc"));
}

TEST_F(MigratedPathTest, OtherExtensionsAndNoneStayAsTheyAre)
{
    for (const char *const name : {"Safe.nmc", "Safe.NM", "Safe", ".nm", "Safe.nmx"}) {
        (void)temp.makeFolder(name);
        EXPECT_EQ(migrated(name), temp / name);
        EXPECT_TRUE(fs::is_directory(temp / name)) << name;
    }
}

TEST_F(MigratedPathTest, NoPathStaysNone)
{
    EXPECT_TRUE(migratedPath({}).isNull());
}

} // namespace
} // namespace nimbrel::test
