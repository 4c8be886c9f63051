#include "fs/Unmounting.h"

#include "OwnMounts.h"
#include "RawDisk.h"
#include "fs/Fusermount.h"
#include "fs/MountTable.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

// "0 gone", "16 there": what an unmount says, and whether the disk still stands.
std::string unmounted(const std::string &point)
{
    const int code = unmountDisk(point).code();
    return std::to_string(code) + (mountAt(point) ? " there" : " gone");
}

// What an ordinary user does with a disk of his; run by one.
std::string userStory(const std::string &point)
{
    const RawDisk disk(point);
    UniqueFd held = disk.hold();
    const std::string busy = unmounted(point);
    held.reset();
    return busy + ", " + unmounted(point);
}

class NBUnmountingTest : public testing::Test
{
protected:
    void giveToNobody() const
    {
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(_point.c_str(), nobody, nobody), 0);
        }
    }

    TempFolder _temp;
    std::string _point = _temp.makeFolder("-z odd, name");
};

TEST_F(NBUnmountingTest, WhereNoDiskIsIsInvalid)
{
    EXPECT_EQ(unmountDisk(_point).code(), EINVAL);
    EXPECT_EQ(detachDisk(_point).code(), EINVAL);
    EXPECT_EQ(unmountDisk(_point + "/missing").code(), EINVAL);
}

TEST_F(NBUnmountingTest, AFreeDiskGoes)
{
    NIMBREL_NEED_RAW_DISK();
    const RawDisk disk(_point);
    EXPECT_EQ(unmountDisk(_point).code(), 0);
    EXPECT_FALSE(mountAt(_point));
}

TEST_F(NBUnmountingTest, AHeldDiskIsBusyAndStays)
{
    NIMBREL_NEED_RAW_DISK();
    const RawDisk disk(_point);
    const UniqueFd held = disk.hold();
    EXPECT_EQ(unmountDisk(_point).code(), EBUSY);
    EXPECT_TRUE(mountAt(_point));
}

TEST_F(NBUnmountingTest, AHeldDiskCanBeDetached)
{
    NIMBREL_NEED_RAW_DISK();
    const RawDisk disk(_point);
    const UniqueFd held = disk.hold();
    EXPECT_EQ(detachDisk(_point).code(), 0);
    EXPECT_FALSE(mountAt(_point));
}

TEST_F(NBUnmountingTest, ADeadDiskGoesEitherWay)
{
    NIMBREL_NEED_RAW_DISK();
    for (NBDone (*way)(const std::string &) : {unmountDisk, detachDisk}) {
        RawDisk disk(_point);
        disk.die();
        EXPECT_EQ(way(_point).code(), 0);
        EXPECT_FALSE(mountAt(_point));
    }
}

TEST_F(NBUnmountingTest, OnlyTheTopOfAStackGoes)
{
    NIMBREL_NEED_OWN_MOUNTS();
    mountMemory(_point);
    const unsigned first = mountAt(_point)->id;
    mountMemory(_point);
    EXPECT_EQ(unmountDisk(_point).code(), 0);
    ASSERT_TRUE(mountAt(_point));
    EXPECT_EQ(mountAt(_point)->id, first);
    unmountAll(_point);
}

TEST_F(NBUnmountingTest, ALinkIsNotFollowed)
{
    NIMBREL_NEED_OWN_MOUNTS();
    mountMemory(_point);
    const std::string link = _temp / "link";
    ASSERT_EQ(::symlink(_point.c_str(), link.c_str()), 0);
    EXPECT_EQ(unmountDisk(link).code(), EINVAL);
    EXPECT_TRUE(mountAt(_point));
    unmountAll(_point);
}

TEST_F(NBUnmountingTest, AnOrdinaryUserGoesThroughTheHelper)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    NIMBREL_NEED_RAW_DISK();
    if (!findFusermount())
        GTEST_SKIP() << "there is no fusermount3";
    giveToNobody();
    EXPECT_EQ(asOrdinaryUser([&] { return userStory(_point); }),
              std::to_string(EBUSY) + " there, 0 gone");
}

TEST_F(NBUnmountingTest, IgnoredChildrenAreNoTrouble)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    NIMBREL_NEED_RAW_DISK();
    if (!findFusermount())
        GTEST_SKIP() << "there is no fusermount3";
    giveToNobody();
    const std::string answer = asOrdinaryUser([&] {
        ::signal(SIGCHLD, SIG_IGN);
        return userStory(_point);
    });
    EXPECT_EQ(answer, std::to_string(EBUSY) + " there, 0 gone");
}

TEST_F(NBUnmountingTest, ClosedStandardStreamsAreNoTrouble)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    NIMBREL_NEED_RAW_DISK();
    if (!findFusermount())
        GTEST_SKIP() << "there is no fusermount3";
    giveToNobody();
    const std::string answer = asOrdinaryUser([&] {
        for (const int standard : {0, 1, 2})
            ::close(standard);
        return userStory(_point);
    });
    EXPECT_EQ(answer, std::to_string(EBUSY) + " there, 0 gone");
}

TEST_F(NBUnmountingTest, SomeoneElsesDiskIsNotPermitted)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    NIMBREL_NEED_OWN_MOUNTS();
    NIMBREL_NEED_RAW_DISK();
    if (!findFusermount())
        GTEST_SKIP() << "there is no fusermount3";
    const RawDisk disk(_point); // root's
    EXPECT_EQ(asOrdinaryUser([&] { return std::to_string(unmountDisk(_point).code()); }),
              std::to_string(EPERM));
    EXPECT_EQ(asOrdinaryUser([&] { return std::to_string(detachDisk(_point).code()); }),
              std::to_string(EPERM));
    EXPECT_TRUE(mountAt(_point));
}

TEST_F(NBUnmountingTest, TheHelperIsFoundWithoutAPath)
{
    if (::access("/usr/bin/fusermount3", X_OK) != 0)
        GTEST_SKIP() << "there is no fusermount3";
    const std::string answer = inChild([]() -> std::string {
        ::unsetenv("PATH");
        return findFusermount().value_or("nowhere");
    });
    EXPECT_EQ(answer, "/usr/bin/fusermount3");
}

} // namespace
} // namespace nimbrel::test
