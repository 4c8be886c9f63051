#include "fs/MountKeeper.h"

#include "OwnMounts.h"
#include "RawDisk.h"
#include "fs/MountTable.h"
#include "support/Files.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace nimbrel::test {
namespace {

// True when `pipe`'s other end is closed everywhere within the limit.
bool endsEventually(int pipe)
{
    pollfd end = {pipe, 0, 0};
    return eventually([&] { return ::poll(&end, 1, 0) == 1 && (end.revents & POLLHUP) != 0; });
}

bool isGone(pid_t process)
{
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

// A process that makes a keeper, does `work` and waits to be killed.
class Maker final
{
public:
    explicit Maker(const std::function<void(MountKeeper &)> &work)
    {
        // The keeper becomes this process's child when the maker dies: its end can be seen.
        ::prctl(PR_SET_CHILD_SUBREAPER, 1);
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        _process = ::fork();
        if (_process == 0)
            live(ends[1], work);
        ::close(ends[1]);
        EXPECT_EQ(::read(ends[0], &_keeper, sizeof _keeper), static_cast<ssize_t>(sizeof _keeper));
        ::close(ends[0]);
    }
    ~Maker() { kill(); }
    Maker(const Maker &) = delete;
    Maker &operator=(const Maker &) = delete;

    void kill()
    {
        if (_process > 0) {
            ::kill(_process, SIGKILL);
            ::waitpid(_process, nullptr, 0);
        }
        _process = -1;
    }
    // Its exit status; -1 when it doesn't end or was killed.
    [[nodiscard]] int keepersEnd() const
    {
        int status = 0;
        const bool ended =
            eventually([&] { return ::waitpid(_keeper, &status, WNOHANG) == _keeper; });
        return ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    [[nodiscard]] pid_t keeper() const { return _keeper; }

private:
    [[noreturn]] static void live(int ready, const std::function<void(MountKeeper &)> &work)
    {
        {
            MountKeeper keeper;
            work(keeper);
            const pid_t child = keeper.process();
            (void)!::write(ready, &child, sizeof child);
            for (;;)
                ::pause();
        }
    }

    pid_t _process = -1;
    pid_t _keeper = -1;
};

class NBMountKeeperTest : public testing::Test
{
protected:
    TempFolder _temp;
    std::string _point = _temp.makeFolder("Safe");
};

TEST_F(NBMountKeeperTest, RunsBesideItsMakerAndEndsWithIt)
{
    pid_t child = -1;
    {
        MountKeeper keeper;
        child = keeper.process();
        ASSERT_GT(child, 0);
        EXPECT_TRUE(keeper.isRunning());
        keeper.keep(_point);
        keeper.forget(_point);
    }
    EXPECT_TRUE(isGone(child));
}

TEST_F(NBMountKeeperTest, CarriesItsOwnName)
{
    const MountKeeper keeper;
    const std::string comm = "/proc/" + std::to_string(keeper.process()) + "/comm";
    EXPECT_TRUE(eventually([&] { return readFile(comm) == "nimbrel-keeper\n"; }));
}

TEST_F(NBMountKeeperTest, AKilledMakersDiskIsDetached)
{
    NIMBREL_NEED_RAW_DISK();
    Maker maker([&](MountKeeper &keeper) {
        new RawDisk(_point); // never destroyed: its maker is killed
        keeper.keep(_point);
    });
    ASSERT_TRUE(mountAt(_point));
    maker.kill();
    EXPECT_EQ(maker.keepersEnd(), 0);
    EXPECT_FALSE(mountAt(_point));
}

// A thread that waits for a disk of its own process keeps the process, and with it the disk's
// connection, for ever: everyone who comes near the disk would hang, too.
TEST_F(NBMountKeeperTest, AKilledMakerThatWaitsForItsOwnDiskIsFreed)
{
    NIMBREL_NEED_RAW_DISK();
    if (::geteuid() != 0 && ::access("/sys/fs/fuse/connections/.", X_OK) != 0)
        GTEST_SKIP() << "connections can't be aborted: fusectl isn't mounted";
    // Also one that dies before its keeper is ready, or in the moment of the kernel's notice: each
    // of many tries meets another moment.
    for (int tries = 0; tries < 25; ++tries) {
        Maker maker([&](MountKeeper &keeper) {
            auto *const disk = new RawDisk(_point);
            keeper.keep(_point);
            std::thread([this] { (void)::access((_point + "/name").c_str(), F_OK); }).detach();
            disk->leaveOneQuestionOpen();
        });
        maker.kill();
        ASSERT_EQ(maker.keepersEnd(), 0);
        ASSERT_FALSE(mountAt(_point));
    }
}

TEST_F(NBMountKeeperTest, SeveralDisksAreAllDetached)
{
    NIMBREL_NEED_RAW_DISK();
    const std::string second = _temp.makeFolder("Other one");
    Maker maker([&](MountKeeper &keeper) {
        for (const std::string &point : {_point, second}) {
            new RawDisk(point);
            keeper.keep(point);
        }
    });
    ASSERT_TRUE(mountAt(_point) && mountAt(second));
    maker.kill();
    EXPECT_EQ(maker.keepersEnd(), 0);
    EXPECT_FALSE(mountAt(_point));
    EXPECT_FALSE(mountAt(second));
}

TEST_F(NBMountKeeperTest, AnOrdinaryUsersDiskIsDetachedToo)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    NIMBREL_NEED_OWN_MOUNTS(); // as root, who becomes that user; else the tests above do it
    NIMBREL_NEED_RAW_DISK();
    ASSERT_EQ(::chown(_point.c_str(), nobody, nobody), 0);
    const std::string answer = asOrdinaryUser([&]() -> std::string {
        if (const std::string why = whyNoRawDisk(); !why.empty())
            return "0 gone";
        Maker maker([&](MountKeeper &keeper) {
            new RawDisk(_point);
            keeper.keep(_point);
        });
        if (!mountAt(_point))
            return "never mounted";
        maker.kill();
        const int status = maker.keepersEnd();
        return std::to_string(status) + (mountAt(_point) ? " there" : " gone");
    });
    EXPECT_EQ(answer, "0 gone");
}

TEST_F(NBMountKeeperTest, AForgottenDiskIsLeftAlone)
{
    NIMBREL_NEED_RAW_DISK();
    const RawDisk disk(_point); // this process's, and alive
    Maker maker([&](MountKeeper &keeper) {
        keeper.keep(_point);
        keeper.forget(_point);
    });
    maker.kill();
    EXPECT_EQ(maker.keepersEnd(), 0);
    EXPECT_TRUE(mountAt(_point));
}

TEST_F(NBMountKeeperTest, ADiskThatIsNotMountedIsNothingToDo)
{
    Maker maker([&](MountKeeper &keeper) { keeper.keep(_point); });
    maker.kill();
    EXPECT_EQ(maker.keepersEnd(), 0);
}

TEST_F(NBMountKeeperTest, TheTerminalsSignalsDoNotEndIt)
{
    NIMBREL_NEED_RAW_DISK();
    Maker maker([&](MountKeeper &keeper) {
        new RawDisk(_point);
        keeper.keep(_point);
    });
    // A setup that isn't over yet would take the signals as its maker does.
    const std::string comm = "/proc/" + std::to_string(maker.keeper()) + "/comm";
    ASSERT_TRUE(eventually([&] { return readFile(comm) == "nimbrel-keeper\n"; }));
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE})
        ::kill(maker.keeper(), number);
    maker.kill();
    EXPECT_EQ(maker.keepersEnd(), 0);
    EXPECT_FALSE(mountAt(_point));
}

TEST_F(NBMountKeeperTest, HoldsNothingOpenOfItsMakers)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0); // inherited by whoever doesn't close it
    const MountKeeper keeper;
    ASSERT_TRUE(keeper.isRunning());
    ::close(ends[1]);
    EXPECT_TRUE(endsEventually(ends[0]));
    ::close(ends[0]);
}

TEST_F(NBMountKeeperTest, ItsWorkingFolderKeepsNoDiskBusy)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may look into a process that isn't dumpable";
    const MountKeeper keeper;
    const std::string link = "/proc/" + std::to_string(keeper.process()) + "/cwd";
    EXPECT_TRUE(eventually([&] {
        std::array<char, 4096> text{};
        return ::readlink(link.c_str(), text.data(), text.size()) == 1 && text[0] == '/';
    }));
}

TEST_F(NBMountKeeperTest, AKilledKeeperIsNoticedAndKillsNobody)
{
    MountKeeper keeper;
    ::kill(keeper.process(), SIGKILL);
    EXPECT_TRUE(eventually([&] { return !keeper.isRunning(); }));
    keeper.keep(_point); // would raise SIGPIPE on a pipe
    keeper.forget(_point);
    EXPECT_FALSE(keeper.isRunning());
}

TEST_F(NBMountKeeperTest, IgnoredChildrenAreNoTrouble)
{
    const std::string answer = inChild([]() -> std::string {
        ::signal(SIGCHLD, SIG_IGN);
        pid_t child = -1;
        {
            const MountKeeper keeper;
            child = keeper.process();
        }
        return isGone(child) ? "gone" : "there";
    });
    EXPECT_EQ(answer, "gone");
}

TEST_F(NBMountKeeperTest, TwoKeepersDoNotHoldEachOther)
{
    MountKeeper second;
    {
        const MountKeeper first;
        EXPECT_TRUE(first.isRunning());
    }
    MountKeeper third;
    EXPECT_TRUE(second.isRunning());
    EXPECT_TRUE(third.isRunning());
}

} // namespace
} // namespace nimbrel::test
