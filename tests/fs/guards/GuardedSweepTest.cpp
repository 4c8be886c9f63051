// Every offset and size of small files, against a file in memory.
#include "fs/guards/GuardedFolder.h"
#include "support/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr std::int64_t blockSize = 16;
constexpr std::int64_t largest = 50;  // bytes of the file before
constexpr std::int64_t farthest = 70; // offsets and sizes

class GuardedSweepTest : public testing::TestWithParam<bool>
{
protected:
    // For each file size, a file of that size that `prepare` restores.
    template <class Check>
    void forEachFileSize(Check check)
    {
        for (std::int64_t size = 0; size <= largest; ++size) {
            text = noise(static_cast<std::size_t>(size), 7);
            prepare();
            stored.resize(text.size());
            ASSERT_EQ(::pread(file.descriptor.get(), stored.data(), stored.size(), 0), size);
            check(size);
            if (HasFailure())
                return;
        }
    }
    void prepare()
    {
        model = {};
        model.write(text, 0);
        ASSERT_TRUE(folder.content().setSize(file, 0));
        ASSERT_TRUE(folder.content().write(file, bytesOf(text), 0));
    }
    void restore()
    {
        model = {};
        model.write(text, 0);
        const int descriptor = file.descriptor.get();
        ASSERT_EQ(::ftruncate(descriptor, 0), 0);
        ASSERT_EQ(::pwrite(descriptor, stored.data(), stored.size(), 0),
                  static_cast<ssize_t>(stored.size()));
    }
    [[nodiscard]] std::string judge() { return difference(model.text(), folder.read(file)); }

    GuardedFolder folder{{.blockSize = blockSize, .allowHoles = GetParam()}};
    NBFileHandle file = memoryFile();
    PlainModel model;
    std::string text;
    std::string stored;
};

} // namespace

TEST_P(GuardedSweepTest, Reads)
{
    forEachFileSize([&](std::int64_t fileSize) {
        for (std::int64_t offset = 0; offset <= farthest; ++offset)
            for (std::size_t size = 0; size <= static_cast<std::size_t>(farthest); ++size) {
                std::string got(size, '?');
                const NBErrnoOr<std::size_t> count =
                    folder.content().read(file, spanOf(got), offset);
                ASSERT_TRUE(count);
                got.resize(*count);
                const std::string wanted =
                    offset >= fileSize ? "" : text.substr(static_cast<std::size_t>(offset), size);
                ASSERT_EQ(got, wanted) << size << " bytes at " << offset << " of " << fileSize;
            }
    });
}

TEST_P(GuardedSweepTest, Writes)
{
    forEachFileSize([&](std::int64_t fileSize) {
        for (std::int64_t offset = 0; offset <= farthest; ++offset)
            for (const std::size_t size : {1U, 2U, 15U, 16U, 17U, 31U, 32U, 40U}) {
                restore();
                const std::string data = noise(size, 8);
                const NBErrnoOr<std::size_t> put =
                    folder.content().write(file, bytesOf(data), offset);
                ASSERT_TRUE(put && *put == size);
                model.write(data, offset);
                ASSERT_EQ(judge(), "") << size << " bytes at " << offset << " of " << fileSize;
            }
    });
}

TEST_P(GuardedSweepTest, Sizes)
{
    forEachFileSize([&](std::int64_t fileSize) {
        for (std::int64_t size = 0; size <= farthest; ++size) {
            restore();
            ASSERT_TRUE(folder.content().setSize(file, size));
            model.setSize(size);
            ASSERT_EQ(judge(), "") << fileSize << " to " << size;
        }
    });
}

TEST_P(GuardedSweepTest, ClearedRanges)
{
    forEachFileSize([&](std::int64_t fileSize) {
        for (std::int64_t offset = 0; offset <= farthest; offset += 3)
            for (const std::int64_t length : {1, 15, 16, 17, 32, 48, 60})
                for (const int mode : {FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE,
                                       FALLOC_FL_ZERO_RANGE | FALLOC_FL_KEEP_SIZE,
                                       FALLOC_FL_ZERO_RANGE, FALLOC_FL_KEEP_SIZE, 0}) {
                    restore();
                    ASSERT_TRUE(folder.content().allocate(file, mode, offset, length));
                    if ((mode & ~FALLOC_FL_KEEP_SIZE) != 0)
                        model.clear(offset, offset + length);
                    if ((mode & FALLOC_FL_KEEP_SIZE) == 0 && model.size() < offset + length)
                        model.setSize(offset + length);
                    ASSERT_EQ(judge(), "") << "mode " << mode << ", " << length << " bytes at "
                                           << offset << " of " << fileSize;
                }
    });
}

INSTANTIATE_TEST_SUITE_P(Holes, GuardedSweepTest, testing::Bool(), nameOfHoles);

} // namespace nimbrel::test
