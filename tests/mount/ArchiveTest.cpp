// Whole trees brought onto the disk by the tools that people move them with.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/Programs.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

// A time of its own for each item, with all nine digits behind the point.
void setTime(const std::string &path, long number)
{
    const timespec time = {.tv_sec = 1'000'000'000 + number * 86'399,
                           .tv_nsec = (number * 123'456'789L + 1) % 1'000'000'000L};
    const timespec times[2] = {time, time};
    must(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), path);
}

class ArchiveTest : public testing::Test
{
protected:
    static constexpr int folders = 42;
    static constexpr int filesInEach = 100;

    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _source = _temp.makeFolder("source");
        for (int i = 0; i < folders; ++i)
            makeFolder(i);
        // Inner folders first: what is made in a folder changes the folder's time.
        for (int i = folders; i-- > 0;)
            setTime(folderName(i), i);
        _expected = treeOf(_source, TreeDetail::All);
        ASSERT_GE(_expected.size(), 4000U);
    }

    [[nodiscard]] std::string folderName(int number) const
    {
        const std::string outer = _source + "/folder " + std::to_string(number - number % 6);
        return number % 6 == 0 ? outer : outer + "/inner " + std::to_string(number);
    }

    void makeFolder(int number) const
    {
        const std::string folder = folderName(number);
        must(::mkdir(folder.c_str(), 0755), folder);
        for (int i = 0; i < filesInEach; ++i)
            makeFile(folder, number * filesInEach + i);
        must(::chmod(folder.c_str(), number % 5 == 1 ? 0700 : 0755), folder);
    }

    static void makeFile(const std::string &folder, int number)
    {
        const std::string path = folder + "/file " + std::to_string(number);
        const auto size = static_cast<std::size_t>(number % 23 == 0 ? number * 7 : number % 600);
        writeFile(path, noise(size, static_cast<std::uint64_t>(number)));
        must(::chmod(path.c_str(), number % 3 == 0 ? 0640 : (number % 7 == 0 ? 0755 : 0444)), path);
        setTime(path, number);
        if (number % 50 == 7)
            must(::link(path.c_str(), (path + " again").c_str()), path);
        if (number % 50 != 9)
            return;
        const std::string link = path + " link";
        must(::symlink(("file " + std::to_string(number)).c_str(), link.c_str()), link);
        setTime(link, number + 1);
    }

    void expectSameIn(MountedFolder &disk) const
    {
        EXPECT_EQ(differences(_expected, treeOf(disk / "copy", TreeDetail::All)), "");
        disk.remount();
        EXPECT_EQ(differences(_expected, treeOf(disk / "copy", TreeDetail::All)), "");
    }

    TempFolder _temp;
    std::string _source;
    Tree _expected;
};

TEST_F(ArchiveTest, TarBringsModesLinksAndTimesToTheNanosecond)
{
    NIMBREL_NEED_PROGRAM("tar");
    MountedFolder disk;
    const std::string archive = _temp / "source.tar";
    ASSERT_TRUE(worked(run({"tar", "--format=posix", "-cf", archive, "-C", _source, "."})));
    ASSERT_EQ(::mkdir((disk / "copy").c_str(), 0755), 0);
    ASSERT_TRUE(worked(run({"tar", "-xpf", archive, "-C", disk / "copy"})));
    expectSameIn(disk);
    ASSERT_TRUE(worked(run({"tar", "--compare", "-f", archive, "-C", disk / "copy"})));
}

TEST_F(ArchiveTest, ATarOfTheDiskUnpacksElsewhereToTheSame)
{
    NIMBREL_NEED_PROGRAM("tar");
    MountedFolder disk;
    ASSERT_TRUE(worked(run({"cp", "-a", _source, disk / "copy"})));
    disk.remount();
    const std::string archive = _temp / "disk.tar";
    const std::string back = _temp.makeFolder("back");
    ASSERT_TRUE(worked(run({"tar", "--format=posix", "-cf", archive, "-C", disk / "copy", "."})));
    ASSERT_TRUE(worked(run({"tar", "-xpf", archive, "-C", back})));
    EXPECT_EQ(differences(_expected, treeOf(back, TreeDetail::All)), "");
}

TEST_F(ArchiveTest, RsyncCopiesAllAndFindsNothingMoreToDo)
{
    NIMBREL_NEED_PROGRAM("rsync");
    MountedFolder disk;
    const std::vector<std::string> again{"rsync", "-aH",      "--checksum",  "--itemize-changes",
                                         "-n",    "--delete", _source + "/", disk / "copy/"};
    ASSERT_TRUE(worked(run({"rsync", "-aH", "--checksum", _source + "/", disk / "copy/"})));
    EXPECT_EQ(run(again).output, "");
    expectSameIn(disk);
    EXPECT_EQ(run(again).output, "");
}

TEST_F(ArchiveTest, RsyncBringsChangesOverInPlaceToo)
{
    NIMBREL_NEED_PROGRAM("rsync");
    MountedFolder disk;
    ASSERT_TRUE(worked(run({"rsync", "-aH", _source + "/", disk / "copy/"})));
    const std::string changed = folderName(0) + "/file 23";
    ASSERT_EQ(::chmod(changed.c_str(), 0644), 0);
    writeFile(changed, noise(100'000, 1));
    ASSERT_EQ(::unlink((folderName(1) + "/file 101").c_str()), 0);
    setTime(folderName(1), folders); // it sees times that differ by a second at least
    ASSERT_TRUE(worked(run({"rsync", "-aH", "--checksum", "--inplace", "--no-whole-file",
                            "--delete", _source + "/", disk / "copy/"})));
    disk.remount();
    EXPECT_EQ(differences(treeOf(_source, TreeDetail::All), treeOf(disk / "copy", TreeDetail::All)),
              "");
}

TEST_F(ArchiveTest, CopyingKeepsAll)
{
    MountedFolder disk;
    ASSERT_TRUE(worked(run({"cp", "-a", _source, disk / "copy"})));
    expectSameIn(disk);
}

TEST_F(ArchiveTest, CopyingWithinTheDiskKeepsAll)
{
    MountedFolder disk;
    ASSERT_TRUE(worked(run({"cp", "-a", _source, disk / "first"})));
    ASSERT_TRUE(worked(run({"cp", "-a", disk / "first", disk / "copy"})));
    ASSERT_TRUE(worked(run({"rm", "-rf", disk / "first"})));
    expectSameIn(disk);
    EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{"copy"});
}

TEST_F(ArchiveTest, RemovingATreeLeavesNothingBehind)
{
    MountedFolder disk;
    const std::vector<std::string> before = namesIn(disk.encrypted());
    ASSERT_TRUE(worked(run({"cp", "-a", _source, disk / "copy"})));
    ASSERT_TRUE(worked(run({"rm", "-r", "-f", disk / "copy"})));
    EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{});
    EXPECT_EQ(namesIn(disk.encrypted()), before);
}

} // namespace
} // namespace nimbrel::test
