// After the death of the program that serves a disk, its mount point is of use again.
#include "mount/Calls.h"
#include "mount/DaemonFacts.h"
#include "support/MountInfo.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/OrdinaryUser.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

class DeadMountTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
    }
};

// An ordinary user's disk is seen by that user alone.
std::function<int(const std::function<int()> &)> actor(std::optional<uid_t> user)
{
    if (!user)
        return [](const std::function<int()> &work) { return work(); };
    return [user](const std::function<int()> &work) {
        return as({.user = *user, .group = static_cast<gid_t>(*user)}, work);
    };
}

void expectAFreeMountPoint(std::optional<uid_t> user)
{
    MountedFolder disk({.user = user});
    disk.kill();
    EXPECT_TRUE(goesAway(disk));
    EXPECT_EQ(actor(user)([&] { return static_cast<int>(namesIn(disk.plain()).size()); }), 0);
}

void expectThatTheNextMountHelps(std::optional<uid_t> user)
{
    MountedFolder disk({.user = user});
    const auto act = actor(user);
    const std::string path = disk / "a";
    ASSERT_EQ(act([&] { return writeFile(path, "kept"), 0; }), 0);
    killWithHelpers(disk);
    disk.mount();
    EXPECT_EQ(act([&] {
                  const bool up = comesUp(disk);
                  return up && readFile(path) == "kept" ? 0 : 1;
              }),
              0);
    EXPECT_TRUE(disk.unmount());
    EXPECT_FALSE(mountedAt(disk.plain())) << "the dead mount is still below";
}

bool allEnd(const std::vector<pid_t> &processes)
{
    return eventually([&] { return std::none_of(processes.begin(), processes.end(), isAlive); });
}

TEST_F(DeadMountTest, TheMountPointComesBackByItself)
{
    expectAFreeMountPoint({});
}

TEST_F(DeadMountTest, AnOrdinaryUsersMountPointComesBackByItself)
{
    NIMBREL_NEED_ACCOUNT();
    expectAFreeMountPoint(nobody());
}

TEST_F(DeadMountTest, TheMountPointComesBackWhileFilesAreOpen)
{
    MountedFolder disk;
    const OpenFile file(disk / "a", O_CREAT | O_RDWR);
    const OpenFile folder(disk.plain(), O_RDONLY | O_DIRECTORY);
    disk.kill();
    EXPECT_TRUE(goesAway(disk));
    disk.mount();
    EXPECT_TRUE(comesUp(disk));
    writeFile(disk / "b", "new");
    EXPECT_EQ(readFile(disk / "b"), "new");
}

TEST_F(DeadMountTest, TheNextMountDetachesADeadOne)
{
    expectThatTheNextMountHelps({});
}

TEST_F(DeadMountTest, TheNextMountDetachesAnOrdinaryUsersDeadOne)
{
    NIMBREL_NEED_ACCOUNT();
    expectThatTheNextMountHelps(nobody());
}

// What cleans up after the dead must not take the new disk away.
TEST_F(DeadMountTest, ADiskMountedRightAfterADeathStays)
{
    MountedFolder disk;
    writeFile(disk / "a", "kept");
    for (int round = 0; round < 5; ++round) {
        const std::vector<pid_t> helpers = descendants(disk.daemon());
        disk.kill();
        disk.mount();
        ASSERT_TRUE(comesUp(disk)) << round;
        EXPECT_TRUE(allEnd(helpers)) << round;
        ASSERT_EQ(mountedAt(disk.plain()), "fuse.nimbrel") << round;
        EXPECT_EQ(readFile(disk / "a"), "kept") << round;
    }
}

TEST_F(DeadMountTest, NothingRunsOnAfterTheDeath)
{
    MountedFolder disk;
    const std::vector<pid_t> helpers = descendants(disk.daemon());
    disk.kill();
    EXPECT_TRUE(allEnd(helpers));
}

TEST_F(DeadMountTest, NothingRunsOnAfterAnUnmount)
{
    MountedFolder disk;
    const std::vector<pid_t> helpers = descendants(disk.daemon());
    EXPECT_TRUE(disk.unmount());
    EXPECT_TRUE(allEnd(helpers));
}

// The ways in which a terminal, a session's end and a service manager end a program.
TEST_F(DeadMountTest, AGentleSignalTakesTheDiskDownInOrder)
{
    const std::string text = noise(300'000, 1);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        MountedFolder disk;
        writeFile(disk / "a", text);
        disk.process().signal(signal);
        EXPECT_EQ(disk.process().wait(std::chrono::seconds(60)), 0) << signal;
        EXPECT_FALSE(mountedAt(disk.plain())) << signal;
        disk.mount();
        EXPECT_TRUE(readFile(disk / "a") == text) << signal;
    }
}

// A service manager ends with SIGKILL what doesn't go: who insists gets the disk taken away, and
// even then nothing is lost.
TEST_F(DeadMountTest, ASecondSignalTakesABusyDiskDownAndLosesNothing)
{
    MountedFolder disk;
    const std::string text = noise(300'000, 2);
    const OpenFile file(disk / "a", O_CREAT | O_RDWR);
    file.writeAt(text, 0);
    disk.process().signal(SIGTERM);
    const auto says = [&](const std::string &words) {
        return eventually([&] { return disk.process().log().find(words) != std::string::npos; });
    };
    EXPECT_TRUE(says("stays mounted"));
    EXPECT_TRUE(says("(" + std::to_string(::getpid()) + ")")) << disk.process().log();
    EXPECT_EQ(mountedAt(disk.plain()), "fuse.nimbrel");
    EXPECT_TRUE(file.all() == text);
    disk.process().signal(SIGTERM);
    EXPECT_TRUE(disk.process().wait(std::chrono::seconds(60)).has_value());
    EXPECT_TRUE(goesAway(disk));
    disk.mount();
    EXPECT_TRUE(readFile(disk / "a") == text);
}

} // namespace

} // namespace nimbrel::test
