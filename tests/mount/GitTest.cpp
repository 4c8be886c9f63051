#include "mount/MountedFolder.h"
#include "mount/Programs.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class GitTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_PROGRAM("git");
        _home = _temp.makeFolder("home");
        writeFile(_home + "/.gitconfig", "[user]\nname = A Tester\nemail = tester@example.org\n"
                                         "[commit]\ngpgsign = false\n[safe]\ndirectory = *\n"
                                         "[init]\ndefaultBranch = main\n[gc]\nauto = 0\n"
                                         "[advice]\ndetachedHead = false\n");
    }

    // Nothing of the person who runs the tests counts: neither settings nor a surrounding
    // repository, which a test started by a hook would find in the environment.
    RunResult git(const std::string &folder, const std::string &script) const
    {
        RunOptions options;
        options.folder = folder;
        options.environment = {"HOME=" + _home,
                               "XDG_CONFIG_HOME=" + _home,
                               "GIT_CONFIG_NOSYSTEM=1",
                               "GIT_CONFIG_GLOBAL=" + _home + "/.gitconfig",
                               "GIT_TERMINAL_PROMPT=0",
                               "GIT_EDITOR=true",
                               "LC_ALL=C"};
        options.limit = std::chrono::seconds(600);
        return shell("unset GIT_DIR GIT_WORK_TREE GIT_INDEX_FILE GIT_OBJECT_DIRECTORY; set -e; " +
                         script,
                     options);
    }

    TempFolder _temp;
    std::string _home;
};

TEST_F(GitTest, ThreeHundredCommitsBranchMergeAndGarbageCollectionStaySound)
{
    MountedFolder disk;
    ASSERT_TRUE(worked(git(disk.plain(), "git init -q work")));
    const std::string work = disk / "work";
    ASSERT_TRUE(worked(git(work, "i=0; while [ $i -lt 200 ]; do i=$((i+1)); echo $i >> log;"
                                 " echo text $i > f$((i % 40)); git add -A;"
                                 " git commit -q -m \"commit $i\"; done")));
    ASSERT_TRUE(worked(git(work, "git checkout -q -b side; i=0; while [ $i -lt 50 ]; do"
                                 " i=$((i+1)); echo $i >> side; git add -A;"
                                 " git commit -q -m \"side $i\"; done")));
    ASSERT_TRUE(worked(git(work, "git checkout -q main; i=0; while [ $i -lt 50 ]; do"
                                 " i=$((i+1)); echo $i >> log; git add -A;"
                                 " git commit -q -m \"main $i\"; done; git merge -q side")));
    EXPECT_EQ(git(work, "git rev-list --count HEAD").output, "301\n");
    ASSERT_TRUE(worked(git(work, "git fsck --strict --full")));
    disk.remount();
    EXPECT_EQ(git(work, "git status --porcelain").output, "");
    ASSERT_TRUE(worked(git(work, "git gc -q --prune=now; git fsck --strict --full;"
                                 " git repack -adfq; git fsck --strict --full")));
    disk.remount();
    ASSERT_TRUE(worked(git(work, "git fsck --strict --full; git checkout -q HEAD~150;"
                                 " git checkout -q main")));
    EXPECT_EQ(git(work, "git status --porcelain").output, "");
    EXPECT_EQ(git(work, "git log --oneline | wc -l").output, "301\n");
}

TEST_F(GitTest, ClonesInsideTheDiskShareTheirObjects)
{
    MountedFolder disk;
    ASSERT_TRUE(worked(git(disk.plain(), "git init -q one; cd one; echo text > file; git add -A;"
                                         " git commit -q -m first; cd ..;"
                                         " git clone -q one two; cd two; git fsck --strict;"
                                         " echo more >> file; git commit -qam second;"
                                         " git push -q origin HEAD:refs/heads/other")));
    disk.remount();
    ASSERT_TRUE(worked(git(disk / "one", "git merge -q other; git fsck --strict")));
    EXPECT_EQ(readFile(disk / "one/file"), "text\nmore\n");
}

TEST_F(GitTest, ACheckoutGivesTheSameTreeAsOnAnOrdinaryDisk)
{
    MountedFolder disk;
    const std::string source = _temp.makeFolder("source");
    ASSERT_TRUE(worked(git(source, "git init -q .; mkdir -p a/b/c; i=0;"
                                   " while [ $i -lt 200 ]; do i=$((i+1));"
                                   " seq 1 $((i * 37)) > a/b/f$i; done;"
                                   " ln -s b/f1 a/link; printf x > a/b/c/one; chmod +x a/b/c/one;"
                                   " git add -A; git commit -q -m all")));
    ASSERT_TRUE(worked(git(disk.plain(), "git clone -q '" + source + "' copy")));
    disk.remount();
    ASSERT_TRUE(worked(git(disk / "copy", "git fsck --strict; git diff --exit-code HEAD")));
    EXPECT_EQ(differences(treeOf(source + "/a"), treeOf(disk / "copy/a")), "");
}

} // namespace
} // namespace nimbrel::test
