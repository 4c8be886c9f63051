#include "app/ApplicationBus.h"

#include "support/PrivateDesktop.h"
#include "volume/VolumeDesk.h"

#include <gtest/gtest.h>

#include <QDBusConnection>

#include <future>

namespace nimbrel::test {

namespace {

using runningApplication::HandOver;
using Kind = ApplicationRequest::Kind;

// As another start of the program does it, on a thread of its own.
HandOver handedOver(const ApplicationRequest &request)
{
    auto result =
        std::async(std::launch::async, [&] { return runningApplication::handOver(request); });
    EXPECT_TRUE(eventLoopUntil(
        [&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    return result.get();
}

class ApplicationBusTest : public ::testing::Test
{
protected:
    ApplicationBusTest()
    {
        QObject::connect(&bus, &ApplicationBus::requested, &bus,
                         [this](const ApplicationRequest &request) { requests.append(request); });
    }

    PrivateDesktop desktop{{.bus = true, .keyring = false}};
    ApplicationBus bus;
    QList<ApplicationRequest> requests;
};

} // namespace

// Qt keeps one connection to the session bus a process, so there is one test.
TEST_F(ApplicationBusTest, WhatASecondStartHandsOverArrives)
{
    EXPECT_EQ(handedOver({Kind::Activate, {}}), HandOver::NobodyThere);
    ASSERT_EQ(bus.takeName(), ApplicationBus::Ownership::Ours);

    EXPECT_EQ(handedOver({Kind::Activate, {}}), HandOver::Done);
    const QStringList folders{QStringLiteral("file:///tmp/a%20b"), QStringLiteral("file:///c")};
    EXPECT_EQ(handedOver({Kind::Open, folders}), HandOver::Done);
    const QStringList files{QStringLiteral("file:///tmp/x")};
    EXPECT_EQ(handedOver({Kind::Reveal, files}), HandOver::Done);

    ASSERT_EQ(requests.size(), 3);
    EXPECT_EQ(requests[0].kind, Kind::Activate);
    EXPECT_EQ(requests[1].kind, Kind::Open);
    EXPECT_EQ(requests[1].urls, folders);
    EXPECT_EQ(requests[2].kind, Kind::Reveal);
    EXPECT_EQ(requests[2].urls, files);
}

TEST(ApplicationBusWithoutBusTest, TheProgramRunsAllTheSame)
{
    EXPECT_EQ(handedOver({Kind::Activate, {}}), HandOver::NobodyThere);
}

} // namespace nimbrel::test
