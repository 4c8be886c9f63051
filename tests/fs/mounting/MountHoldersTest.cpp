#include "fs/MountHolders.h"

#include "OwnMounts.h"
#include "RawDisk.h"
#include "fs/MountTable.h"
#include "support/Files.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

std::string namesAndPaths(const std::vector<MountHolder> &holders)
{
    std::string text;
    for (const MountHolder &holder : holders)
        text += holder.name + ":" + holder.path + ";";
    return text;
}

TEST(NBMountHoldersTest, NobodyIsDescribedAsNothing)
{
    EXPECT_EQ(describeHolders({}), "");
}

TEST(NBMountHoldersTest, UpToThreeAreNamed)
{
    const MountHolder vim{1234, "vim", "/home/ann/Safe/a.txt"};
    const MountHolder shell{7, "bash", ""};
    const MountHolder disk{0, "", "/home/ann/Safe/usb"};
    EXPECT_EQ(describeHolders({vim}), "vim (1234) has /home/ann/Safe/a.txt open");
    EXPECT_EQ(describeHolders({vim}, {.hasOpen = "{path}: {who}"}),
              "/home/ann/Safe/a.txt: vim (1234)");
    EXPECT_EQ(describeHolders({vim, shell, disk}),
              "vim (1234) has /home/ann/Safe/a.txt open, bash (7) uses it, a disk is mounted at "
              "/home/ann/Safe/usb");
}

TEST(NBMountHoldersTest, TheOthersAreCounted)
{
    const MountHolder shell{7, "bash", ""};
    EXPECT_EQ(describeHolders({5, shell}),
              "bash (7) uses it, bash (7) uses it, bash (7) uses it, and 2 more");
}

TEST(NBMountHoldersTest, WithoutADiskNobodyHoldsIt)
{
    const TempFolder temp;
    const UniqueFd held(::open(temp.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_TRUE(mountHolders(temp.path()).empty());
}

TEST(NBMountHoldersTest, AHangingDiskDoesNotHangTheQuestion)
{
    NIMBREL_NEED_RAW_DISK();
    const TempFolder temp;
    const RawDisk disk(temp.path());
    EXPECT_TRUE(mountHolders(temp.path()).empty());
    const UniqueFd held = disk.hold();
    const auto holders = mountHolders(temp.path());
    ASSERT_EQ(holders.size(), 1U);
    EXPECT_EQ(holders[0].process, ::getpid());
    EXPECT_EQ(holders[0].path, temp.path());
}

// A memory disk of this process's own; what holds it is found by the real /proc.
class NBMountHoldersDiskTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_OWN_MOUNTS();
        mountMemory(_point);
        _mounted = true;
    }
    void TearDown() override
    {
        if (_mounted)
            unmountAll(_point);
    }
    // Starts a program and waits until it holds the disk.
    std::vector<MountHolder> holdersWith(const std::vector<std::string> &command,
                                         const std::string &folder = "/")
    {
        _program.emplace(command, RunOptions{.folder = folder});
        std::vector<MountHolder> holders;
        EXPECT_TRUE(eventually([&] {
            holders = mountHolders(_point);
            return !holders.empty() && holders[0].name == "sleep";
        })) << namesAndPaths(holders)
            << _program->log();
        return holders;
    }

    TempFolder _temp;
    std::string _point = _temp.makeFolder("disk");
    bool _mounted = false;
    std::optional<RunningProcess> _program;
};

TEST_F(NBMountHoldersDiskTest, AnOpenFileIsFound)
{
    const std::string file = _point + "/a b.txt";
    writeFile(file, "x");
    EXPECT_TRUE(mountHolders(_point).empty());
    const auto holders = holdersWith({"sh", "-c", "exec sleep 600 <'" + file + "'"});
    ASSERT_EQ(holders.size(), 1U);
    EXPECT_EQ(holders[0].process, _program->id());
    EXPECT_EQ(holders[0].path, file);
}

TEST_F(NBMountHoldersDiskTest, ARemovedFileStillCounts)
{
    const std::string file = _point + "/gone.txt";
    writeFile(file, "x");
    const UniqueFd held(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    std::filesystem::remove(file);
    EXPECT_EQ(mountHolders(_point).at(0).path, file + " (deleted)");
}

TEST_F(NBMountHoldersDiskTest, AWorkingFolderIsFound)
{
    std::filesystem::create_directory(_point + "/in");
    const auto holders = holdersWith({"sleep", "600"}, _point + "/in");
    ASSERT_EQ(holders.size(), 1U);
    EXPECT_EQ(holders[0].path, _point + "/in");
}

TEST_F(NBMountHoldersDiskTest, AFolderUnderTheDiskIsNoHold)
{
    const RunningProcess below({"sleep", "600"}, RunOptions{.folder = _point});
    ASSERT_TRUE(eventually([&] { return !mountHolders(_point).empty(); }));
    mountMemory(_point);
    // Its link reads like a folder of the upper disk, and isn't one.
    EXPECT_EQ(namesAndPaths(mountHolders(_point)), "");
}

TEST_F(NBMountHoldersDiskTest, ARunningProgramFromTheDiskIsFound)
{
    std::filesystem::copy_file("/bin/sleep", _point + "/sleep");
    ::chmod((_point + "/sleep").c_str(), 0755);
    const auto holders = holdersWith({_point + "/sleep", "600"});
    ASSERT_EQ(holders.size(), 1U);
    EXPECT_EQ(holders[0].path, _point + "/sleep");
}

TEST_F(NBMountHoldersDiskTest, ADiskOnItIsFound)
{
    const std::string inner = _point + "/inner";
    std::filesystem::create_directory(inner);
    mountMemory(inner);
    const auto holders = mountHolders(_point);
    ASSERT_EQ(holders.size(), 1U);
    EXPECT_EQ(holders[0].process, 0);
    EXPECT_EQ(holders[0].path, inner);
    unmountAll(inner);
}

TEST_F(NBMountHoldersDiskTest, AnotherDisksFilesDoNotCount)
{
    const std::string other = _temp.makeFolder("disk2");
    const RunningProcess program({"sleep", "600"}, RunOptions{.folder = other});
    const UniqueFd held(::open(other.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_EQ(namesAndPaths(mountHolders(_point)), "");
}

TEST_F(NBMountHoldersDiskTest, OneEntryAProcess)
{
    const UniqueFd first(::open(_point.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const UniqueFd second(::open(_point.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_EQ(mountHolders(_point).size(), 1U);
}

TEST_F(NBMountHoldersDiskTest, AUserWhoMayNotLookIntoOthersSeesHimself)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    // As the program is: without rights, and not to be looked into itself.
    const std::string answer = asOrdinaryUser([&]() -> std::string {
        ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
        if (::chdir(_point.c_str()) != 0)
            return "no way in";
        return std::to_string(mountHolders(_point).size());
    });
    EXPECT_EQ(answer, "1");
}

} // namespace
} // namespace nimbrel::test
