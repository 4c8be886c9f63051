#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

constexpr off_t gibibyte = off_t{1} << 30;
constexpr off_t mebibyte = off_t{1} << 20;

// The bytes that everything below `folder` takes on the machine's disk.
off_t stored(const std::string &folder)
{
    off_t sum = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
        sum += statusOf(entry.path()).st_blocks * 512;
    return sum;
}

class SparseTest : public testing::TestWithParam<long>
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>(MountedFolderOptions{.blockSize = GetParam()});
    }

    [[nodiscard]] OpenFile make() const { return OpenFile(*_disk / "file", O_RDWR | O_CREAT); }

    // The file holds `expected`, now and after a new mount.
    void expectContent(const std::string &expected) const
    {
        EXPECT_TRUE(readFile(*_disk / "file") == expected);
        _disk->remount();
        EXPECT_TRUE(readFile(*_disk / "file") == expected) << "after a new mount";
    }

    std::unique_ptr<MountedFolder> _disk;
};

TEST_P(SparseTest, AWriteBehindTheEndLeavesZerosInTheGap)
{
    const auto block = static_cast<std::size_t>(GetParam());
    const std::string head = noise(block + 100, 1);
    const std::size_t gaps[] = {1, 15, 16, block - 101, block, 3 * block + 5};
    std::string expected = head;
    {
        const OpenFile file = make();
        file.writeAt(head, 0);
        for (const std::size_t gap : gaps) {
            expected += std::string(gap, '\0') + "tail";
            file.writeAt("tail", static_cast<off_t>(expected.size() - 4));
            EXPECT_TRUE(file.all() == expected) << gap;
        }
    }
    expectContent(expected);
}

TEST_P(SparseTest, TruncationUpReadsZeros)
{
    const auto block = static_cast<std::size_t>(GetParam());
    std::string expected = noise(block / 2, 2);
    {
        const OpenFile file = make();
        file.writeAt(expected, 0);
        for (const std::size_t size : {block / 2 + 1, block - 1, block, block + 1, 2 * block + 7,
                                       5 * block, 5 * block + 16}) {
            file.truncate(static_cast<off_t>(size));
            expected.resize(size, '\0');
            EXPECT_TRUE(file.all() == expected) << size;
        }
    }
    expectContent(expected);
}

TEST_P(SparseTest, TruncationDownAndUpBringsNothingBack)
{
    const auto block = static_cast<std::size_t>(GetParam());
    std::string expected = noise(4 * block, 3);
    {
        const OpenFile file = make();
        file.writeAt(expected, 0);
        for (const std::size_t size : {4 * block - 1, 3 * block + 1, 3 * block,
                                       2 * block + block / 2, block, std::size_t{7}}) {
            file.truncate(static_cast<off_t>(size));
            file.truncate(static_cast<off_t>(size + block + 3));
            expected.resize(size);
            expected.resize(size + block + 3, '\0');
            EXPECT_TRUE(file.all() == expected) << size;
        }
        file.truncate(0);
        file.truncate(static_cast<off_t>(block + 1));
        expected.assign(block + 1, '\0');
        EXPECT_TRUE(file.all() == expected);
    }
    expectContent(expected);
}

TEST_P(SparseTest, OneByteAtAGibibyteTakesLessThanAMebibyte)
{
    const off_t before = stored(_disk->encrypted());
    {
        const OpenFile file = make();
        file.writeAt("!", gibibyte);
        file.sync();
    }
    for (const bool again : {false, true}) {
        if (again)
            _disk->remount();
        const OpenFile file(*_disk / "file");
        EXPECT_EQ(file.size(), gibibyte + 1);
        EXPECT_LT(stored(_disk->encrypted()) - before, mebibyte);
        EXPECT_EQ(file.readAt(10, gibibyte), "!");
        EXPECT_TRUE(file.readAt(70'000, gibibyte / 2 - 1) == std::string(70'000, '\0'));
        EXPECT_TRUE(file.readAt(70'000, gibibyte - 69'999) == std::string(69'999, '\0') + "!");
    }
}

TEST_P(SparseTest, TruncationToAGibibyteTakesLessThanAMebibyte)
{
    const off_t before = stored(_disk->encrypted());
    {
        const OpenFile file = make();
        file.writeAt("head", 0);
        file.truncate(gibibyte + 12'345);
        file.sync();
    }
    EXPECT_LT(stored(_disk->encrypted()) - before, mebibyte);
    _disk->remount();
    const OpenFile file(*_disk / "file");
    EXPECT_EQ(file.size(), gibibyte + 12'345);
    EXPECT_EQ(file.readAt(6, 0), std::string("head\0\0", 6));
    EXPECT_TRUE(file.readAt(70'000, gibibyte) == std::string(12'345, '\0'));
}

TEST_P(SparseTest, HolesAndDataAreFound)
{
    {
        const OpenFile file = make();
        file.writeAt(noise(200'000, 4), 0);
        file.writeAt("data", 512 * mebibyte);
        file.sync();
    }
    for (const bool again : {false, true}) {
        if (again)
            _disk->remount();
        const OpenFile file(*_disk / "file");
        const off_t hole = ::lseek(file.id(), 0, SEEK_HOLE);
        EXPECT_GE(hole, 200'000);
        EXPECT_LT(hole, 200'000 + mebibyte);
        const off_t data = ::lseek(file.id(), hole, SEEK_DATA);
        EXPECT_LE(data, 512 * mebibyte);
        EXPECT_GT(data, 511 * mebibyte);
        EXPECT_EQ(::lseek(file.id(), 100'000, SEEK_DATA), 100'000);
        EXPECT_EQ(::lseek(file.id(), 300 * mebibyte, SEEK_HOLE), 300 * mebibyte);
        EXPECT_EQ(::lseek(file.id(), 512 * mebibyte + 1, SEEK_HOLE), 512 * mebibyte + 4);
        EXPECT_EQ(errnoOf([&] { return ::lseek(file.id(), 512 * mebibyte + 4, SEEK_DATA); }),
                  ENXIO);
        EXPECT_EQ(errnoOf([&] { return ::lseek(file.id(), 512 * mebibyte + 4, SEEK_HOLE); }),
                  ENXIO);
        EXPECT_TRUE(file.readAt(65'536, hole) == std::string(65'536, '\0'));
    }
}

TEST_P(SparseTest, CopyingKeepsTheHoles)
{
    {
        const OpenFile file = make();
        file.writeAt("start", 0);
        file.writeAt("end", 256 * mebibyte);
        file.sync();
    }
    const off_t before = stored(_disk->encrypted());
    ASSERT_EQ(run({"cp", "--sparse=auto", *_disk / "file", *_disk / "copy"}).status, 0);
    EXPECT_LT(stored(_disk->encrypted()) - before, 2 * mebibyte);
    _disk->remount();
    const OpenFile copy(*_disk / "copy");
    EXPECT_EQ(copy.size(), 256 * mebibyte + 3);
    EXPECT_EQ(copy.readAt(5, 0), "start");
    EXPECT_EQ(copy.readAt(5, 256 * mebibyte), "end");
}

INSTANTIATE_TEST_SUITE_P(Blocks, SparseTest, testing::Values(1024L, 4096L, 65536L),
                         [](const auto &each) { return std::to_string(each.param); });

} // namespace
} // namespace nimbrel::test
