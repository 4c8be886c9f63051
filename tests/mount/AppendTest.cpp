#include "mount/Child.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/Programs.h"
#include "support/Files.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <unistd.h>

namespace nimbrel::test {
namespace {

class AppendTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }

    static constexpr int count = 2000;

    // One line, of a length that moves it over every place in a block.
    static std::string record(char who, int number)
    {
        return fmt::format("{} {} {}\n", who, number,
                           std::string(static_cast<std::size_t>(number % 411), who));
    }

    static int appendAll(const std::string &path, char who)
    {
        const OpenFile file(path, O_WRONLY | O_APPEND | O_CREAT);
        for (int i = 0; i < count; ++i)
            file.write(record(who, i));
        return 0;
    }

    static void expectAllRecords(const std::string &path)
    {
        std::multiset<std::string> expected;
        for (const char who : {'a', 'b'})
            for (int i = 0; i < count; ++i)
                expected.insert(record(who, i));
        std::istringstream text(readFile(path));
        int strange = 0;
        for (std::string line; std::getline(text, line);) {
            const auto found = expected.find(line + "\n");
            if (found == expected.end())
                ++strange;
            else
                expected.erase(found);
        }
        EXPECT_EQ(strange, 0);
        EXPECT_EQ(expected.size(), 0U) << "records lost";
    }
};

TEST_F(AppendTest, TwoProcessesLoseNoRecordAndTearNone)
{
    for (const long blockSize : {1024L, 65536L}) {
        MountedFolder disk({.blockSize = blockSize});
        const std::string path = disk / "log";
        Child one([&] { return appendAll(path, 'a'); });
        Child two([&] { return appendAll(path, 'b'); });
        ASSERT_EQ(one.wait(), 0);
        ASSERT_EQ(two.wait(), 0);
        expectAllRecords(path);
        disk.remount();
        expectAllRecords(path);
    }
}

TEST_F(AppendTest, GoesToTheEndWhereverThePositionIs)
{
    MountedFolder disk;
    const std::string path = disk / "log";
    writeFile(path, "first ");
    {
        const OpenFile file(path, O_RDWR | O_APPEND);
        ASSERT_EQ(::lseek(file.id(), 2, SEEK_SET), 2);
        file.write("second ");
        EXPECT_EQ(::lseek(file.id(), 0, SEEK_CUR), 13);
        const OpenFile other(path, O_WRONLY);
        other.writeAt("FIRST", 0);
        other.writeAt("third ", 13);
        file.write("fourth");
    }
    disk.remount();
    EXPECT_EQ(readFile(path), "FIRST second third fourth");
}

TEST_F(AppendTest, TheShellsAppendingWorks)
{
    MountedFolder disk;
    const RunResult result = shell("i=0; while [ $i -lt 300 ]; do i=$((i+1)); echo line $i >> log;"
                                   " done",
                                   {.folder = disk.plain()});
    ASSERT_TRUE(worked(result));
    disk.remount();
    std::string expected;
    for (int i = 1; i <= 300; ++i)
        expected += fmt::format("line {}\n", i);
    EXPECT_EQ(readFile(disk / "log"), expected);
}

TEST_F(AppendTest, AShortenedLogGoesOnAtItsNewEnd)
{
    MountedFolder disk;
    const std::string path = disk / "log";
    {
        const OpenFile file(path, O_WRONLY | O_APPEND | O_CREAT);
        file.write(noise(10'000, 1));
        const OpenFile other(path, O_WRONLY);
        other.truncate(5);
        file.write("new end");
    }
    disk.remount();
    EXPECT_EQ(readFile(path), noise(10'000, 1).substr(0, 5) + "new end");
}

} // namespace
} // namespace nimbrel::test
