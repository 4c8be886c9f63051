#include "fs/guards/GuardedFolder.h"
#include "support/Files.h"

#include <cerrno>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr const char *notUtf8 = "caf\xE9";

struct GuardedNamesTest : testing::Test
{
    GuardedFolder folder;
    GuardedFolder plain{{.plainNames = true}};

    static int codeOf(GuardedFolder &of, const std::string &path)
    {
        return of.tree().attributes(path).code();
    }
};

} // namespace

TEST_F(GuardedNamesTest, HaveTheLengthThatTheirStoredFormLeaves)
{
    EXPECT_EQ(folder.tree().longestName(), 189U);
    EXPECT_EQ(plain.tree().longestName(), 255U);
    EXPECT_EQ(folder.tree().fileSystem("/")->f_namemax, 189U);
    EXPECT_EQ(plain.tree().fileSystem("/")->f_namemax, 255U);
    for (GuardedFolder *each : {&folder, &plain}) {
        const std::size_t most = each->tree().longestName();
        (void)each->create("/" + std::string(most, 'n'));
        EXPECT_EQ(each->list("/")->front().name, std::string(most, 'n'));
        const std::string tooLong = "/" + std::string(most + 1, 'n');
        EXPECT_EQ(each->tree().checkName(tooLong.substr(1)).code(), ENAMETOOLONG);
        EXPECT_EQ(each->tree().create(tooLong, O_RDWR, 0600, thisUser()).code(), ENAMETOOLONG);
        EXPECT_EQ(each->tree().makeFolder(tooLong, 0700, thisUser()).code(), ENAMETOOLONG);
        EXPECT_EQ(each->tree().makeLink(tooLong, "x", thisUser()).code(), ENAMETOOLONG);
        EXPECT_EQ(each->tree().makeNode(tooLong, S_IFIFO, 0, thisUser()).code(), ENAMETOOLONG);
    }
}

TEST_F(GuardedNamesTest, ThatAreNotUtf8AreRefusedWhereTheyWouldVanish)
{
    const std::string path = std::string("/") + notUtf8;
    EXPECT_EQ(folder.tree().checkName(notUtf8).code(), EILSEQ);
    EXPECT_EQ(folder.tree().create(path, O_RDWR, 0600, thisUser()).code(), EILSEQ);
    EXPECT_EQ(folder.tree().makeFolder(path, 0700, thisUser()).code(), EILSEQ);
    (void)folder.create("/file");
    EXPECT_EQ(folder.tree().move("/file", path, 0).code(), EILSEQ);
    EXPECT_EQ(folder.tree().hardLink("/file", path).code(), EILSEQ);
    EXPECT_EQ(folder.list("/")->size(), 1U);
    (void)plain.create(path);
    EXPECT_EQ(plain.list("/")->front().name, notUtf8);
}

TEST_F(GuardedNamesTest, OfAnyScriptAreKept)
{
    for (const std::string name : {"naïve", "日本語", "𝄞", " lead", "trail ", "a\nb", "-", "%2F"})
        (void)folder.create("/" + name);
    for (const std::string name : {"naïve", "日本語", "𝄞", " lead", "trail ", "a\nb", "-", "%2F"})
        EXPECT_EQ(codeOf(folder, "/" + name), 0) << name;
    EXPECT_EQ(folder.list("/")->size(), 8U);
}

TEST_F(GuardedNamesTest, LinksTellTheirPlainTargetAndItsLength)
{
    for (GuardedFolder *each : {&folder, &plain})
        for (const std::string target : {"a", "../up/and away", "/absolute", "日本語"}) {
            ASSERT_TRUE(each->tree().makeLink("/link", target, thisUser()));
            EXPECT_EQ(*each->tree().linkTarget("/link"), target);
            EXPECT_EQ(each->tree().attributes("/link")->st_size, static_cast<off_t>(target.size()));
            ASSERT_TRUE(each->tree().removeFile("/link"));
        }
}

TEST_F(GuardedNamesTest, LinkTargetsThatCouldNotBeReadAreRefused)
{
    for (GuardedFolder *each : {&folder, &plain}) {
        EXPECT_EQ(each->tree().makeLink("/link", notUtf8, thisUser()).code(), EILSEQ);
        EXPECT_EQ(each->tree().makeLink("/link", "", thisUser()).code(), ENOENT);
        EXPECT_EQ(each->tree().makeLink("/link", std::string(4095, 't'), thisUser()).code(),
                  ENAMETOOLONG);
        EXPECT_EQ(codeOf(*each, "/link"), ENOENT);
    }
}

TEST_F(GuardedNamesTest, ALinkFromElsewhereIsSeenButHasNoTarget)
{
    ASSERT_EQ(::symlink("not encoded!", folder.onDisk("/link").c_str()), 0);
    EXPECT_EQ(folder.tree().linkTarget("/link").code(), EIO);
    EXPECT_TRUE(S_ISLNK(folder.tree().attributes("/link")->st_mode));
    EXPECT_EQ(folder.tree().linkTarget("/none").code(), ENOENT);
    EXPECT_EQ(folder.tree().removeFile("/link").code(), 0);
}

TEST_F(GuardedNamesTest, MoveOverAnother)
{
    (void)folder.create("/a", "A");
    (void)folder.create("/b", "B");
    ASSERT_TRUE(folder.tree().move("/a", "/b", 0));
    EXPECT_EQ(folder.readAt("/b"), "A");
    EXPECT_EQ(codeOf(folder, "/a"), ENOENT);
}

TEST_F(GuardedNamesTest, MoveWithoutReplacing)
{
    (void)folder.create("/a", "A");
    (void)folder.create("/b", "B");
    const NBDone refused = folder.tree().move("/a", "/b", RENAME_NOREPLACE);
    if (refused.code() == EINVAL)
        GTEST_SKIP() << "this store can't";
    EXPECT_EQ(refused.code(), EEXIST);
    EXPECT_EQ(folder.readAt("/b"), "B");
    EXPECT_TRUE(folder.tree().move("/a", "/c", RENAME_NOREPLACE));
    EXPECT_EQ(folder.readAt("/c"), "A");
}

TEST_F(GuardedNamesTest, Exchange)
{
    (void)folder.create("/a", "A");
    ASSERT_TRUE(folder.tree().makeFolder("/b", 0755, thisUser()));
    (void)folder.create("/b/inside", "I");
    const NBDone done = folder.tree().move("/a", "/b", RENAME_EXCHANGE);
    if (done.code() == EINVAL)
        GTEST_SKIP() << "this store can't";
    ASSERT_TRUE(done);
    EXPECT_EQ(folder.readAt("/b"), "A");
    EXPECT_EQ(folder.readAt("/a/inside"), "I");
    EXPECT_EQ(folder.tree().move("/a", "/none", RENAME_EXCHANGE).code(), ENOENT);
}

TEST_F(GuardedNamesTest, OtherWaysOfMovingAreRefused)
{
    (void)folder.create("/a", "A");
    // A whiteout, both ways at once, and what nobody knows.
    for (const unsigned flags : {4U, 3U, 64U})
        EXPECT_EQ(folder.tree().move("/a", "/b", flags).code(), EINVAL);
    EXPECT_EQ(folder.readAt("/a"), "A");
}

TEST_F(GuardedNamesTest, HardLinksAreOneFile)
{
    NBFileHandle file = folder.create("/a", "A");
    ASSERT_TRUE(folder.tree().hardLink("/a", "/b"));
    ASSERT_TRUE(folder.content().append(file, bytesOf("more")));
    EXPECT_EQ(folder.readAt("/b"), "Amore");
    EXPECT_EQ(folder.tree().attributes("/a")->st_nlink, 2U);
    EXPECT_EQ(folder.tree().hardLink("/a", "/b").code(), EEXIST);
}

TEST_F(GuardedNamesTest, RemovingKeepsFilesAndFoldersApart)
{
    (void)folder.create("/file");
    ASSERT_TRUE(folder.tree().makeFolder("/folder", 0755, thisUser()));
    EXPECT_EQ(folder.tree().removeFile("/folder").code(), EISDIR);
    EXPECT_EQ(folder.tree().removeFolder("/file").code(), ENOTDIR);
    EXPECT_EQ(folder.tree().removeFile("/none").code(), ENOENT);
    EXPECT_TRUE(folder.tree().removeFile("/file"));
    EXPECT_TRUE(folder.tree().removeFolder("/folder"));
    EXPECT_TRUE(folder.list("/")->empty());
}

TEST_F(GuardedNamesTest, AFolderWithStrangersInItIsNotEmpty)
{
    ASSERT_TRUE(folder.tree().makeFolder("/folder", 0755, thisUser()));
    writeFile(folder.onDisk("/folder") + "/.DS_Store", "");
    EXPECT_TRUE(folder.list("/folder")->empty());
    EXPECT_EQ(folder.tree().removeFolder("/folder").code(), ENOTEMPTY);
}

TEST_F(GuardedNamesTest, NodesOfEveryKindTheKernelLets)
{
    ASSERT_TRUE(folder.tree().makeNode("/pipe", S_IFIFO | 0640, 0, thisUser()));
    EXPECT_EQ(folder.tree().attributes("/pipe")->st_mode, S_IFIFO | 0640U);
    ASSERT_TRUE(folder.tree().makeNode("/socket", S_IFSOCK | 0600, 0, thisUser()));
    EXPECT_TRUE(S_ISSOCK(folder.tree().attributes("/socket")->st_mode));
    ASSERT_TRUE(folder.tree().makeNode("/file", S_IFREG | 0600, 0, thisUser()));
    EXPECT_EQ(folder.tree().attributes("/file")->st_size, 0);
    EXPECT_EQ(folder.tree().makeNode("/file", S_IFREG | 0600, 0, thisUser()).code(), EEXIST);
    const NBDone device =
        folder.tree().makeNode("/null", S_IFCHR | 0600, makedev(1, 3), thisUser());
    if (device) {
        EXPECT_EQ(folder.tree().attributes("/null")->st_rdev, makedev(1, 3));
    } else {
        EXPECT_EQ(device.code(), EPERM);
    }
}

TEST_F(GuardedNamesTest, PathsLongerThanTheKernelTakesWork)
{
    std::string path;
    for (int i = 0; i < 20; ++i) { // about 3,800 bytes, over 5,000 on disk
        path += "/" + std::string(189, 'p');
        ASSERT_TRUE(folder.tree().makeFolder(path, 0755, thisUser())) << i;
    }
    ASSERT_GT(folder.onDisk(path).size(), 4096U);
    (void)folder.create(path + "/file", "deep");
    ASSERT_TRUE(folder.tree().move(path + "/file", path + "/moved", 0));
    ASSERT_TRUE(folder.tree().hardLink(path + "/moved", path + "/linked"));
    ASSERT_TRUE(folder.tree().makeLink(path + "/link", "target", thisUser()));
    ASSERT_TRUE(folder.tree().makeNode(path + "/pipe", S_IFIFO | 0600, 0, thisUser()));
    EXPECT_EQ(folder.readAt(path + "/linked"), "deep");
    EXPECT_EQ(*folder.tree().linkTarget(path + "/link"), "target");
    NBItemAttributes attributes;
    attributes.posixPermissions = 0640;
    EXPECT_TRUE(folder.tree().setAttributes(path + "/moved", attributes));
    EXPECT_TRUE(folder.tree().syncFolder(path));
    EXPECT_EQ(folder.list(path)->size(), 4U);
    for (const std::string name : {"/moved", "/linked", "/link", "/pipe"})
        EXPECT_TRUE(folder.tree().removeFile(path + name));
    EXPECT_TRUE(folder.tree().removeFolder(path));
}

TEST_F(GuardedNamesTest, FoldersReachTheStore)
{
    (void)folder.create("/file");
    EXPECT_TRUE(folder.tree().syncFolder("/"));
    EXPECT_EQ(folder.tree().syncFolder("/file").code(), ENOTDIR);
    EXPECT_EQ(folder.tree().syncFolder("/none").code(), ENOENT);
}

} // namespace nimbrel::test
