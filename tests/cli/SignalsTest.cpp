#include "cli/Disk.h"
#include "support/Files.h"

#include <csignal>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

class SignalsTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_DISK(); }

    [[nodiscard]] std::unique_ptr<RunningProcess> serve() const
    {
        auto server = std::make_unique<RunningProcess>(
            std::vector<std::string>{bench.program(), "mount", "--foreground", folder, disk.path(),
                                     "--password-file", bench.passwordFile("p")},
            bench.runOptions());
        EXPECT_TRUE(eventually([&] { return server->log().find("Mounted ") != std::string::npos; }))
            << server->log();
        return server;
    }

    Workbench bench;
    Disk disk{bench};
    std::string folder = bench.encryptedFolder("p");
};

TEST_F(SignalsTest, EachOfThreeUnmounts)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const std::unique_ptr<RunningProcess> server = serve();
        writeFile(disk / "file", "text");
        server->signal(signal);
        EXPECT_EQ(server->wait(std::chrono::seconds(30)), 0) << server->log();
        EXPECT_FALSE(disk.isMounted());
    }
}

TEST_F(SignalsTest, TheForegroundEndsWithAnUnmount)
{
    const std::unique_ptr<RunningProcess> server = serve();
    EXPECT_EQ(disk.unmount().status, 0);
    EXPECT_EQ(server->wait(std::chrono::seconds(30)), 0) << server->log();
}

TEST_F(SignalsTest, TheDaemonUnmountsAtASignal)
{
    ASSERT_EQ(disk.mount(folder).status, 0);
    for (const pid_t process : disk.processes())
        ::kill(process, SIGTERM); // the keeper beside it doesn't mind
    EXPECT_TRUE(eventually([&] { return disk.processes().empty(); }));
    EXPECT_FALSE(disk.isMounted());
}

TEST_F(SignalsTest, ABusyDiskStaysAtTheFirstAndGoesAtTheSecond)
{
    const std::unique_ptr<RunningProcess> server = serve();
    writeFile(disk / "open.txt", "text");
    const RunningProcess holder({"sh", "-c", "exec sleep 600 <\"$1\"", "sh", disk / "open.txt"});
    ASSERT_TRUE(eventually(
        [&] { return readFile("/proc/" + std::to_string(holder.id()) + "/comm") == "sleep\n"; }));
    server->signal(SIGTERM);
    const std::string named = "sleep (" + std::to_string(holder.id()) + ")";
    EXPECT_TRUE(eventually([&] { return server->log().find(named) != std::string::npos; }))
        << server->log();
    EXPECT_EQ(readFile(disk / "open.txt"), "text");
    server->signal(SIGTERM);
    EXPECT_EQ(server->wait(std::chrono::seconds(30)), 0) << server->log();
    EXPECT_FALSE(disk.isMounted());
}

TEST_F(SignalsTest, ADiskThatIsFreeAgainGoesInPeaceAtTheSecond)
{
    const std::unique_ptr<RunningProcess> server = serve();
    writeFile(disk / "open.txt", "text");
    {
        const RunningProcess holder(
            {"sh", "-c", "exec sleep 600 <\"$1\"", "sh", disk / "open.txt"});
        ASSERT_TRUE(eventually([&] {
            return readFile("/proc/" + std::to_string(holder.id()) + "/comm") == "sleep\n";
        }));
        server->signal(SIGTERM);
        ASSERT_TRUE(
            eventually([&] { return server->log().find("stays mounted") != std::string::npos; }));
    }
    server->signal(SIGTERM);
    EXPECT_EQ(server->wait(std::chrono::seconds(30)), 0) << server->log();
    EXPECT_EQ(server->log().find("taken away"), std::string::npos) << server->log();
}

} // namespace

} // namespace nimbrel::test
