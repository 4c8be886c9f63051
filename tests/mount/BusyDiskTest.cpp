// A disk in use is not taken away, and the refusal tells who uses it.
#include "mount/Calls.h"
#include "support/MountInfo.h"
#include "mount/MountedFolder.h"
#include "mount/Nimbrelctl.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/OrdinaryUser.h"
#include "support/Files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

constexpr int mountPointTrouble = 12;

class BusyDiskTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
    }

    // What the tool says when that program is at work on the disk. The script starts `sleep` as
    // its last act, so that its name tells that all is held.
    [[nodiscard]] RunResult unmountDuring(const std::string &script, MountedFolder &disk,
                                          std::optional<uid_t> user = {})
    {
        _holder = std::make_unique<RunningProcess>(
            std::vector<std::string>{"sh", "-c", script + "; exec sleep 1000", disk.plain()},
            RunOptions{.user = user});
        const std::string name = "/proc/" + std::to_string(_holder->id()) + "/comm";
        EXPECT_TRUE(eventually([&] { return readFile(name) == "sleep\n"; })) << _holder->log();
        return Nimbrelctl(_temp, user)({"unmount", disk.plain()});
    }

    void expectARefusalThatNames(const RunResult &result, const std::string &who) const
    {
        EXPECT_EQ(result.status, mountPointTrouble);
        EXPECT_THAT(result.error, testing::HasSubstr(who));
        EXPECT_THAT(result.error, testing::HasSubstr(std::to_string(_holder->id())));
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    }

    void endHolder() { _holder.reset(); }

private:
    TempFolder _temp;
    std::unique_ptr<RunningProcess> _holder;
};

TEST_F(BusyDiskTest, AnOpenFileKeepsTheDiskAndIsNamed)
{
    MountedFolder disk;
    writeFile(disk / "report", "text");
    const RunResult result = unmountDuring("exec 5< \"$0/report\"", disk);
    expectARefusalThatNames(result, "sleep");
    EXPECT_THAT(result.error, testing::HasSubstr(disk / "report"));
    EXPECT_EQ(readFile(disk / "report"), "text");
    endHolder();
    EXPECT_TRUE(eventually([&] { return disk.unmount(); }));
}

TEST_F(BusyDiskTest, AWorkingFolderKeepsTheDiskAndIsNamed)
{
    MountedFolder disk;
    const RunResult result = unmountDuring("cd \"$0\"", disk);
    expectARefusalThatNames(result, "sleep");
    writeFile(disk / "a", "text");
    EXPECT_EQ(readFile(disk / "a"), "text");
    endHolder();
    EXPECT_TRUE(eventually([&] { return disk.unmount(); }));
}

TEST_F(BusyDiskTest, ARemovedOpenFileKeepsTheDiskToo)
{
    MountedFolder disk;
    writeFile(disk / "gone", "text");
    const RunResult result = unmountDuring("exec 5< \"$0/gone\"; rm \"$0/gone\"", disk);
    expectARefusalThatNames(result, "sleep");
    endHolder();
    EXPECT_TRUE(eventually([&] { return disk.unmount(); }));
}

TEST_F(BusyDiskTest, ItsMappingKeepsTheDiskToo)
{
    MountedFolder disk;
    std::filesystem::copy_file("/bin/sleep", disk / "rest");
    must(::chmod((disk / "rest").c_str(), 0755), "chmod");
    RunningProcess program({disk / "rest", "1000"});
    const std::string name = "/proc/" + std::to_string(program.id()) + "/comm";
    ASSERT_TRUE(eventually([&] { return readFile(name) == "rest\n"; }));
    const TempFolder temp;
    const RunResult result = Nimbrelctl(temp)({"unmount", disk.plain()});
    EXPECT_EQ(result.status, mountPointTrouble);
    EXPECT_THAT(result.error, testing::HasSubstr("rest"));
    program.signal(SIGKILL);
    EXPECT_TRUE(program.wait(std::chrono::seconds(60)).has_value());
    EXPECT_TRUE(eventually([&] { return disk.unmount(); }));
}

TEST_F(BusyDiskTest, AnOrdinaryUserIsToldToo)
{
    NIMBREL_NEED_ACCOUNT();
    MountedFolder disk({.user = nobody()});
    const RunResult result = unmountDuring("exec 5> \"$0/report\"", disk, nobody());
    expectARefusalThatNames(result, "sleep");
    endHolder();
    EXPECT_TRUE(eventually([&] { return disk.unmount(); }));
}

TEST_F(BusyDiskTest, AProgramsEndLetsTheDiskGoWithAllItWrote)
{
    MountedFolder disk;
    const std::string text = noise(1'000'000, 1);
    {
        const OpenFile file(disk / "a", O_CREAT | O_WRONLY);
        file.writeAt(text, 0);
        EXPECT_FALSE(disk.unmount());
        EXPECT_EQ(mountedAt(disk.plain()), "fuse.nimbrel");
    }
    disk.remount();
    EXPECT_TRUE(readFile(disk / "a") == text);
}

// As a file manager or an administrator does it, without the tool.
TEST_F(BusyDiskTest, AnUnmountFromOutsideEndsTheProgramInOrder)
{
    MountedFolder disk;
    const std::string text = noise(100'000, 2);
    writeFile(disk / "a", text);
    const std::string command = ::geteuid() == 0 ? "umount" : "fusermount3 -u";
    {
        const OpenFile file(disk / "a");
        EXPECT_NE(shell(command + " '" + disk.plain() + "'").status, 0);
        EXPECT_TRUE(file.all() == text);
    }
    EXPECT_TRUE(eventually([&] { return shell(command + " '" + disk.plain() + "'").status == 0; }));
    EXPECT_EQ(disk.process().wait(std::chrono::seconds(60)), 0);
    disk.mount();
    EXPECT_TRUE(readFile(disk / "a") == text);
}

} // namespace

} // namespace nimbrel::test
