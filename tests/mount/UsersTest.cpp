// Several users on one disk: each has what is his, and no more.
#include "mount/SharedDisk.h"

#include <sys/wait.h>

namespace nimbrel::test {

namespace {

class UsersTest : public SharedDisk
{
protected:
    // All kinds of items in `folder`, each made by Ann.
    void annMakesAll(const std::string &folder, const OrdinaryUser &user = ann()) const
    {
        const std::string in = path(folder) + "/";
        ASSERT_EQ(as(user,
                     [&] {
                         writeFile(in + "file", "text");
                         must(::mkdir((in + "folder").c_str(), 0755), "mkdir");
                         must(::symlink("file", (in + "link").c_str()), "symlink");
                         must(::mkfifo((in + "pipe").c_str(), 0600), "mkfifo");
                         must(::mknod((in + "node").c_str(), S_IFREG | 0600, 0), "mknod");
                         return 0;
                     }),
                  0);
    }

    void expectAll(const std::string &folder, uid_t owner, gid_t group) const
    {
        for (const char *name : {"file", "folder", "link", "pipe", "node"}) {
            const struct stat status = statusOf(path(folder) + "/" + name);
            EXPECT_EQ(status.st_uid, owner) << name;
            EXPECT_EQ(status.st_gid, group) << name;
        }
    }

    // The mode of a program of root's with the set-uid and set-gid bits, after `change`.
    [[nodiscard]] mode_t modeAfter(const std::function<void(const std::string &)> &change,
                                   const OrdinaryUser &user) const
    {
        make("program", 06777);
        EXPECT_EQ(as(user,
                     [&] {
                         change(path("program"));
                         return 0;
                     }),
                  0);
        return statusOf(path("program")).st_mode & 07777U;
    }
};

void writeInto(const std::string &path)
{
    OpenFile(path, O_WRONLY).writeAt("new", 0);
}

void cut(const std::string &path)
{
    must(::truncate(path.c_str(), 1), "truncate");
}

TEST_F(UsersTest, WhatAUserMakesIsHis)
{
    annMakesAll(".");
    expectAll(".", annsNumber, annsNumber);
    disk().remount();
    expectAll(".", annsNumber, annsNumber);
    EXPECT_EQ(statusOf(disk().plain()).st_uid, 0U);
}

TEST_F(UsersTest, ASetGidFolderHandsOnItsGroup)
{
    makeFolder("shared", 02777, 0, teamNumber);
    annMakesAll("shared");
    expectAll("shared", annsNumber, teamNumber);
    EXPECT_EQ(statusOf(path("shared/folder")).st_mode & 07777U, 02755U);
    EXPECT_EQ(statusOf(path("shared/file")).st_mode & 07777U, 0644U);
}

TEST_F(UsersTest, TheMainGroupOfTheMomentCounts)
{
    annMakesAll(".", {.user = annsNumber, .group = teamNumber});
    expectAll(".", annsNumber, teamNumber);
}

TEST_F(UsersTest, SupplementaryGroupsCount)
{
    make("file", 0660, 0, teamNumber);
    makeFolder("folder", 0770, 0, teamNumber);
    EXPECT_EQ(openError(ann(), "file", O_RDWR), EACCES);
    EXPECT_EQ(openError(inTeam(ann()), "file", O_RDWR), 0);
    EXPECT_EQ(openError(ann(), "folder/new", O_CREAT | O_RDWR), EACCES);
    EXPECT_EQ(openError(inTeam(ann()), "folder/new", O_CREAT | O_RDWR), 0);
    EXPECT_EQ(statusOf(path("folder/new")).st_gid, annsNumber);
}

TEST_F(UsersTest, AFileGoesOnlyToAnOwnGroup)
{
    make("file", 0644, annsNumber, annsNumber);
    const std::string file = path("file");
    const auto toTeam = [&] { return ::chown(file.c_str(), static_cast<uid_t>(-1), teamNumber); };
    EXPECT_EQ(errorOf(ann(), toTeam), EPERM);
    EXPECT_EQ(errorOf(inTeam(ann()), toTeam), 0);
    EXPECT_EQ(statusOf(file).st_gid, teamNumber);
    const auto toBen = [&] { return ::chown(file.c_str(), bensNumber, static_cast<gid_t>(-1)); };
    EXPECT_EQ(errorOf(ann(), toBen), EPERM);
}

TEST_F(UsersTest, AnotherUsersFilesAreClosed)
{
    make("private", 0600, annsNumber, annsNumber);
    make("readable", 0644, annsNumber, annsNumber);
    makeFolder("folder", 0700, annsNumber, annsNumber);
    EXPECT_EQ(openError(ann(), "private", O_RDWR), 0);
    EXPECT_EQ(openError(ben(), "private", O_RDONLY), EACCES);
    EXPECT_EQ(openError(ben(), "readable", O_RDONLY), 0);
    EXPECT_EQ(openError(ben(), "readable", O_WRONLY), EACCES);
    EXPECT_EQ(openError(ben(), "folder", O_RDONLY | O_DIRECTORY), EACCES);
    EXPECT_EQ(openError(ben(), "folder/new", O_CREAT | O_RDWR), EACCES);
    EXPECT_EQ(openError(ann(), "folder/new", O_CREAT | O_RDWR), 0);
    EXPECT_EQ(openError(ben(), "folder/new", O_RDONLY), EACCES);
}

TEST_F(UsersTest, RootsFilesAreClosedToAll)
{
    make("private", 0600);
    makeFolder("folder", 0700);
    EXPECT_EQ(openError(ann(), "private", O_RDONLY), EACCES);
    EXPECT_EQ(openError(ann(), "folder/any", O_RDONLY), EACCES);
    const std::string file = path("private");
    EXPECT_EQ(errorOf(ann(), [&] { return ::access(file.c_str(), R_OK); }), EACCES);
    EXPECT_EQ(errorOf(ann(), [&] { return ::truncate(file.c_str(), 0); }), EACCES);
}

TEST_F(UsersTest, OnlyTheOwnerChangesModesAndTimes)
{
    make("file", 0666, annsNumber, annsNumber);
    const std::string file = path("file");
    const timespec times[] = {{.tv_sec = 1, .tv_nsec = 2}, {.tv_sec = 3, .tv_nsec = 4}};
    const auto change = [&] { return ::chmod(file.c_str(), 0644); };
    const auto date = [&] { return ::utimensat(AT_FDCWD, file.c_str(), times, 0); };
    const auto touch = [&] { return ::utimensat(AT_FDCWD, file.c_str(), nullptr, 0); };
    EXPECT_EQ(errorOf(ben(), change), EPERM);
    EXPECT_EQ(errorOf(ben(), date), EPERM);
    EXPECT_EQ(errorOf(ben(), touch), 0); // who may write may touch
    EXPECT_EQ(errorOf(ann(), date), 0);
    EXPECT_EQ(statusOf(file).st_mtim.tv_nsec, 4);
    EXPECT_EQ(errorOf(ann(), change), 0);
    EXPECT_EQ(errorOf(ben(), touch), EACCES);
}

TEST_F(UsersTest, AStickyFolderKeepsEachUsersFiles)
{
    makeFolder("tmp", 01777);
    make("tmp/anns", 0666, annsNumber, annsNumber);
    const std::string file = path("tmp/anns");
    const std::string other = path("tmp/other");
    EXPECT_EQ(errorOf(ben(), [&] { return ::unlink(file.c_str()); }), EPERM);
    EXPECT_EQ(errorOf(ben(), [&] { return ::rename(file.c_str(), other.c_str()); }), EPERM);
    EXPECT_EQ(openError(ben(), "tmp/bens", O_CREAT | O_RDWR), 0);
    const std::string bens = path("tmp/bens");
    EXPECT_EQ(errorOf(ben(), [&] { return ::rename(bens.c_str(), file.c_str()); }), EPERM);
    EXPECT_EQ(readFile(file), "text");
    EXPECT_EQ(errorOf(ann(), [&] { return ::unlink(file.c_str()); }), 0);
}

TEST_F(UsersTest, AForeignWriteClearsTheSetIdBits)
{
    EXPECT_EQ(modeAfter(writeInto, ann()), 0777U);
}

TEST_F(UsersTest, AForeignTruncationClearsTheSetIdBits)
{
    EXPECT_EQ(modeAfter(cut, ann()), 0777U);
}

TEST_F(UsersTest, OpeningWithTruncationClearsTheSetIdBits)
{
    const auto open = [](const std::string &path) { OpenFile(path, O_WRONLY | O_TRUNC).close(); };
    EXPECT_EQ(modeAfter(open, ann()), 0777U);
}

TEST_F(UsersTest, GivingAProgramAwayClearsTheSetIdBits)
{
    make("program", 06755);
    must(::chown(path("program").c_str(), annsNumber, annsNumber), "chown");
    EXPECT_EQ(statusOf(path("program")).st_mode & 07777U, 0755U);
}

TEST_F(UsersTest, RootsOwnWriteKeepsTheSetIdBits)
{
    make("program", 06755);
    writeInto(path("program"));
    EXPECT_EQ(statusOf(path("program")).st_mode & 07777U, 06755U);
}

TEST_F(UsersTest, ASetGidBitOfAForeignGroupIsNotTaken)
{
    make("program", 0755, annsNumber, teamNumber);
    const std::string file = path("program");
    EXPECT_EQ(errorOf(ann(), [&] { return ::chmod(file.c_str(), 02755); }), 0);
    EXPECT_EQ(statusOf(file).st_mode & 07777U, 0755U);
    EXPECT_EQ(errorOf(inTeam(ann()), [&] { return ::chmod(file.c_str(), 02755); }), 0);
    EXPECT_EQ(statusOf(file).st_mode & 07777U, 02755U);
}

TEST_F(UsersTest, EachUsersUmaskCounts)
{
    ASSERT_EQ(as(ann(),
                 [&] {
                     ::umask(077);
                     const OpenFile file(path("file"), O_CREAT | O_RDWR, 0666);
                     must(::mkdir(path("folder").c_str(), 0777), "mkdir");
                     return 0;
                 }),
              0);
    EXPECT_EQ(statusOf(path("file")).st_mode & 07777U, 0600U);
    EXPECT_EQ(statusOf(path("folder")).st_mode & 07777U, 0700U);
}

TEST_F(UsersTest, AFileMadeWithoutRightsIsOpenToItsMaker)
{
    EXPECT_EQ(as(ann(),
                 [&] {
                     const OpenFile file(path("file"), O_CREAT | O_EXCL | O_RDWR, 0);
                     file.writeAt("text", 0);
                     return file.all() == "text" ? 0 : 1;
                 }),
              0);
    EXPECT_EQ(statusOf(path("file")).st_mode & 07777U, 0U);
    EXPECT_EQ(openError(ann(), "file", O_RDONLY), EACCES);
}

TEST_F(UsersTest, ProgramsOnTheDiskRunForAll)
{
    writeFile(path("script"), "#!/bin/sh\nid -u\n");
    must(::chmod(path("script").c_str(), 0755), "chmod");
    EXPECT_EQ(run({path("script")}, {.user = annsNumber}).output,
              std::to_string(annsNumber) + "\n");
    must(::chmod(path("script").c_str(), 0744), "chmod");
    EXPECT_NE(run({path("script")}, {.user = annsNumber}).status, 0);
}

} // namespace

} // namespace nimbrel::test
