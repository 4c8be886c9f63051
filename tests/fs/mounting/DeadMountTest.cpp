#include "OwnMounts.h"
#include "RawDisk.h"
#include "fs/DeadMountProbe.h"
#include "fs/MountTable.h"
#include "support/TempFolder.h"

#include <chrono>
#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <string>

namespace nimbrel::test {
namespace {

TEST(NBDeadMountTest, AFolderWithoutAMountIsNotDead)
{
    const TempFolder temp;
    EXPECT_FALSE(isDeadMount(temp.path()));
    EXPECT_FALSE(isDeadMount(temp / "missing"));
}

TEST(NBDeadMountTest, AMountThatIsNotFuseIsNotAsked)
{
    EXPECT_FALSE(isDeadMount("/proc"));
}

TEST(NBDeadMountTest, ADiskWithoutItsServerIsDead)
{
    NIMBREL_NEED_RAW_DISK();
    const TempFolder temp;
    RawDisk disk(temp.path());
    disk.die();
    EXPECT_TRUE(isDeadMount(temp.path()));
}

TEST(NBDeadMountTest, ADiskThatHangsCountsAsAliveAndHangsNobody)
{
    NIMBREL_NEED_RAW_DISK();
    const TempFolder temp;
    const RawDisk disk(temp.path());
    EXPECT_FALSE(hasLostItsProcess(temp.path(), std::chrono::seconds(1)));
}

TEST(NBDeadMountTest, AQuestionUnderWayLearnsOfTheEnd)
{
    NIMBREL_NEED_RAW_DISK();
    const TempFolder temp;
    RawDisk disk(temp.path());
    std::future<bool> answer = std::async(std::launch::async, [&] {
        return hasLostItsProcess(temp.path(), std::chrono::seconds(60));
    });
    // Whether the question is under way by then or comes after, it must end in the same answer.
    (void)answer.wait_for(std::chrono::milliseconds(200));
    disk.die();
    EXPECT_TRUE(answer.get());
}

TEST(NBDeadMountTest, AParentThatIgnoresItsChildrenStillLearnsIt)
{
    NIMBREL_NEED_RAW_DISK();
    const TempFolder temp;
    RawDisk disk(temp.path());
    disk.die();
    const std::string answer = inChild([&]() -> std::string {
        ::signal(SIGCHLD, SIG_IGN);
        return isDeadMount(temp.path()) ? "dead" : "alive";
    });
    EXPECT_EQ(answer, "dead");
}

} // namespace
} // namespace nimbrel::test
