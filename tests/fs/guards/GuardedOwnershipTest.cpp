#include "fs/guards/ChildProcess.h"
#include "fs/guards/GuardedFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr Creator ann{54321, 54322};
constexpr gid_t otherGroup = 54323;

// Makes one item of each kind in `folder`.
std::vector<std::string> makeAll(GuardedFolder &folder, const std::string &in, Creator creator)
{
    GuardedTree &tree = folder.tree();
    EXPECT_EQ(tree.create(in + "/file", O_RDWR | O_EXCL, 0640, creator).code(), 0);
    EXPECT_EQ(tree.makeFolder(in + "/folder", 0750, creator).code(), 0);
    EXPECT_EQ(tree.makeNode(in + "/pipe", S_IFIFO | 0600, 0, creator).code(), 0);
    EXPECT_EQ(tree.makeNode(in + "/node", S_IFREG | 0600, 0, creator).code(), 0);
    EXPECT_EQ(tree.makeLink(in + "/link", "file", creator).code(), 0);
    return {in + "/file", in + "/folder", in + "/pipe", in + "/node", in + "/link"};
}

class GuardedOwnershipTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (::geteuid() != 0)
            GTEST_SKIP() << "only root gives files away";
        ASSERT_TRUE(folder.tree().makeFolder("/in", 0777, thisUser()));
    }
    GuardedFolder folder;
};

} // namespace

TEST_F(GuardedOwnershipTest, WhatAUserMakesIsHis)
{
    for (const std::string &path : makeAll(folder, "/in", ann)) {
        const NBErrnoOr<struct stat> item = folder.tree().attributes(path);
        EXPECT_EQ(item->st_uid, ann.user) << path;
        EXPECT_EQ(item->st_gid, ann.group) << path;
    }
}

TEST_F(GuardedOwnershipTest, ASetgidFolderHandsOnItsGroup)
{
    ASSERT_EQ(::chown(folder.onDisk("/in").c_str(), 0, otherGroup), 0);
    ASSERT_EQ(::chmod(folder.onDisk("/in").c_str(), 02777), 0);
    for (const std::string &path : makeAll(folder, "/in", ann)) {
        const NBErrnoOr<struct stat> item = folder.tree().attributes(path);
        EXPECT_EQ(item->st_uid, ann.user) << path;
        EXPECT_EQ(item->st_gid, otherGroup) << path;
    }
    EXPECT_EQ(folder.tree().attributes("/in/folder")->st_mode & 07777U, 02750U);
}

TEST_F(GuardedOwnershipTest, SetUidBitsSurviveTheGiving)
{
    ASSERT_TRUE(folder.tree().create("/in/tool", O_RDWR, 06755, ann));
    EXPECT_EQ(folder.tree().attributes("/in/tool")->st_mode & 07777U, 06755U);
    ASSERT_TRUE(folder.tree().makeNode("/in/node", S_IFREG | 06711, 0, ann));
    EXPECT_EQ(folder.tree().attributes("/in/node")->st_mode & 07777U, 06711U);
    EXPECT_EQ(folder.tree().attributes("/in/node")->st_uid, ann.user);
}

TEST_F(GuardedOwnershipTest, AnExistingFileKeepsItsOwner)
{
    (void)folder.create("/in/file", "text");
    ASSERT_TRUE(folder.tree().create("/in/file", O_RDWR, 0600, ann));
    EXPECT_EQ(folder.tree().attributes("/in/file")->st_uid, 0U);
}

TEST(GuardedOrdinaryOwnershipTest, WhatCannotBeGivenIsNotMade)
{
    expectPassed(asLonelyRoot([](const std::string &store) {
        GuardedFolder folder{{.store = store}};
        GuardedTree &tree = folder.tree();
        EXPECT_EQ(tree.create("/file", O_RDWR | O_EXCL, 0640, ann).code(), EINVAL);
        EXPECT_EQ(tree.makeFolder("/folder", 0750, ann).code(), EINVAL);
        EXPECT_EQ(tree.makeNode("/pipe", S_IFIFO | 0600, 0, ann).code(), EINVAL);
        EXPECT_EQ(tree.makeLink("/link", "file", ann).code(), EINVAL);
        EXPECT_TRUE(folder.list("/")->empty());
    }));
}

TEST(GuardedOrdinaryOwnershipTest, AnOrdinaryUsersProcessGivesNothingAway)
{
    expectPassed(asOrdinaryUser([](const std::string &store) {
        GuardedFolder folder{{.store = store}};
        ASSERT_TRUE(folder.tree().makeFolder("/in", 0777, thisUser()));
        for (const std::string &path : makeAll(folder, "/in", Creator{1, 1}))
            EXPECT_EQ(folder.tree().attributes(path)->st_uid, ::geteuid()) << path;
    }));
}

} // namespace nimbrel::test
