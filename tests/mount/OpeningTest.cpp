// The flags that files are opened with, and many files open at once.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

constexpr std::size_t aligned = 4096;

struct Free
{
    void operator()(char *memory) const { std::free(memory); } // NOLINT: aligned_alloc's own
};

std::unique_ptr<char, Free> alignedMemory(std::size_t size)
{
    return std::unique_ptr<char, Free>(static_cast<char *>(std::aligned_alloc(aligned, size)));
}

class OpeningTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }

    static int errorOfOpening(const std::string &path, int flags)
    {
        return errnoOf(
            [&] { return UniqueFd(::open(path.c_str(), flags | O_CLOEXEC, 0644)).get(); });
    }
};

TEST_F(OpeningTest, DirectlyReadsAndWritesTheSameBytes)
{
    MountedFolder disk;
    const std::string text = noise(16 * aligned, 1);
    {
        const OpenFile cached(disk / "file", O_RDWR | O_CREAT);
        if (onOrdinaryDisk() && errorOfOpening(disk / "file", O_RDWR | O_DIRECT) == EINVAL)
            GTEST_SKIP() << "the ordinary disk under test can't do that";
        const OpenFile file(disk / "file", O_RDWR | O_DIRECT);
        const auto memory = alignedMemory(text.size());
        std::copy(text.begin(), text.end(), memory.get());
        ASSERT_EQ(::pwrite(file.id(), memory.get(), text.size(), 0),
                  static_cast<ssize_t>(text.size()));
        EXPECT_TRUE(cached.all() == text);
        std::fill_n(memory.get(), text.size(), '\0');
        ASSERT_EQ(::pread(file.id(), memory.get(), text.size(), aligned),
                  static_cast<ssize_t>(text.size() - aligned));
        EXPECT_TRUE(std::string(memory.get(), text.size() - aligned) == text.substr(aligned));
    }
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == text);
}

TEST_F(OpeningTest, ExclusivelyMakesNoFileTwice)
{
    const MountedFolder disk;
    EXPECT_EQ(errorOfOpening(disk / "file", O_WRONLY | O_CREAT | O_EXCL), 0);
    EXPECT_EQ(errorOfOpening(disk / "file", O_WRONLY | O_CREAT | O_EXCL), EEXIST);
    ASSERT_EQ(::symlink("nowhere", (disk / "link").c_str()), 0);
    EXPECT_EQ(errorOfOpening(disk / "link", O_WRONLY | O_CREAT | O_EXCL), EEXIST);
    EXPECT_FALSE(exists(disk / "nowhere"));
}

TEST_F(OpeningTest, WithTruncationEmptiesTheFile)
{
    MountedFolder disk;
    writeFile(disk / "file", noise(9000, 1));
    const OpenFile reader(disk / "file");
    EXPECT_EQ(reader.all().size(), 9000U);
    OpenFile(disk / "file", O_WRONLY | O_TRUNC).writeAt("short", 0);
    EXPECT_EQ(reader.all(), "short");
    OpenFile(disk / "file", O_WRONLY | O_CREAT | O_TRUNC);
    EXPECT_EQ(reader.size(), 0);
}

TEST_F(OpeningTest, OnlyForWritingMergesWithWhatIsThere)
{
    MountedFolder disk;
    std::string text = noise(9000, 1);
    writeFile(disk / "file", text);
    OpenFile(disk / "file", O_WRONLY).writeAt("merged", 4093);
    text.replace(4093, 6, "merged");
    EXPECT_TRUE(readFile(disk / "file") == text);
    ASSERT_EQ(::chmod((disk / "file").c_str(), 0200), 0); // may be written, not read
    OpenFile(disk / "file", O_WRONLY).writeAt("again", 7);
    text.replace(7, 5, "again");
    ASSERT_EQ(::chmod((disk / "file").c_str(), 0600), 0);
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == text);
}

TEST_F(OpeningTest, AFileMadeReadOnlyIsWritableForItsMaker)
{
    MountedFolder disk;
    {
        const OpenFile file(disk / "file", O_RDWR | O_CREAT | O_EXCL, 0444);
        file.writeAt(noise(5000, 1), 0);
        file.writeAt("x", 4095);
    }
    EXPECT_EQ(statusOf(disk / "file").st_mode & 0222U, 0U);
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == noise(5000, 1).replace(4095, 1, "x"));
}

TEST_F(OpeningTest, WithoutANameIsOptionalAndLeavesNothing)
{
    const MountedFolder disk;
    const auto before = namesIn(disk.encrypted());
    const int error = errorOfOpening(disk.plain(), O_RDWR | O_TMPFILE);
    if (error == EOPNOTSUPP)
        GTEST_SKIP() << "files without a name are not offered";
    ASSERT_EQ(error, 0);
    const OpenFile file(disk.plain(), O_RDWR | O_TMPFILE);
    file.writeAt(noise(9000, 1), 0);
    EXPECT_TRUE(file.all() == noise(9000, 1));
    EXPECT_EQ(namesIn(disk.encrypted()), before);
    const std::string self = "/proc/self/fd/" + std::to_string(file.id());
    ASSERT_EQ(
        ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, (disk / "named").c_str(), AT_SYMLINK_FOLLOW), 0);
    EXPECT_TRUE(readFile(disk / "named") == noise(9000, 1));
}

TEST_F(OpeningTest, TwoThousandFilesAtOnce)
{
    constexpr std::size_t count = 2000;
    MountedFolder disk; // before our own limit is raised: it has to raise its own
    rlimit limit = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    if (limit.rlim_max < count + 100)
        GTEST_SKIP() << "this machine allows " << limit.rlim_max << " open files only";
    limit.rlim_cur = std::max<rlim_t>(limit.rlim_cur, count + 100);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    {
        std::vector<OpenFile> files;
        for (std::size_t i = 0; i < count; ++i) {
            files.emplace_back(disk / std::to_string(i), O_RDWR | O_CREAT);
            files.back().writeAt("file " + std::to_string(i), 0);
        }
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_EQ(files[i].all(), "file " + std::to_string(i));
    }
    disk.remount();
    EXPECT_EQ(readFile(disk / "1999"), "file 1999");
    EXPECT_EQ(namesIn(disk.plain()).size(), count);
}

} // namespace
} // namespace nimbrel::test
