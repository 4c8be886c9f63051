// Access control lists on a disk for all users.
#include "mount/Programs.h"
#include "mount/SharedDisk.h"

#include <gmock/gmock.h>

namespace nimbrel::test {

namespace {

class UsersAclTest : public SharedDisk
{
protected:
    void SetUp() override
    {
        SharedDisk::SetUp();
        if (IsSkipped())
            return;
        NIMBREL_NEED_PROGRAM("setfacl");
        const std::string probe = "setfacl -m u:60199:r . && setfacl -b .";
        if (shell(probe, {.folder = disk().encrypted()}).status != 0)
            GTEST_SKIP() << "the store below TMPDIR has no access control lists";
        must(::chmod(disk().plain().c_str(), 0777), "chmod");
    }

    void set(const std::string &list, const std::string &name)
    {
        const RunResult result = run({"setfacl", "-m", list, path(name)});
        ASSERT_TRUE(worked(result)) << list;
    }
    void setDefault(const std::string &list, const std::string &name)
    {
        const RunResult result = run({"setfacl", "-d", "-m", list, path(name)});
        ASSERT_TRUE(worked(result)) << list;
    }
    [[nodiscard]] std::string listOf(const std::string &name)
    {
        return run({"getfacl", "-n", "-c", "-p", path(name)}).output;
    }
};

const std::string forBen = "u:" + std::to_string(bensNumber) + ":rw";
const std::string bensEntry = "user:" + std::to_string(bensNumber) + ":rw-";

TEST_F(UsersAclTest, AnEntryOpensAFile)
{
    make("file", 0600, annsNumber, annsNumber);
    EXPECT_EQ(openError(ben(), "file", O_RDWR), EACCES);
    set(forBen, "file");
    EXPECT_EQ(openError(ben(), "file", O_RDWR), 0);
    EXPECT_THAT(listOf("file"), testing::HasSubstr(bensEntry));
    EXPECT_EQ(statusOf(path("file")).st_mode & 07777U, 0660U); // the mask stands for the group
    disk().remount();
    EXPECT_EQ(openError(ben(), "file", O_RDWR), 0);
    EXPECT_THAT(listOf("file"), testing::HasSubstr(bensEntry));
}

TEST_F(UsersAclTest, AnEntryClosesAFile)
{
    make("file", 0666, annsNumber, annsNumber);
    set("u:" + std::to_string(bensNumber) + ":---", "file");
    EXPECT_EQ(openError(ben(), "file", O_RDONLY), EACCES);
    EXPECT_EQ(openError(ann(), "file", O_RDONLY), 0);
    EXPECT_EQ(run({"setfacl", "-b", path("file")}).status, 0);
    EXPECT_EQ(openError(ben(), "file", O_RDONLY), 0);
}

TEST_F(UsersAclTest, AGroupsEntryCountsForItsMembers)
{
    make("file", 0600, annsNumber, annsNumber);
    set("g:" + std::to_string(teamNumber) + ":r", "file");
    EXPECT_EQ(openError(ben(), "file", O_RDONLY), EACCES);
    EXPECT_EQ(openError(inTeam(ben()), "file", O_RDONLY), 0);
    EXPECT_EQ(openError(inTeam(ben()), "file", O_WRONLY), EACCES);
}

TEST_F(UsersAclTest, ChangingTheModeMovesTheMask)
{
    make("file", 0600, annsNumber, annsNumber);
    set(forBen, "file");
    must(::chmod(path("file").c_str(), 0600), "chmod");
    EXPECT_EQ(openError(ben(), "file", O_RDONLY), EACCES);
    EXPECT_THAT(listOf("file"), testing::HasSubstr("mask::---"));
    must(::chmod(path("file").c_str(), 0640), "chmod");
    EXPECT_EQ(openError(ben(), "file", O_RDONLY), 0);
    EXPECT_EQ(openError(ben(), "file", O_WRONLY), EACCES);
}

TEST_F(UsersAclTest, DefaultsAreHandedOnToFiles)
{
    makeFolder("folder", 0777);
    setDefault("u::rwx,g::r,o::-," + forBen, "folder");
    EXPECT_EQ(openError(ann(), "folder/file", O_CREAT | O_RDWR), 0);
    EXPECT_THAT(listOf("folder/file"), testing::HasSubstr(bensEntry));
    // They count in the umask's place.
    EXPECT_EQ(statusOf(path("folder/file")).st_mode & 07777U, 0660U);
    EXPECT_EQ(openError(ben(), "folder/file", O_RDWR), 0);
    EXPECT_EQ(openError({.user = 60113, .group = 60113}, "folder/file", O_RDONLY), EACCES);
    EXPECT_EQ(statusOf(path("folder/file")).st_uid, annsNumber);
}

TEST_F(UsersAclTest, DefaultsAreHandedOnToFolders)
{
    makeFolder("folder", 0777);
    setDefault("u::rwx,g::rx,o::-,u:" + std::to_string(bensNumber) + ":rwx", "folder");
    const std::string inner = path("folder/inner");
    EXPECT_EQ(errorOf(ann(), [&] { return ::mkdir(inner.c_str(), 0777); }), 0);
    const std::string entry = "user:" + std::to_string(bensNumber) + ":rwx";
    EXPECT_THAT(listOf("folder/inner"), testing::HasSubstr("\n" + entry));
    EXPECT_THAT(listOf("folder/inner"), testing::HasSubstr("default:" + entry));
    EXPECT_EQ(openError(ben(), "folder/inner/file", O_CREAT | O_RDWR), 0);
    EXPECT_EQ(statusOf(inner).st_mode & 07777U, 0770U);
}

TEST_F(UsersAclTest, OnlyTheOwnerChangesThem)
{
    make("file", 0666, annsNumber, annsNumber);
    EXPECT_NE(run({"setfacl", "-m", forBen, path("file")}, {.user = bensNumber}).status, 0);
    EXPECT_EQ(run({"setfacl", "-m", forBen, path("file")}, {.user = annsNumber}).status, 0);
    EXPECT_THAT(listOf("file"), testing::HasSubstr(bensEntry));
}

TEST_F(UsersAclTest, CopiesKeepThem)
{
    make("file", 0600, annsNumber, annsNumber);
    set(forBen, "file");
    EXPECT_TRUE(worked(shell("cp -a file copy && mv copy moved", {.folder = disk().plain()})));
    EXPECT_EQ(listOf("moved"), listOf("file"));
    EXPECT_EQ(openError(ben(), "moved", O_RDWR), 0);
}

} // namespace

} // namespace nimbrel::test
