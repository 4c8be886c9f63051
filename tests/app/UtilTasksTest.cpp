#include "app/Util.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QProcess>

#include <ctime>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class UtilTasksTest : public testing::Test
{
protected:
    ~UtilTasksTest() override
    {
        _task.kill();
        _task.waitForFinished(-1);
    }

    void start(const char *script)
    {
        _task.setProcessChannelMode(QProcess::MergedChannels);
        _task.start(u"/bin/sh"_qs, {u"-c"_qs, QString::fromUtf8(script)});
    }
    std::string output() { return Util::getTaskOutput(_task, _task).toStdString(); }
    std::string outputUntil(const char *text)
    {
        return Util::getTaskOutput(_task, QString::fromUtf8(text), _task).toStdString();
    }

    QProcess _task;
};

TEST_F(UtilTasksTest, OneReadIsTrimmedAndUtf8)
{
    QByteArray bytes(" \n\t \u00c4pfel\nBirnen \r\n");
    QBuffer handle(&bytes);
    handle.open(QIODevice::ReadOnly);
    EXPECT_EQ(Util::getTaskOutput(handle), u"\u00c4pfel\nBirnen"_qs);
    EXPECT_EQ(Util::getTaskOutput(handle), QString()); // nothing more
    EXPECT_FALSE(Util::getTaskOutput(handle).isNull());
}

TEST_F(UtilTasksTest, TheFirstTextThatIsNotEmptyComesBack)
{
    start("printf ' \\n'; sleep 0.2; echo first; read wait");
    EXPECT_EQ(output(), "first");
    EXPECT_EQ(_task.state(), QProcess::Running);
}

TEST_F(UtilTasksTest, BothOutputsAreOne)
{
    start("echo error >&2; read wait");
    EXPECT_EQ(output(), "error");
}

TEST_F(UtilTasksTest, ATaskThatHasEndedIsStillRead)
{
    start("echo last");
    _task.waitForFinished(-1);
    EXPECT_EQ(output(), "last");
    EXPECT_EQ(output(), "");
}

TEST_F(UtilTasksTest, WhatComesWithTheEndIsRead)
{
    start("sleep 0.1; echo goodbye");
    EXPECT_EQ(output(), "goodbye");
}

TEST_F(UtilTasksTest, ATaskThatSaysNothingGivesAnEmptyText)
{
    start("exit 3");
    EXPECT_EQ(output(), "");
    EXPECT_EQ(_task.state(), QProcess::NotRunning);
}

TEST_F(UtilTasksTest, AProgramThatIsMissingGivesAnEmptyText)
{
    _task.start(u"/nowhere/at/all"_qs, {});
    EXPECT_EQ(output(), "");
}

TEST_F(UtilTasksTest, WaitingTakesNoTimeOfTheProcessor)
{
    start("exec >/dev/null 2>&1; sleep 1"); // its output is closed long before its end
    const std::clock_t before = std::clock();
    EXPECT_EQ(output(), "");
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 2);
    EXPECT_EQ(_task.state(), QProcess::NotRunning);
}

TEST_F(UtilTasksTest, AnotherHandleThanTheTaskIsRead)
{
    QByteArray bytes("beside it");
    QBuffer handle(&bytes);
    handle.open(QIODevice::ReadOnly);
    start("sleep 0.2");
    EXPECT_EQ(Util::getTaskOutput(_task, handle), u"beside it"_qs);
    EXPECT_EQ(Util::getTaskOutput(_task, handle), QString()); // until the task ends
    EXPECT_EQ(_task.state(), QProcess::NotRunning);
}

TEST_F(UtilTasksTest, CollectingEndsWithTheText)
{
    start("echo one; sleep 0.2; echo 'two: ready'; read wait; echo three");
    EXPECT_EQ(outputUntil("ready"), "onetwo: ready"); // each piece is trimmed
    EXPECT_EQ(_task.state(), QProcess::Running);
}

TEST_F(UtilTasksTest, TheTextMayStandInTwoPieces)
{
    start("printf rea; sleep 0.2; printf dy; read wait");
    EXPECT_EQ(outputUntil("ready"), "ready");
}

TEST_F(UtilTasksTest, CollectingEndsWithTheTask)
{
    start("echo one; sleep 0.2; echo two");
    EXPECT_EQ(outputUntil("never"), "onetwo");
    EXPECT_EQ(_task.state(), QProcess::NotRunning);
}

TEST_F(UtilTasksTest, NothingIsCollectedFromATaskThatHasEnded)
{
    start("echo ready");
    _task.waitForFinished(-1);
    EXPECT_EQ(outputUntil("ready"), "");
}

} // namespace
} // namespace nimbrel::test
