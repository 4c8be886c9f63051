#include "mount/Child.h"
#include "mount/Mapping.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "support/Files.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

class MmapTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }

    static void put(const Mapping &mapping, const std::string &text, std::size_t offset = 0)
    {
        std::memcpy(mapping.data() + offset, text.data(), text.size());
    }
};

TEST_F(MmapTest, SharedWritesReachTheDisk)
{
    MountedFolder disk;
    const std::string text = noise(300'001, 1);
    {
        const OpenFile file(disk / "file", O_RDWR | O_CREAT);
        file.truncate(static_cast<off_t>(text.size()));
        const Mapping mapping(file.id(), text.size(), PROT_READ | PROT_WRITE, MAP_SHARED);
        put(mapping, text);
        mapping.sync();
        EXPECT_TRUE(file.all() == text);
    }
    EXPECT_TRUE(readFile(disk / "file") == text);
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == text);
}

TEST_F(MmapTest, SharedWritesReachTheDiskWithoutBeingSynced)
{
    MountedFolder disk;
    const std::string text = noise(100'000, 2);
    {
        OpenFile file(disk / "file", O_RDWR | O_CREAT);
        file.truncate(static_cast<off_t>(text.size()));
        const Mapping mapping(file.id(), text.size(), PROT_READ | PROT_WRITE, MAP_SHARED);
        file.close(); // the mapping outlives the descriptor
        put(mapping, text);
    }
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == text);
}

TEST_F(MmapTest, AChangeOfSomePagesLeavesTheOthers)
{
    MountedFolder disk({.blockSize = 1024});
    std::string text = noise(20 * page + 77, 3);
    writeFile(disk / "file", text);
    disk.remount();
    {
        const OpenFile file(disk / "file", O_RDWR);
        const Mapping mapping(file.id(), text.size(), PROT_READ | PROT_WRITE, MAP_SHARED);
        for (const std::size_t at : {std::size_t{5}, 7 * page - 3, 12 * page, 20 * page + 70}) {
            put(mapping, "change", at);
            text.replace(at, 6, "change");
        }
        mapping.sync();
    }
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == text);
}

TEST_F(MmapTest, ReadsSeeWhatOthersWrite)
{
    MountedFolder disk;
    writeFile(disk / "file", std::string(3 * page, 'a'));
    const OpenFile file(disk / "file", O_RDWR);
    const Mapping mapping(file.id(), 3 * page, PROT_READ | PROT_WRITE, MAP_SHARED);
    EXPECT_EQ(mapping.text()[page], 'a');
    file.writeAt("written", static_cast<off_t>(page - 3));
    EXPECT_EQ(mapping.text().substr(page - 3, 7), "written");
    Child other([&] {
        const OpenFile same(disk / "file", O_RDWR);
        const Mapping theirs(same.id(), 3 * page, PROT_READ | PROT_WRITE, MAP_SHARED);
        put(theirs, "theirs", 2 * page);
        return theirs.text().substr(page - 3, 7) == "written" ? 0 : 1;
    });
    EXPECT_EQ(other.wait(), 0);
    EXPECT_EQ(mapping.text().substr(2 * page, 6), "theirs");
    EXPECT_EQ(file.readAt(6, static_cast<off_t>(2 * page)), "theirs");
}

TEST_F(MmapTest, PrivateMappingsChangeNothing)
{
    MountedFolder disk;
    const std::string text = noise(5000, 4);
    writeFile(disk / "file", text);
    {
        const OpenFile file(disk / "file");
        const Mapping mapping(file.id(), text.size(), PROT_READ | PROT_WRITE, MAP_PRIVATE);
        EXPECT_TRUE(mapping.text() == text);
        put(mapping, "mine", 100);
        EXPECT_EQ(mapping.text().substr(100, 4), "mine");
    }
    EXPECT_TRUE(readFile(disk / "file") == text);
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == text);
}

TEST_F(MmapTest, TheLastPageIsZeroBehindTheEndAndStaysOutOfTheFile)
{
    MountedFolder disk;
    const std::string text = noise(page + 10, 5);
    writeFile(disk / "file", text);
    {
        const OpenFile file(disk / "file", O_RDWR);
        const Mapping mapping(file.id(), 2 * page, PROT_READ | PROT_WRITE, MAP_SHARED);
        EXPECT_TRUE(mapping.text().substr(page + 10) == std::string(page - 10, '\0'));
        put(mapping, "lost", page + 20);
        mapping.sync();
        EXPECT_EQ(file.size(), static_cast<off_t>(page + 10));
    }
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == text);
}

TEST_F(MmapTest, ReadingBehindATruncationEndsInASignal)
{
    const MountedFolder disk;
    writeFile(disk / "file", noise(3 * page, 6));
    Child reader([&] {
        struct sigaction action = {};
        action.sa_handler = [](int) { ::_exit(42); };
        ::sigaction(SIGBUS, &action, nullptr);
        const OpenFile file(disk / "file", O_RDWR);
        const Mapping mapping(file.id(), 3 * page, PROT_READ, MAP_SHARED);
        const volatile char *const bytes = mapping.data();
        if (bytes[2 * page] != noise(3 * page, 6)[2 * page])
            return 1;
        file.truncate(static_cast<off_t>(page / 2));
        if (bytes[page / 2] != 0)
            return 2;
        return bytes[2 * page] == 0 ? 3 : 4;
    });
    EXPECT_EQ(reader.wait(), 42);
}

TEST_F(MmapTest, AMappingSeesZerosAfterTruncationDownAndUp)
{
    MountedFolder disk;
    const std::string text = noise(3 * page, 7);
    writeFile(disk / "file", text);
    const std::string expected = text.substr(0, 100) + std::string(3 * page - 100, '\0');
    {
        const OpenFile file(disk / "file", O_RDWR);
        const Mapping mapping(file.id(), 3 * page, PROT_READ | PROT_WRITE, MAP_SHARED);
        EXPECT_TRUE(mapping.text() == text);
        file.truncate(100);
        file.truncate(static_cast<off_t>(3 * page));
        EXPECT_TRUE(mapping.text() == expected);
    }
    disk.remount();
    EXPECT_TRUE(readFile(disk / "file") == expected);
}

TEST_F(MmapTest, ProgramsRunFromTheDisk)
{
    MountedFolder disk;
    ASSERT_EQ(run({"cp", "--preserve=mode", "/bin/sh", disk / "sh"}).status, 0);
    disk.remount();
    const RunResult result = run({disk / "sh", "-c", "echo from the disk"});
    EXPECT_EQ(result.output, "from the disk\n") << result.error;
}

} // namespace
} // namespace nimbrel::test
