#include "fs/TreeRemoval.h"
#include "fs/OrdinaryRights.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

class TreeRemovalTest : public testing::Test
{
protected:
    TempFolder folder;
    std::string tree = folder.makeFolder("tree");
};

TEST_F(TreeRemovalTest, AWideTreeGoesWhole)
{
    for (int i = 0; i < 50; ++i) {
        const std::string sub = tree + "/" + std::to_string(i);
        std::filesystem::create_directories(sub + "/empty");
        for (int j = 0; j < 20; ++j)
            writeFile(sub + "/" + std::to_string(j), "x");
    }
    EXPECT_TRUE(removeTree(tree.c_str()));
    EXPECT_FALSE(std::filesystem::exists(tree));
}

TEST_F(TreeRemovalTest, ATreeDeeperThanTheNumberOfOpenFilesGoes)
{
    int current = ::open(tree.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    for (int depth = 0; depth < 3000; ++depth) {
        ASSERT_EQ(::mkdirat(current, "d", 0755), 0);
        const int next = ::openat(current, "d", O_PATH | O_DIRECTORY | O_CLOEXEC);
        ::close(current);
        current = next;
    }
    ::close(current);
    EXPECT_TRUE(removeTree(tree.c_str()));
    EXPECT_FALSE(std::filesystem::exists(tree));
}

TEST_F(TreeRemovalTest, LinksAreRemovedAndNotFollowed)
{
    const std::string kept = folder.makeFolder("kept");
    writeFile(kept + "/file", "x");
    std::filesystem::create_directory_symlink(kept, tree + "/link");
    std::filesystem::create_directory_symlink(tree, folder / "to tree");
    EXPECT_TRUE(removeTree((folder / "to tree").c_str()));
    EXPECT_TRUE(std::filesystem::exists(tree + "/link"));
    EXPECT_TRUE(removeTree(tree.c_str()));
    EXPECT_EQ(readFile(kept + "/file"), "x");
}

TEST_F(TreeRemovalTest, TheFirstEntryThatStaysEndsIt)
{
    const OrdinaryRights rights;
    const std::string locked = tree + "/locked";
    std::filesystem::create_directory(locked);
    writeFile(locked + "/file", "x");
    for (const mode_t mode : {0500U, 0300U, 0000U}) { // can't be changed, can't be listed, both
        ASSERT_EQ(::chmod(locked.c_str(), mode), 0);
        EXPECT_EQ(removeTree(tree.c_str()).code(), EACCES) << mode;
        ASSERT_EQ(::chmod(locked.c_str(), 0700), 0);
        EXPECT_EQ(readFile(locked + "/file"), "x");
    }
}

TEST_F(TreeRemovalTest, ATopThatStaysEndsIt)
{
    const OrdinaryRights rights;
    writeFile(tree + "/file", "x");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
    EXPECT_EQ(removeTree(tree.c_str()).code(), EACCES);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
    ASSERT_EQ(::chmod(tree.c_str(), 0000), 0);
    EXPECT_EQ(removeTree(tree.c_str()).code(), EACCES);
    ASSERT_EQ(::chmod(tree.c_str(), 0700), 0);
    EXPECT_EQ(removeTree((folder / "missing").c_str()).code(), ENOENT);
}

} // namespace

} // namespace nimbrel::test
