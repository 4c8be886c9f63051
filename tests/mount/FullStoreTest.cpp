// "No space left": said by the very call, and nothing that was there or confirmed is lost.
#include "mount/FullStore.h"
#include "mount/Calls.h"
#include "mount/Child.h"
#include "mount/OpenFile.h"
#include "support/Files.h"

#include <algorithm>
#include <string>
#include <sys/statvfs.h>
#include <vector>

namespace nimbrel::test {

namespace {

class FullStoreTest : public FullStore
{
};

constexpr std::size_t mebibyte = std::size_t{1} << 20U;

std::string nameOf(int writer, int number)
{
    return "file" + std::to_string(writer) + "-" + std::to_string(number);
}

std::string contentOf(int writer, int number)
{
    const auto size = 30'000 + 777 * static_cast<std::size_t>(number);
    return noise(size, static_cast<std::uint64_t>(1000 * writer + number));
}

// Writes one file after another until the store is full; how many were confirmed by fsync, or
// -errno when anything else than that went wrong.
int writeFilesUntilFull(const MountedFolder &disk, int writer)
{
    for (int number = 0;; ++number) {
        const std::string path = disk / nameOf(writer, number);
        const UniqueFd file(::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600));
        const int error = file ? writeAll(file.get(), contentOf(writer, number)).error : errno;
        const int confirmed = error != 0 ? error : errnoOf([&] { return ::fsync(file.get()); });
        if (confirmed == ENOSPC)
            return number;
        if (confirmed != 0)
            return -confirmed;
    }
}

TEST_P(FullStoreTest, TheWriteItselfSaysThatNoSpaceIsLeft)
{
    const OpenFile file(disk() / "a", O_CREAT | O_RDWR);
    store().fill();
    const Written written = writeAll(file.id(), noise(mebibyte, 1));
    EXPECT_EQ(written.error, ENOSPC);
    EXPECT_LT(written.size, mebibyte);
    // And so does the next.
    EXPECT_EQ(writeAll(file.id(), noise(mebibyte, 1)).error, ENOSPC);
}

TEST_P(FullStoreTest, WhatTheDiskTookBeforeIsReadBack)
{
    const std::string data = noise(mebibyte, 2);
    const OpenFile file(disk() / "a", O_CREAT | O_RDWR);
    store().fill(mebibyte / 4);
    const Written written = writeAll(file.id(), data);
    ASSERT_EQ(written.error, ENOSPC);
    EXPECT_EQ(static_cast<std::size_t>(file.size()), written.size);
    EXPECT_TRUE(file.all() == data.substr(0, written.size));
}

TEST_P(FullStoreTest, EveryConfirmedFileIsThereAfterAMount)
{
    store().fill(2 * mebibyte);
    const int confirmed = writeFilesUntilFull(disk(), 1);
    ASSERT_GT(confirmed, 10) << "negative: " << std::strerror(-confirmed);
    disk().remount();
    for (int number = 0; number < confirmed; ++number)
        EXPECT_TRUE(readFile(disk() / nameOf(1, number)) == contentOf(1, number)) << number;
}

TEST_P(FullStoreTest, SeveralWritersLoseNothingThatWasConfirmed)
{
    constexpr int writers = 4;
    store().fill(3 * mebibyte);
    std::vector<std::unique_ptr<Child>> children;
    for (int writer = 0; writer < writers; ++writer)
        children.push_back(std::make_unique<Child>([&, writer] {
            const int confirmed = writeFilesUntilFull(disk(), writer);
            return confirmed < 0 ? 250 : confirmed;
        }));
    std::vector<int> confirmed;
    for (const auto &child : children)
        confirmed.push_back(child->wait());
    disk().remount();
    for (int writer = 0; writer < writers; ++writer) {
        const int count = confirmed[static_cast<std::size_t>(writer)];
        ASSERT_LT(count, 200) << "another error than ENOSPC";
        for (int number = 0; number < count; ++number)
            EXPECT_TRUE(readFile(disk() / nameOf(writer, number)) == contentOf(writer, number))
                << writer << " " << number;
    }
}

TEST_P(FullStoreTest, DeletingAndWritingWorkAfterwards)
{
    writeFile(disk() / "large", noise(2 * mebibyte, 3));
    {
        const OpenFile refused(disk() / "refused", O_CREAT | O_WRONLY);
        store().fill();
        ASSERT_EQ(writeAll(refused.id(), noise(mebibyte, 4)).error, ENOSPC);
    }
    EXPECT_EQ(errnoOf([&] { return ::unlink((disk() / "large").c_str()); }), 0);
    const std::string data = noise(mebibyte, 5);
    OpenFile file(disk() / "new", O_CREAT | O_WRONLY);
    file.writeAt(data, 0);
    file.sync();
    file.close();
    disk().remount();
    EXPECT_TRUE(readFile(disk() / "new") == data);
}

TEST_P(FullStoreTest, TheFileThatWasRefusedGrowsAfterwards)
{
    const std::string data = noise(mebibyte, 5);
    {
        OpenFile file(disk() / "a", O_CREAT | O_WRONLY);
        store().fill();
        ASSERT_EQ(writeAll(file.id(), data).error, ENOSPC);
        store().freeAll();
        file.writeAt(data, 0);
        // A disk may tell the old error once more, to a program that doesn't look at its writes.
        const int repeated = errnoOf([&] { return ::fsync(file.id()); });
        EXPECT_TRUE(repeated == 0 || repeated == ENOSPC) << repeated;
        file.sync();
        file.close();
    }
    disk().remount();
    EXPECT_TRUE(readFile(disk() / "a") == data);
}

TEST_P(FullStoreTest, TheDiskTellsThatNothingIsFree)
{
    store().fill();
    struct statvfs space = {};
    must(::statvfs(disk().plain().c_str(), &space), "statvfs");
    EXPECT_EQ(space.f_bavail * space.f_frsize, store().freeBytes());
    EXPECT_GT(space.f_blocks, 0U);
}

TEST_P(FullStoreTest, AFullStoreIsMountedReadAndEmptied)
{
    const std::string data = noise(100'000, 6);
    writeFile(disk() / "a", data);
    store().fill();
    disk().remount();
    EXPECT_TRUE(readFile(disk() / "a") == data);
    EXPECT_EQ(errnoOf([&] { return ::rename((disk() / "a").c_str(), (disk() / "b").c_str()); }), 0);
    EXPECT_TRUE(readFile(disk() / "b") == data);
    EXPECT_EQ(errnoOf([&] { return ::unlink((disk() / "b").c_str()); }), 0);
    EXPECT_FALSE(exists(disk() / "b"));
}

TEST_P(FullStoreTest, OverwritingNeedsNoSpace)
{
    std::string data = noise(5 * 4096 + 100, 7);
    writeFile(disk() / "a", data);
    store().fill();
    {
        const OpenFile file(disk() / "a", O_RDWR);
        for (const auto &[offset, size] : {std::pair{5000, 100}, {4096, 4096}, {20'500, 80}}) {
            const std::string piece = noise(static_cast<std::size_t>(size), 8);
            file.writeAt(piece, offset);
            data.replace(static_cast<std::size_t>(offset), piece.size(), piece);
        }
        file.sync();
    }
    disk().remount();
    EXPECT_TRUE(readFile(disk() / "a") == data);
}

TEST_P(FullStoreTest, ShrinkingNeedsNoSpace)
{
    const std::string data = noise(5 * 4096 + 100, 9);
    writeFile(disk() / "a", data);
    store().fill();
    EXPECT_EQ(errnoOf([&] { return ::truncate((disk() / "a").c_str(), 10'000); }), 0);
    disk().remount();
    EXPECT_TRUE(readFile(disk() / "a") == data.substr(0, 10'000));
}

NIMBREL_ON_EACH_STORE(FullStoreTest);

} // namespace

} // namespace nimbrel::test
