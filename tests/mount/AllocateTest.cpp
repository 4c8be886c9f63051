// fallocate in all the modes that a disk of this kind can serve.
#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

// tmpfs can't zero a range; every disk of ours can.
#define NIMBREL_NEED_MODE(error)                                                                   \
    if ((error) == EOPNOTSUPP && onOrdinaryDisk())                                                 \
    GTEST_SKIP() << "the ordinary disk under test can't do that"

class AllocateTest : public testing::TestWithParam<long>
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>(MountedFolderOptions{.blockSize = GetParam()});
        _text = noise(block() * 4 + 100, 1);
        _file = std::make_unique<OpenFile>(*_disk / "file", O_RDWR | O_CREAT);
        _file->writeAt(_text, 0);
    }

    [[nodiscard]] static std::size_t block() { return static_cast<std::size_t>(GetParam()); }

    [[nodiscard]] int allocate(int mode, std::size_t offset, std::size_t length) const
    {
        return errnoOf([&] {
            return ::fallocate(_file->id(), mode, static_cast<off_t>(offset),
                               static_cast<off_t>(length));
        });
    }

    void zero(std::size_t offset, std::size_t length)
    {
        if (_text.size() < offset + length)
            _text.resize(offset + length, '\0');
        _text.replace(offset, length, std::string(length, '\0'));
    }

    // The file holds what it should, from a cache, from the store and after a new mount.
    void expectText()
    {
        EXPECT_EQ(_file->size(), static_cast<off_t>(_text.size()));
        EXPECT_TRUE(_file->all() == _text);
        _file->sync();
        ::posix_fadvise(_file->id(), 0, 0, POSIX_FADV_DONTNEED);
        EXPECT_TRUE(_file->all() == _text) << "without the cache";
        _file.reset();
        _disk->remount();
        EXPECT_TRUE(readFile(*_disk / "file") == _text) << "after a new mount";
    }

    std::unique_ptr<MountedFolder> _disk;
    std::string _text;
    std::unique_ptr<OpenFile> _file;
};

TEST_P(AllocateTest, GrowsTheFileWithZeros)
{
    ASSERT_EQ(allocate(0, block(), 6 * block() + 33), 0);
    _text.resize(7 * block() + 33, '\0');
    expectText();
}

TEST_P(AllocateTest, ChangesNothingWithinTheFile)
{
    ASSERT_EQ(allocate(0, 3, block()), 0);
    expectText();
}

TEST_P(AllocateTest, KeepsTheSizeWhereItIsToldTo)
{
    ASSERT_EQ(allocate(FALLOC_FL_KEEP_SIZE, 0, 50 * block()), 0);
    expectText();
}

TEST_P(AllocateTest, GrowsNormallyAfterAKeptSize)
{
    ASSERT_EQ(allocate(FALLOC_FL_KEEP_SIZE, 0, 50 * block()), 0);
    _file->truncate(static_cast<off_t>(20 * block() + 1));
    _text.resize(20 * block() + 1, '\0');
    expectText();
}

TEST_P(AllocateTest, PunchesWholeBlocks)
{
    ASSERT_EQ(allocate(FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, block(), 2 * block()), 0);
    zero(block(), 2 * block());
    expectText();
}

TEST_P(AllocateTest, PunchesAcrossTheEdgesOfBlocks)
{
    ASSERT_EQ(allocate(FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, block() - 7, 2 * block() + 20),
              0);
    zero(block() - 7, 2 * block() + 20);
    expectText();
}

TEST_P(AllocateTest, PunchesWithinABlock)
{
    ASSERT_EQ(allocate(FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 2 * block() + 10, 100), 0);
    zero(2 * block() + 10, 100);
    expectText();
}

TEST_P(AllocateTest, PunchesTheShortLastBlockAndBehind)
{
    ASSERT_EQ(allocate(FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 4 * block() + 50, 9 * block()),
              0);
    zero(4 * block() + 50, 50);
    expectText();
}

TEST_P(AllocateTest, PunchesTheWholeFile)
{
    ASSERT_EQ(allocate(FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, _text.size()), 0);
    zero(0, _text.size());
    expectText();
}

TEST_P(AllocateTest, ZeroesARange)
{
    const int error = allocate(FALLOC_FL_ZERO_RANGE, 5, 2 * block());
    NIMBREL_NEED_MODE(error);
    ASSERT_EQ(error, 0);
    zero(5, 2 * block());
    expectText();
}

TEST_P(AllocateTest, ZeroesOverTheEndAndGrows)
{
    const int error = allocate(FALLOC_FL_ZERO_RANGE, 4 * block() + 10, 2 * block());
    NIMBREL_NEED_MODE(error);
    ASSERT_EQ(error, 0);
    zero(4 * block() + 10, 2 * block());
    expectText();
}

TEST_P(AllocateTest, ZeroesOverTheEndAndKeepsTheSize)
{
    const int error =
        allocate(FALLOC_FL_ZERO_RANGE | FALLOC_FL_KEEP_SIZE, 4 * block() + 10, 2 * block());
    NIMBREL_NEED_MODE(error);
    ASSERT_EQ(error, 0);
    zero(4 * block() + 10, 90);
    expectText();
}

TEST_P(AllocateTest, SaysWhatItCantDo)
{
    NIMBREL_NEED_ENCRYPTED_DISK();
    EXPECT_EQ(allocate(FALLOC_FL_COLLAPSE_RANGE, 0, block()), EOPNOTSUPP);
    EXPECT_EQ(allocate(FALLOC_FL_INSERT_RANGE, 0, block()), EOPNOTSUPP);
    expectText();
}

INSTANTIATE_TEST_SUITE_P(Blocks, AllocateTest, testing::Values(1024L, 4096L, 65536L),
                         [](const auto &each) { return std::to_string(each.param); });

} // namespace
} // namespace nimbrel::test
