#include "fs/KeeperProcess.h"

#include "config/UniqueFd.h"
#include "fs/MountTable.h"
#include "fs/Unmounting.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <string>
#include <sys/prctl.h>
#include <sys/signalfd.h>
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

// proc(5), stat: true for a process whose first thread has ended, and for one that isn't there.
bool hasEnded(pid_t process)
{
    std::ifstream stream(fmt::format("/proc/{}/stat", process));
    std::string stat;
    std::getline(stream, stat);
    const std::size_t name = stat.rfind(')');
    return name == std::string::npos || stat.compare(name, 3, ") Z") == 0;
}

// The threads of a killed process end at once, unless they wait for something that nobody will do.
bool isStuck(pid_t process)
{
    std::error_code error;
    const std::filesystem::directory_iterator threads(fmt::format("/proc/{}/task", process), error);
    return !error && hasEnded(process) && std::distance(begin(threads), end(threads)) > 1;
}

// The kernel's word that the maker's first thread has ended: the line closes with the last one,
// which may never come. A maker that had ended before has closed the line.
UniqueFd noticeOfDeath()
{
    sigset_t notice;
    sigemptyset(&notice);
    sigaddset(&notice, SIGUSR1);
    ::sigprocmask(SIG_BLOCK, &notice, nullptr);
    ::prctl(PR_SET_PDEATHSIG, SIGUSR1);
    return UniqueFd(::signalfd(-1, &notice, SFD_CLOEXEC));
}

// True when there is a record or the line is closed; false when the maker has died and neither is.
bool awaitLine(const UniqueFd &death, pid_t maker)
{
    for (;;) {
        std::array<pollfd, 2> sources{{{lineNumber, POLLIN, 0}, {death.get(), POLLIN, 0}}};
        if (::poll(sources.data(), sources.size(), -1) < 0)
            continue;
        if (sources[0].revents != 0)
            return true;
        if (hasEnded(maker))
            return false;
        signalfd_siginfo ofAnotherThread{};
        (void)!::read(death.get(), &ofAnotherThread, sizeof ofAnotherThread);
    }
}

// What is kept when the maker has ended.
std::vector<std::string> readRecords(const UniqueFd &death, pid_t maker)
{
    std::vector<std::string> kept;
    std::array<char, PATH_MAX + 1> record{};
    while (awaitLine(death, maker)) {
        const ssize_t got = ::recv(lineNumber, record.data(), record.size(), 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        const std::string point(record.data() + 1, static_cast<std::size_t>(got) - 1);
        if (record.front() == keeperKeeps)
            kept.push_back(point);
        else if (const auto it = std::ranges::find(kept, point); it != kept.end())
            kept.erase(it);
    }
    return kept;
}

// True when there is nothing more to do for the disk.
bool settle(const std::string &point)
{
    if (!mountAt(point))
        return true;
    return isDeadMount(point) && static_cast<bool>(detachDisk(point));
}

// The line may close a moment before the disks' connections do.
void settleAll(std::vector<std::string> points, pid_t maker)
{
    using Clock = std::chrono::steady_clock;
    constexpr auto longestPause = std::chrono::milliseconds(500);
    const auto end = Clock::now() + std::chrono::seconds(30);
    // The last one mounted may stand on an earlier one.
    std::ranges::reverse(points);
    for (auto pause = std::chrono::milliseconds(5); Clock::now() < end;
         pause = std::min(pause * 2, longestPause)) {
        if (isStuck(maker)) // asking its disks would wait, too
            std::ranges::for_each(points, [](const std::string &point) { (void)abortDisk(point); });
        std::erase_if(points, settle);
        if (points.empty())
            return;
        std::this_thread::sleep_for(pause);
    }
}

} // namespace

void runKeeper(int line, pid_t maker)
{
    becomeKeeper(line);
    settleAll(readRecords(noticeOfDeath(), maker), maker);
    ::_exit(0);
}

} // namespace nimbrel
