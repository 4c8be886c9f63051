// renameat2(2) with its flags.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <stdio.h>

namespace nimbrel::test {

namespace {

class DiskAmongDisksRenamesTest : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        MountedFolderOptions options;
        options.plainNames = GetParam();
        _disk = std::make_unique<MountedFolder>(options);
        writeFile(path("a"), "text of a");
        writeFile(path("b"), "longer text of b");
        must(::mkdir(path("folder").c_str(), 0755), "mkdir");
        writeFile(path("folder/inner"), "inner");
    }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string path(const std::string &name) const { return *_disk / name; }

    [[nodiscard]] int renameError(const std::string &from, const std::string &to,
                                  unsigned flags) const
    {
        return errnoOf([&] {
            return ::renameat2(AT_FDCWD, path(from).c_str(), AT_FDCWD, path(to).c_str(), flags);
        });
    }

private:
    std::unique_ptr<MountedFolder> _disk;
};

TEST_P(DiskAmongDisksRenamesTest, WithoutReplacingLeavesWhatIsThere)
{
    EXPECT_EQ(renameError("a", "b", RENAME_NOREPLACE), EEXIST);
    EXPECT_EQ(renameError("a", "folder", RENAME_NOREPLACE), EEXIST);
    EXPECT_EQ(renameError("a", "c", RENAME_NOREPLACE), 0);
    EXPECT_EQ(renameError("folder", "moved", RENAME_NOREPLACE), 0);
    EXPECT_EQ(renameError("absent", "d", RENAME_NOREPLACE), ENOENT);
    disk().remount();
    EXPECT_EQ(readFile(path("c")), "text of a");
    EXPECT_EQ(readFile(path("b")), "longer text of b");
    EXPECT_EQ(readFile(path("moved/inner")), "inner");
    EXPECT_FALSE(exists(path("a")));
}

TEST_P(DiskAmongDisksRenamesTest, ExchangingSwapsTwoFiles)
{
    const OpenFile file(path("a"));
    const ino_t inode = statusOf(path("a")).st_ino;
    EXPECT_EQ(renameError("a", "b", RENAME_EXCHANGE), 0);
    EXPECT_EQ(readFile(path("b")), "text of a");
    EXPECT_EQ(readFile(path("a")), "longer text of b");
    EXPECT_EQ(statusOf(path("b")).st_ino, inode);
    EXPECT_EQ(file.all(), "text of a");
}

TEST_P(DiskAmongDisksRenamesTest, ExchangingSwapsAFileAndAFolder)
{
    EXPECT_EQ(renameError("a", "folder", RENAME_EXCHANGE), 0);
    EXPECT_EQ(readFile(path("folder")), "text of a");
    EXPECT_EQ(readFile(path("a/inner")), "inner");
    EXPECT_EQ(renameError("a/inner", "folder", RENAME_EXCHANGE), 0);
    disk().remount();
    EXPECT_EQ(readFile(path("folder")), "inner");
    EXPECT_EQ(readFile(path("a/inner")), "text of a");
}

TEST_P(DiskAmongDisksRenamesTest, AfterExchangingOpenFilesAreTheOnesTheyWere)
{
    const OpenFile one(path("a"), O_RDWR);
    const OpenFile other(path("b"), O_RDWR);
    EXPECT_EQ(renameError("a", "b", RENAME_EXCHANGE), 0);
    one.writeAt("TEXT", 0);
    other.truncate(6);
    EXPECT_EQ(readFile(path("b")), "TEXT of a");
    EXPECT_EQ(readFile(path("a")), "longer");
    EXPECT_EQ(statusOf(path("a")).st_size, 6);
}

TEST_P(DiskAmongDisksRenamesTest, ExchangingNeedsBoth)
{
    EXPECT_EQ(renameError("a", "absent", RENAME_EXCHANGE), ENOENT);
    EXPECT_EQ(renameError("absent", "a", RENAME_EXCHANGE), ENOENT);
    EXPECT_EQ(renameError("folder", "folder/inner", RENAME_EXCHANGE), EINVAL);
    EXPECT_EQ(readFile(path("a")), "text of a");
}

TEST_P(DiskAmongDisksRenamesTest, FlagsThatExcludeEachOtherAreRefused)
{
    EXPECT_EQ(renameError("a", "b", RENAME_EXCHANGE | RENAME_NOREPLACE), EINVAL);
    EXPECT_EQ(renameError("a", "b", 1U << 30U), EINVAL);
    EXPECT_EQ(readFile(path("b")), "longer text of b");
}

TEST_P(DiskAmongDisksRenamesTest, PlainOnesKeepToTheRules)
{
    must(::mkdir(path("empty").c_str(), 0755), "mkdir");
    EXPECT_EQ(renameError("a", "folder", 0), EISDIR);
    EXPECT_EQ(renameError("folder", "a", 0), ENOTDIR);
    EXPECT_EQ(renameError("empty", "folder", 0), ENOTEMPTY);
    EXPECT_EQ(renameError("folder", "folder/inside", 0), EINVAL);
    EXPECT_EQ(renameError("folder", "empty", 0), 0);
    EXPECT_EQ(readFile(path("empty/inner")), "inner");
    EXPECT_EQ(renameError("a", "b", 0), 0);
    EXPECT_EQ(readFile(path("b")), "text of a");
    EXPECT_EQ(renameError("b", "b", 0), 0);
    EXPECT_EQ(readFile(path("b")), "text of a");
}

TEST_P(DiskAmongDisksRenamesTest, ShellMoveWorks)
{
    const RunResult result = shell("mv -n a b; mv a folder/ && mv -T folder moved && "
                                   "test \"$(cat b)\" = 'longer text of b' && cat moved/a",
                                   {.folder = disk().plain()});
    EXPECT_EQ(result.output, "text of a") << result.error;
}

INSTANTIATE_TEST_SUITE_P(NamesPlain, DiskAmongDisksRenamesTest, testing::Bool());

} // namespace

} // namespace nimbrel::test
