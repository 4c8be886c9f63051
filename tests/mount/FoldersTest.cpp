#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

class FoldersTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }

    static void makeFiles(const std::string &folder, const std::string &stem, int count)
    {
        for (int i = 0; i < count; ++i)
            OpenFile(folder + "/" + stem + std::to_string(i), O_WRONLY | O_CREAT);
    }

    static void expectNames(const std::string &folder, const std::string &stem, int count)
    {
        std::set<std::string> expected;
        for (int i = 0; i < count; ++i)
            expected.insert(stem + std::to_string(i));
        const std::vector<std::string> seen = namesIn(folder);
        EXPECT_EQ(seen.size(), expected.size());
        EXPECT_TRUE(std::set<std::string>(seen.begin(), seen.end()) == expected);
    }
};

TEST_F(FoldersTest, TenThousandEntriesAreListedOnceEach)
{
    MountedFolder disk;
    makeFiles(disk.plain(), "entry ", 10'000);
    expectNames(disk.plain(), "entry ", 10'000);
    disk.remount();
    expectNames(disk.plain(), "entry ", 10'000);
    const RunResult listed = shell("ls -l | wc -l", {.folder = disk.plain()});
    EXPECT_EQ(listed.output, "10001\n") << listed.error;
}

TEST_F(FoldersTest, EntriesOfTheListingAreThoseOfTheDisk)
{
    MountedFolder disk;
    makeFiles(disk.plain(), "f", 50);
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    ASSERT_EQ(::symlink("f1", (disk / "link").c_str()), 0);
    for (const bool again : {false, true}) {
        if (again)
            disk.remount();
        const RunResult found = shell("find . -mindepth 1 -printf '%i %y %p\\n' | sort;"
                                      " ls -iA1 | wc -l",
                                      {.folder = disk.plain()});
        std::string expected;
        std::vector<std::string> lines;
        for (const std::string &name : namesIn(disk.plain())) {
            const struct stat status = statusOf(disk / name);
            const char kind = S_ISDIR(status.st_mode) ? 'd' : (S_ISLNK(status.st_mode) ? 'l' : 'f');
            lines.push_back(std::to_string(status.st_ino) + " " + kind + " ./" + name);
        }
        const std::string sorted = shell("sort", {.input =
                                                      [&] {
                                                          for (const std::string &line : lines)
                                                              expected += line + "\n";
                                                          return expected;
                                                      }()})
                                       .output;
        EXPECT_EQ(found.output, sorted + "52\n");
    }
}

TEST_F(FoldersTest, AFolderInUseIsNotRemoved)
{
    const MountedFolder disk;
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    writeFile(disk / "folder/file", "text");
    EXPECT_EQ(errnoOf([&] { return ::rmdir((disk / "folder").c_str()); }), ENOTEMPTY);
    EXPECT_EQ(errnoOf([&] { return ::unlink((disk / "folder").c_str()); }), EISDIR);
    EXPECT_EQ(errnoOf([&] { return ::rmdir((disk / "folder/file").c_str()); }), ENOTDIR);
    EXPECT_EQ(readFile(disk / "folder/file"), "text");
    ASSERT_EQ(::unlink((disk / "folder/file").c_str()), 0);
    EXPECT_EQ(::rmdir((disk / "folder").c_str()), 0);
    EXPECT_FALSE(exists(disk / "folder"));
}

TEST_F(FoldersTest, OpenFilesFollowTheirRenamedFolder)
{
    MountedFolder disk;
    {
        ASSERT_EQ(::mkdir((disk / "old").c_str(), 0755), 0);
        ASSERT_EQ(::mkdir((disk / "old/inner").c_str(), 0755), 0);
        const OpenFile file(disk / "old/inner/file", O_RDWR | O_CREAT);
        file.writeAt("before", 0);
        ASSERT_EQ(::rename((disk / "old").c_str(), (disk / "new").c_str()), 0);
        file.writeAt(" and after", 6);
        ASSERT_EQ(::fchmod(file.id(), 0600), 0);
        file.truncate(12);
        file.sync();
        EXPECT_EQ(file.all(), "before and a");
        EXPECT_EQ(readFile(disk / "new/inner/file"), "before and a");
        EXPECT_EQ(statusOf(disk / "new/inner/file").st_mode & 07777U, 0600U);
        EXPECT_FALSE(exists(disk / "old"));
        // A folder of the old name is another one.
        ASSERT_EQ(::mkdir((disk / "old").c_str(), 0755), 0);
        EXPECT_EQ(namesIn(disk / "old"), std::vector<std::string>{});
    }
    disk.remount();
    EXPECT_EQ(readFile(disk / "new/inner/file"), "before and a");
}

TEST_F(FoldersTest, AProcessWorksOnInARenamedFolder)
{
    const MountedFolder disk;
    const RunResult result = shell("mkdir -p a/b && cd a/b && echo 1 > f && mv ../../a ../../c"
                                   " && echo 2 >> f && cat f && mkdir g && ls && cd -P .. && ls",
                                   {.folder = disk.plain()});
    EXPECT_EQ(result.output, "1\n2\nf\ng\nb\n") << result.error;
}

TEST_F(FoldersTest, RenamingKeepsToTheRules)
{
    const MountedFolder disk;
    ASSERT_EQ(::mkdir((disk / "one").c_str(), 0755), 0);
    ASSERT_EQ(::mkdir((disk / "two").c_str(), 0755), 0);
    writeFile(disk / "two/file", "text");
    writeFile(disk / "file", "");
    const auto error = [&](const std::string &from, const std::string &to) {
        return errnoOf([&] { return ::rename((disk / from).c_str(), (disk / to).c_str()); });
    };
    EXPECT_EQ(error("one", "two"), ENOTEMPTY);
    EXPECT_EQ(error("one", "file"), ENOTDIR);
    EXPECT_EQ(error("file", "one"), EISDIR);
    EXPECT_EQ(error("two", "two/below"), EINVAL);
    EXPECT_EQ(error("nothing", "new"), ENOENT);
    EXPECT_EQ(error("two", "one"), 0); // an empty folder gives way
    EXPECT_EQ(readFile(disk / "one/file"), "text");
}

TEST_F(FoldersTest, ModesAndTimesOfAFolderAreItsOwn)
{
    MountedFolder disk;
    ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
    ASSERT_EQ(::chmod((disk / "folder").c_str(), 01750), 0);
    const timespec times[2] = {{1'000'000'001, 2}, {1'000'000'003, 4}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (disk / "folder").c_str(), times, 0), 0);
    disk.remount();
    const struct stat status = statusOf(disk / "folder");
    EXPECT_EQ(status.st_mode & 07777U, 01750U);
    EXPECT_EQ(status.st_mtim.tv_sec, 1'000'000'003);
    EXPECT_EQ(status.st_mtim.tv_nsec, 4);
}

} // namespace
} // namespace nimbrel::test
