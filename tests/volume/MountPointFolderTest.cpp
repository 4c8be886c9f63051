#include "volume/MountPointFolder.h"

#include "support/Files.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

class MountPointFolderTest : public ::testing::Test
{
protected:
    [[nodiscard]] static mode_t modeOf(const std::string &path)
    {
        struct stat found = {};
        return ::stat(path.c_str(), &found) == 0 ? found.st_mode & ALLPERMS : 0;
    }
    [[nodiscard]] std::string refusal(const std::string &name)
    {
        const auto failure = MountPointFolder(root, name).prepare();
        return failure ? failure->message : "";
    }

    TempFolder temp;
    const std::string root = temp / "deep/below/Volumes";
    const std::string path = root + "/Safe";
    MountPointFolder folder{root, "Safe"};
};

TEST_F(MountPointFolderTest, PreparingMakesTheFolderWithAllThatIsMissingAbove)
{
    EXPECT_EQ(folder.path(), path);
    EXPECT_FALSE(folder.prepare());
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_EQ(modeOf(path), 0700U);
}

TEST_F(MountPointFolderTest, GivingUpRemovesWhatWasMade)
{
    ASSERT_FALSE(folder.prepare());
    folder.giveUp();
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(fs::exists(root));
}

TEST_F(MountPointFolderTest, GivingUpLeavesAFolderThatWasThere)
{
    fs::create_directories(path);
    ASSERT_FALSE(folder.prepare());
    folder.giveUp();
    EXPECT_TRUE(fs::exists(path));
}

TEST_F(MountPointFolderTest, GivingUpBeforePreparingRemovesNothing)
{
    fs::create_directories(path);
    folder.giveUp();
    EXPECT_TRUE(fs::exists(path));
}

TEST_F(MountPointFolderTest, ProtectingTakesTheRightToWriteFromEverybody)
{
    ASSERT_FALSE(folder.prepare());
    ASSERT_EQ(::chmod(path.c_str(), 0777), 0);
    folder.protect();
    EXPECT_EQ(modeOf(path), 0555U);
}

TEST_F(MountPointFolderTest, AFolderThatASuddenEndLeftProtectedIsMadeWritableAgain)
{
    ASSERT_FALSE(folder.prepare());
    folder.protect();
    ASSERT_EQ(modeOf(path), 0500U);
    MountPointFolder later(root, "Safe");
    EXPECT_FALSE(later.prepare());
    EXPECT_EQ(modeOf(path), 0700U);
}

TEST_F(MountPointFolderTest, RemovingTakesAProtectedFolderAwayAndKeepsTheRoot)
{
    ASSERT_FALSE(folder.prepare());
    folder.protect();
    folder.remove();
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(fs::exists(root));
}

TEST_F(MountPointFolderTest, RemovingKeepsAFolderWithFilesInIt)
{
    ASSERT_FALSE(folder.prepare());
    writeFile(path + "/mine.txt", "mine");
    folder.remove();
    EXPECT_EQ(readFile(path + "/mine.txt"), "mine");
}

TEST_F(MountPointFolderTest, ALinkAtTheMountPointIsNotFollowedWhenRightsChange)
{
    const std::string target = temp.makeFolder("target");
    fs::create_directories(root);
    fs::create_directory_symlink(target, path);
    ASSERT_FALSE(folder.prepare());
    folder.protect();
    EXPECT_EQ(modeOf(target), 0755U);
}

TEST_F(MountPointFolderTest, OnlyOneNameInTheRootWillDo)
{
    for (const std::string &name :
         {std::string(), std::string("."), std::string(".."), std::string("a/b"),
          std::string("../up"), std::string("/"), std::string("a\0b", 3)})
        EXPECT_EQ(refusal(name),
                  "A disk can't be called \"" + name + "\". Give the volume a name without \"/\".");
    EXPECT_FALSE(fs::exists(temp / "deep"));
    for (const std::string name : {"...", ".hidden", "a.b", "100%", "\xC3\xA4"})
        EXPECT_EQ(refusal(name), "") << name;
}

TEST_F(MountPointFolderTest, ARootThatCannotBeMadeIsNamedWithItsCause)
{
    writeFile(temp / "deep", "a file");
    EXPECT_EQ(refusal("Safe"), "The folder " + root +
                                   " can't be made: Not a directory. Disks are shown in it; check "
                                   "that you may write to the folder above.");
}

TEST_F(MountPointFolderTest, ANameThatIsTooLongIsNamedWithItsCause)
{
    const std::string name(300, 'n');
    EXPECT_EQ(refusal(name), "The folder " + root + "/" + name +
                                 " can't be made: File name too long. The disk is shown in it; "
                                 "check that you may write to " +
                                 root + ".");
}

} // namespace
} // namespace nimbrel::test
