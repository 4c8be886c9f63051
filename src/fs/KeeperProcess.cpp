#include "fs/KeeperProcess.h"

#include "fs/MountTable.h"
#include "fs/Unmounting.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace nimbrel {

namespace {

constexpr int lineNumber = 3;

// Whatever the maker had open, a terminal, a pipe of its caller's, a disk's connection, must not
// stay open through this process.
void closeAllBut(int line)
{
    const int moved = ::fcntl(line, F_DUPFD, lineNumber + 1);
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nothing, standard);
    ::dup2(moved, lineNumber);
    ::close_range(lineNumber + 1, UINT_MAX, 0);
    ::fcntl(lineNumber, F_SETFD, FD_CLOEXEC);
}

void resetSignals()
{
    for (int number = 1; number < NSIG; ++number)
        ::signal(number, SIG_DFL);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU})
        ::signal(number, SIG_IGN);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

void becomeKeeper(int line)
{
    ::setsid();
    closeAllBut(line);
    resetSignals();
    ::prctl(PR_SET_NAME, "nimbrel-keeper");
    ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    // Its working folder must not keep a disk busy.
    (void)!::chdir("/");
}

// What is kept when the maker has ended.
std::vector<std::string> readRecords()
{
    std::vector<std::string> kept;
    std::array<char, PATH_MAX + 1> record{};
    for (;;) {
        const ssize_t got = ::recv(lineNumber, record.data(), record.size(), 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return kept;
        const std::string point(record.data() + 1, static_cast<std::size_t>(got) - 1);
        if (record.front() == keeperKeeps)
            kept.push_back(point);
        else if (const auto it = std::ranges::find(kept, point); it != kept.end())
            kept.erase(it);
    }
}

// True when there is nothing more to do for the disk.
bool settle(const std::string &point)
{
    if (!mountAt(point))
        return true;
    return isDeadMount(point) && static_cast<bool>(detachDisk(point));
}

// The line may close a moment before the disks' connections do.
void settleAll(std::vector<std::string> points)
{
    using Clock = std::chrono::steady_clock;
    constexpr auto longestPause = std::chrono::milliseconds(500);
    const auto end = Clock::now() + std::chrono::seconds(30);
    // The last one mounted may stand on an earlier one.
    std::ranges::reverse(points);
    for (auto pause = std::chrono::milliseconds(5); Clock::now() < end;
         pause = std::min(pause * 2, longestPause)) {
        std::erase_if(points, settle);
        if (points.empty())
            return;
        std::this_thread::sleep_for(pause);
    }
}

} // namespace

void runKeeper(int line)
{
    becomeKeeper(line);
    settleAll(readRecords());
    ::_exit(0);
}

} // namespace nimbrel
