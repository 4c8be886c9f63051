#include "fs/guards/ChildProcess.h"
#include "fs/guards/GuardedFolder.h"
#include "support/Files.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

mode_t modeOf(GuardedFolder &folder, const std::string &path)
{
    return folder.tree().attributes(path)->st_mode & 07777U;
}

int codeOf(GuardedFolder &folder, const std::string &path, int flags)
{
    return folder.tree().open(path, flags).code();
}

} // namespace

TEST(GuardedOpeningTest, KeepsAwayFlagsThatWouldSpoilOffsets)
{
    GuardedFolder folder;
    (void)folder.create("/file", "text");
    const NBFileHandle file =
        folder.open("/file", O_RDWR | O_APPEND | O_DIRECT | O_CREAT | O_EXCL | O_LARGEFILE);
    const int flags = ::fcntl(file.descriptor.get(), F_GETFL);
    EXPECT_EQ(flags & (O_APPEND | O_DIRECT), 0);
    EXPECT_EQ(::fcntl(file.descriptor.get(), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(folder.readAt("/file"), "text");
}

TEST(GuardedOpeningTest, HandsSynchronousWritingOn)
{
    GuardedFolder folder;
    (void)folder.create("/file");
    const NBFileHandle file = folder.open("/file", O_WRONLY | O_SYNC);
    EXPECT_EQ(::fcntl(file.descriptor.get(), F_GETFL) & O_SYNC, O_SYNC);
    const NBErrnoOr<NBFileHandle> made =
        folder.tree().create("/new", O_RDWR | O_DSYNC, 0600, thisUser());
    ASSERT_TRUE(made);
    EXPECT_EQ(::fcntl(made->descriptor.get(), F_GETFL) & O_DSYNC, O_DSYNC);
}

TEST(GuardedOpeningTest, WritingFilesCanBeReadBack)
{
    GuardedFolder folder;
    (void)folder.create("/file", "text");
    NBFileHandle file = folder.open("/file", O_WRONLY);
    ASSERT_TRUE(folder.content().write(file, bytesOf("E"), 1));
    EXPECT_EQ(folder.read(file), "tExt");
}

TEST(GuardedOpeningTest, CutsOnlyWhenAsked)
{
    GuardedFolder folder;
    (void)folder.create("/file", "text");
    (void)folder.open("/file", O_WRONLY);
    EXPECT_EQ(folder.readAt("/file"), "text");
    (void)folder.open("/file", O_WRONLY | O_TRUNC);
    EXPECT_EQ(folder.readAt("/file"), "");
}

TEST(GuardedOpeningTest, OpensFilesOnly)
{
    GuardedFolder folder;
    ASSERT_TRUE(folder.tree().makeFolder("/folder", 0755, thisUser()));
    ASSERT_TRUE(folder.tree().makeLink("/link", "folder", thisUser()));
    ASSERT_TRUE(folder.tree().makeNode("/pipe", S_IFIFO | 0600, 0, thisUser()));
    ASSERT_TRUE(folder.tree().makeNode("/socket", S_IFSOCK | 0600, 0, thisUser()));
    for (const int flags : {O_RDONLY, O_RDWR, O_WRONLY}) {
        EXPECT_EQ(codeOf(folder, "/folder", flags), EISDIR);
        EXPECT_EQ(codeOf(folder, "/link", flags), ELOOP);
        EXPECT_EQ(codeOf(folder, "/pipe", flags), ENXIO); // and doesn't wait for its other end
        EXPECT_EQ(codeOf(folder, "/socket", flags), ENXIO);
        EXPECT_EQ(codeOf(folder, "/none", flags), ENOENT);
    }
}

TEST(GuardedOpeningTest, CreatesExclusivelyWhenAsked)
{
    GuardedFolder folder;
    (void)folder.create("/file", "text");
    EXPECT_EQ(folder.tree().create("/file", O_RDWR | O_EXCL, 0600, thisUser()).code(), EEXIST);
    EXPECT_EQ(folder.readAt("/file"), "text");
    EXPECT_TRUE(folder.tree().create("/file", O_RDWR | O_TRUNC, 0600, thisUser()));
    EXPECT_EQ(folder.readAt("/file"), "");
    ASSERT_TRUE(folder.tree().makeLink("/link", "nowhere", thisUser()));
    EXPECT_EQ(folder.tree().create("/link", O_RDWR, 0600, thisUser()).code(), ELOOP);
    EXPECT_EQ(folder.tree().create("/none/file", O_RDWR, 0600, thisUser()).code(), ENOENT);
}

TEST(GuardedOpeningTest, PermissionsOfNewItemsGoUnderTheUmask)
{
    GuardedFolder folder;
    const mode_t before = ::umask(027);
    const bool made = folder.tree().create("/file", O_RDWR, 0666, thisUser()) &&
                      folder.tree().makeFolder("/folder", 0777, thisUser()) &&
                      folder.tree().makeNode("/pipe", S_IFIFO | 0666, 0, thisUser());
    ::umask(before);
    ASSERT_TRUE(made);
    EXPECT_EQ(modeOf(folder, "/file"), 0640U);
    EXPECT_EQ(modeOf(folder, "/folder"), 0750U);
    EXPECT_EQ(modeOf(folder, "/pipe"), 0640U);
}

TEST(GuardedOpeningTest, AFileThatItsOwnerMayNotReadIsWritten)
{
    expectPassed(asOrdinaryUser([](const std::string &store) {
        GuardedFolder folder{{.store = store}};
        folder.tree().setIsCheckedByKernel(true);
        (void)folder.create("/file", "text");
        for (const mode_t mode : {0200U, 0020U, 0000U, 04220U}) {
            NBItemAttributes attributes;
            attributes.posixPermissions = mode;
            ASSERT_TRUE(folder.tree().setAttributes("/file", attributes));
            NBFileHandle file = folder.open("/file", O_WRONLY);
            EXPECT_EQ(modeOf(folder, "/file"), mode);
            ASSERT_TRUE(folder.content().write(file, bytesOf("E"), 1));
            EXPECT_EQ(folder.read(file), "tExt");
        }
    }));
}

// On a private disk nobody has asked before whether the user may.
TEST(GuardedOpeningTest, WhereTheStoreDecidesAFilesOwnerGetsNoMoreThanItsPermissions)
{
    expectPassed(asOrdinaryUser([](const std::string &store) {
        GuardedFolder folder{{.store = store}};
        (void)folder.create("/file", "text");
        struct Case
        {
            mode_t mode;
            int flags;
            int code;
        };
        for (const Case &each :
             {Case{0200, O_WRONLY, 0}, Case{0200, O_RDONLY, EACCES}, Case{0200, O_RDWR, EACCES},
              Case{0400, O_WRONLY, EACCES}, Case{0400, O_RDONLY, 0}, Case{0060, O_RDWR, EACCES},
              Case{0, O_RDONLY, EACCES}, Case{0, O_WRONLY, EACCES}}) {
            NBItemAttributes attributes;
            attributes.posixPermissions = each.mode;
            ASSERT_TRUE(folder.tree().setAttributes("/file", attributes));
            EXPECT_EQ(codeOf(folder, "/file", each.flags), each.code)
                << std::oct << each.mode << ' ' << each.flags;
            EXPECT_EQ(modeOf(folder, "/file"), each.mode);
        }
    }));
}

TEST(GuardedOpeningTest, ACreatedFileMayHaveNoPermissionsAtAll)
{
    expectPassed(asOrdinaryUser([](const std::string &store) {
        GuardedFolder folder{{.store = store}};
        folder.tree().setIsCheckedByKernel(true);
        NBErrnoOr<NBFileHandle> file =
            folder.tree().create("/file", O_WRONLY | O_EXCL, 0, thisUser());
        ASSERT_TRUE(file);
        ASSERT_TRUE(folder.content().write(*file, bytesOf("text"), 0));
        ASSERT_TRUE(folder.content().append(*file, bytesOf("more")));
        EXPECT_EQ(modeOf(folder, "/file"), 0U);
        EXPECT_EQ(folder.readAt("/file"), "textmore");
    }));
}

TEST(GuardedOpeningTest, ASetGroupFileIsNotChangedForOpening)
{
    expectPassed(asOrdinaryUser([](const std::string &store) {
        GuardedFolder folder{{.store = store}};
        (void)folder.create("/file", "text");
        ASSERT_EQ(::chmod(folder.onDisk("/file").c_str(), 02220), 0);
        EXPECT_EQ(codeOf(folder, "/file", O_WRONLY), EACCES);
        EXPECT_EQ(modeOf(folder, "/file"), 02220U);
    }));
}

TEST(GuardedOpeningTest, AFolderThatMayNotBeEnteredStaysClosed)
{
    expectPassed(asOrdinaryUser([](const std::string &store) {
        GuardedFolder folder{{.store = store}};
        ASSERT_TRUE(folder.tree().makeFolder("/folder", 0700, thisUser()));
        (void)folder.create("/folder/file", "text");
        ASSERT_EQ(::chmod(folder.onDisk("/folder").c_str(), 0600), 0);
        EXPECT_EQ(codeOf(folder, "/folder/file", O_RDWR), EACCES);
        ASSERT_EQ(::chmod(folder.onDisk("/folder").c_str(), 0700), 0);
        ASSERT_TRUE(folder.tree().removeFile("/folder/file"));
        ASSERT_TRUE(folder.tree().removeFolder("/folder"));
    }));
}

TEST(GuardedOpeningTest, TheAccessTimeMayBeLeftAlone)
{
    expectPassed(asOrdinaryUser([](const std::string &store) {
        GuardedFolder folder{{.store = store}};
        (void)folder.create("/file", "text");
        const NBFileHandle file = folder.open("/file", O_RDONLY | O_NOATIME);
        EXPECT_NE(::fcntl(file.descriptor.get(), F_GETFL) & O_NOATIME, 0);
    }));
}

} // namespace nimbrel::test
