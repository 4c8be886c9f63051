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

// Watches over the maker's life. The line closes with its last thread, which may never end, so the
// kernel's notice of its first thread's end counts as well.
//
// That notice may be missed: the maker may end before it is asked for. It comes some moments before
// the maker is seen to have ended, and may be another thread's, whose end is none. So at first, and
// after each notice, the maker is looked at for a while.
class MakersLife final
{
public:
    explicit MakersLife(pid_t maker) : _maker(maker)
    {
        sigset_t notice;
        sigemptyset(&notice);
        sigaddset(&notice, SIGUSR1);
        ::sigprocmask(SIG_BLOCK, &notice, nullptr);
        ::prctl(PR_SET_PDEATHSIG, SIGUSR1);
        _notices = UniqueFd(::signalfd(-1, &notice, SFD_CLOEXEC));
        lookForAWhile();
    }

    // True when there is a record or the line is closed; false when the maker has died and neither
    // is.
    [[nodiscard]] bool awaitLine()
    {
        for (;;) {
            constexpr int pause = 20; // ms
            const int patience = Clock::now() < _lookingUntil ? pause : -1;
            std::array<pollfd, 2> sources{{{lineNumber, POLLIN, 0}, {_notices.get(), POLLIN, 0}}};
            if (::poll(sources.data(), sources.size(), patience) < 0)
                continue;
            if (sources[0].revents != 0)
                return true;
            if (hasEnded(_maker))
                return false;
            if (sources[1].revents != 0)
                takeNotice();
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    void lookForAWhile() { _lookingUntil = Clock::now() + std::chrono::seconds(10); }
    void takeNotice()
    {
        signalfd_siginfo notice{};
        (void)!::read(_notices.get(), &notice, sizeof notice);
        lookForAWhile();
    }

    pid_t _maker;
    UniqueFd _notices;
    Clock::time_point _lookingUntil;
};

// What is kept when the maker has ended.
std::vector<std::string> readRecords(pid_t maker)
{
    MakersLife life(maker);
    std::vector<std::string> kept;
    std::array<char, PATH_MAX + 1> record{};
    while (life.awaitLine()) {
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
    settleAll(readRecords(maker), maker);
    ::_exit(0);
}

} // namespace nimbrel
