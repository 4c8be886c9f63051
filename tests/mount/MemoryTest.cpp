// What the program that serves a disk takes from the machine.
#include "mount/DaemonFacts.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>

// Checking builds take many times the memory.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define NIMBREL_CHECKING_BUILD 1
#else
#define NIMBREL_CHECKING_BUILD 0
#endif

namespace nimbrel::test {

namespace {

constexpr std::uint64_t mebibyte = 1024; // KiB

class MemoryTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
        if (NIMBREL_CHECKING_BUILD)
            GTEST_SKIP() << "a checking build takes more memory";
    }
};

std::uint64_t withHelpers(pid_t daemon)
{
    std::uint64_t sum = residentKiB(daemon);
    for (const pid_t helper : descendants(daemon))
        sum += residentKiB(helper);
    return sum;
}

// Works like a busy person: many names, large contents, and all of it removed.
void work(const MountedFolder &disk)
{
    const std::string large = noise(std::size_t{8} << 20U, 1);
    writeFile(disk / "large", large);
    EXPECT_TRUE(readFile(disk / "large") == large);
    std::filesystem::create_directory(disk / "folder");
    for (int i = 0; i < 400; ++i)
        writeFile(disk / ("folder/" + std::to_string(i)), "text");
    EXPECT_EQ(namesIn(disk / "folder").size(), 400U);
    std::filesystem::remove_all(disk / "folder");
    std::filesystem::remove(disk / "large");
}

TEST_F(MemoryTest, AQuietDiskStaysBelowThirtyMebibytes)
{
    const MountedFolder disk;
    (void)namesIn(disk.plain());
    EXPECT_LT(withHelpers(disk.daemon()), 30 * mebibyte);
}

TEST_F(MemoryTest, WorkDoesNotPileUp)
{
    const MountedFolder disk;
    work(disk);
    work(disk);
    const std::uint64_t before = withHelpers(disk.daemon());
    for (int round = 0; round < 4; ++round)
        work(disk);
    EXPECT_LT(withHelpers(disk.daemon()), before + 4 * mebibyte);
}

// Every name that is looked for has an on-disk path, which is kept for up to thirty seconds.
TEST_F(MemoryTest, LookingForManyNamesDoesNotPileUp)
{
    const MountedFolder disk;
    const auto lookFor = [&](int from, int to) {
        for (int i = from; i < to; ++i)
            ASSERT_FALSE(exists(disk / ("a name of usual length " + std::to_string(i))));
    };
    lookFor(0, 10'000);
    const std::uint64_t before = withHelpers(disk.daemon());
    lookFor(10'000, 60'000);
    EXPECT_LT(withHelpers(disk.daemon()), before + 4 * mebibyte);
}

TEST_F(MemoryTest, OpenFilesAreGivenBack)
{
    const MountedFolder disk;
    const auto descriptors = [&] {
        std::size_t count = 0;
        const std::string folder = "/proc/" + std::to_string(disk.daemon()) + "/fd";
        for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(folder))
            ++count;
        return count;
    };
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may look into the program";
    const std::size_t before = descriptors();
    for (int i = 0; i < 300; ++i) {
        const OpenFile file(disk / std::to_string(i % 10), O_CREAT | O_RDWR);
        file.writeAt("text", 5000);
        file.truncate(100);
    }
    (void)namesIn(disk.plain());
    // Closing reaches the program after close(2) has returned.
    EXPECT_TRUE(eventually([&] { return descriptors() <= before; }));
}

} // namespace

} // namespace nimbrel::test
