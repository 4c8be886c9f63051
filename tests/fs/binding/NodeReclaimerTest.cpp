#include "fs/NodeReclaimer.h"

#include <csignal>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nimbrel::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Stands for the kernel: notes what it is to drop, and may hold the caller up.
class Kernel
{
public:
    [[nodiscard]] NodeReclaimer::Drop drop()
    {
        return [this](std::uint64_t folder, const std::string &name) {
            std::unique_lock lock(_mutex);
            _dropped.push_back({folder, name});
            _thread = std::this_thread::get_id();
            ::pthread_sigmask(SIG_SETMASK, nullptr, &_signals);
            _changed.notify_all();
            _changed.wait(lock, [this] { return !_isBusy; });
            return -ENOENT;
        };
    }
    void setBusy(bool isBusy)
    {
        const std::lock_guard lock(_mutex);
        _isBusy = isBusy;
        _changed.notify_all();
    }
    // What was dropped once there are `count` of them, or after some seconds.
    [[nodiscard]] std::vector<NodePlace> dropped(std::size_t count)
    {
        std::unique_lock lock(_mutex);
        _changed.wait_for(lock, std::chrono::seconds(20), [&] { return _dropped.size() >= count; });
        return _dropped;
    }
    [[nodiscard]] std::thread::id thread()
    {
        const std::lock_guard lock(_mutex);
        return _thread;
    }
    [[nodiscard]] bool blocks(int signal)
    {
        const std::lock_guard lock(_mutex);
        return sigismember(&_signals, signal) == 1;
    }

private:
    std::mutex _mutex;
    std::condition_variable _changed;
    std::vector<NodePlace> _dropped;
    std::thread::id _thread;
    sigset_t _signals{};
    bool _isBusy = false;
};

std::vector<NodePlace> places(std::size_t count)
{
    std::vector<NodePlace> all;
    for (std::size_t i = 0; i < count; ++i)
        all.push_back({1, std::to_string(i)});
    return all;
}

} // namespace

TEST(NodeReclaimerTest, WhatIsOfferedIsDroppedInTurn)
{
    Kernel kernel;
    NodeReclaimer reclaimer(kernel.drop());
    reclaimer.offer({{1, "a"}, {5, "b"}});
    reclaimer.offer({{7, "c"}});
    EXPECT_THAT(kernel.dropped(3),
                ElementsAre(NodePlace{1, "a"}, NodePlace{5, "b"}, NodePlace{7, "c"}));
}

TEST(NodeReclaimerTest, AThreadOfItsOwnDropsAndGetsNoSignals)
{
    Kernel kernel;
    NodeReclaimer reclaimer(kernel.drop());
    reclaimer.offer(places(1));
    ASSERT_EQ(kernel.dropped(1).size(), 1U);
    EXPECT_NE(kernel.thread(), std::this_thread::get_id());
    EXPECT_TRUE(kernel.blocks(SIGTERM));
    EXPECT_TRUE(kernel.blocks(SIGCHLD));
    sigset_t own;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &own);
    EXPECT_EQ(sigismember(&own, SIGTERM), 0);
}

TEST(NodeReclaimerTest, AnOfferDoesNotWaitForADrop)
{
    Kernel kernel;
    NodeReclaimer reclaimer(kernel.drop());
    kernel.setBusy(true);
    reclaimer.offer(places(1));
    ASSERT_EQ(kernel.dropped(1).size(), 1U);
    reclaimer.offer(places(2)); // comes back although the first drop has not
    EXPECT_EQ(reclaimer.room(), NodeReclaimer::mostWaiting - 2);
    kernel.setBusy(false);
    EXPECT_EQ(kernel.dropped(3).size(), 3U);
}

TEST(NodeReclaimerTest, WhatThereIsNoRoomForIsLeftOut)
{
    Kernel kernel;
    NodeReclaimer reclaimer(kernel.drop());
    EXPECT_EQ(reclaimer.room(), NodeReclaimer::mostWaiting);
    kernel.setBusy(true);
    reclaimer.offer(places(1));
    ASSERT_EQ(kernel.dropped(1).size(), 1U);
    reclaimer.offer(places(NodeReclaimer::mostWaiting + 10));
    EXPECT_EQ(reclaimer.room(), 0U);
    reclaimer.offer(places(1));
    kernel.setBusy(false);
    EXPECT_EQ(kernel.dropped(NodeReclaimer::mostWaiting + 1).size(),
              NodeReclaimer::mostWaiting + 1);
    reclaimer.stop();
    EXPECT_EQ(kernel.dropped(0).size(), NodeReclaimer::mostWaiting + 1);
}

TEST(NodeReclaimerTest, StoppingForgetsWhatWaitsAndComesBackWithTheDropUnderWay)
{
    Kernel kernel;
    NodeReclaimer reclaimer(kernel.drop());
    kernel.setBusy(true);
    reclaimer.offer(places(100));
    ASSERT_EQ(kernel.dropped(1).size(), 1U);
    std::future<void> stopped = std::async(std::launch::async, [&] { reclaimer.stop(); });
    EXPECT_EQ(stopped.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    kernel.setBusy(false);
    EXPECT_EQ(stopped.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_EQ(kernel.dropped(0).size(), 1U);
}

TEST(NodeReclaimerTest, AfterTheStopOffersAreLeftOut)
{
    Kernel kernel;
    NodeReclaimer reclaimer(kernel.drop());
    reclaimer.stop();
    EXPECT_EQ(reclaimer.room(), 0U);
    reclaimer.offer(places(3));
    reclaimer.stop();
    EXPECT_THAT(kernel.dropped(0), IsEmpty());
}

TEST(NodeReclaimerTest, OneThatWasNeverOfferedAnythingJustGoes)
{
    Kernel kernel;
    {
        NodeReclaimer reclaimer(kernel.drop());
        reclaimer.offer({});
    }
    EXPECT_THAT(kernel.dropped(0), IsEmpty());
}

} // namespace nimbrel::test
