// What holds for the whole process: signals, and one application a user.
#include "app/InstanceLock.h"
#include "app/TerminationSignals.h"
#include "support/PrivateDesktop.h"
#include "volume/VolumeDesk.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <csignal>

namespace nimbrel::test {

TEST(TerminationSignalsTest, EachOfTheThreeArrivesInTheEventLoop)
{
    int times = 0;
    const TerminationSignals heard([&] { ++times; });
    int expected = 0;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        ASSERT_EQ(::raise(number), 0);
        ++expected;
        EXPECT_TRUE(eventLoopUntil([&] { return times == expected; })) << number;
    }
}

// A program that is started from here must end on SIGTERM as any other.
TEST(TerminationSignalsTest, ProgramsThatAreStartedHaveTheirSignalsBack)
{
    const TerminationSignals heard([] {});
    QProcess program;
    program.start(QStringLiteral("sleep"), {QStringLiteral("60")});
    ASSERT_TRUE(program.waitForStarted());
    program.terminate();
    EXPECT_TRUE(program.waitForFinished(10000));
    EXPECT_EQ(program.exitStatus(), QProcess::CrashExit);
}

TEST(InstanceLockTest, ASecondOneIsToldWhoHasIt)
{
    const PrivateDesktop desktop({.bus = false, .keyring = false});
    InstanceLock first;
    InstanceLock second;
    EXPECT_FALSE(first.take());
    const std::optional<QString> trouble = second.take();
    ASSERT_TRUE(trouble);
    EXPECT_TRUE(trouble->contains(QString::number(::getpid()))) << qUtf8Printable(*trouble);
}

TEST(InstanceLockTest, ItIsFreeAgainAfterItsHolder)
{
    const PrivateDesktop desktop({.bus = false, .keyring = false});
    {
        InstanceLock first;
        EXPECT_FALSE(first.take());
    }
    InstanceLock second;
    EXPECT_FALSE(second.take());
}

TEST(InstanceLockTest, AFolderThatCannotBeWrittenKeepsNobodyFromWorking)
{
    const PrivateDesktop desktop({.bus = false, .keyring = false});
    qputenv("XDG_RUNTIME_DIR", "/proc/nowhere");
    InstanceLock lock;
    EXPECT_FALSE(lock.take());
}

} // namespace nimbrel::test
