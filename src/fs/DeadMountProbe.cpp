#include "fs/DeadMountProbe.h"

#include "config/UniqueFd.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel {

namespace {

// Nothing of this process may stay open in one that may hang for long: other disks' connections
// would outlive their server. The answer's end moves to 0 first.
void keepOnly(int descriptor)
{
    ::dup2(descriptor, 0);
    ::close_range(1, UINT_MAX, 0);
}

// Runs in a copy of a process that may have threads: async-signal-safe calls only.
[[noreturn]] void ask(const char *path, int answer, unsigned limit)
{
    keepOnly(answer);
    ::signal(SIGALRM, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::alarm(limit);
    struct statfs ignored = {};
    const int code = ::statfs(path, &ignored) == 0 ? 0 : errno;
    // A question that was under way when the connection broke ends with ECONNABORTED.
    const char dead = code == ENOTCONN || code == ECONNABORTED ? 'd' : 'a';
    ::_exit(::write(0, &dead, 1) == 1 ? 0 : 1);
}

// The asker's parent ends at once, so that the system reaps the asker whenever it ends.
void startAsker(const char *path, int answer, unsigned limit)
{
    const pid_t starter = ::fork();
    if (starter == 0) {
        if (::fork() == 0)
            ask(path, answer, limit);
        ::_exit(0);
    }
    if (starter > 0)
        while (::waitpid(starter, nullptr, 0) < 0 && errno == EINTR) {
        }
}

bool waitReadable(int descriptor, std::chrono::steady_clock::time_point end)
{
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        pollfd waiting = {descriptor, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, static_cast<int>(left.count()));
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            return false;
    }
}

} // namespace

bool hasLostItsProcess(const std::string &path, std::chrono::seconds limit)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return false;
    const UniqueFd read(ends[0]);
    UniqueFd write(ends[1]);
    const auto end = std::chrono::steady_clock::now() + limit;
    startAsker(path.c_str(), write.get(), static_cast<unsigned>(limit.count()) + 1);
    write.reset();
    char answer = 'a';
    return waitReadable(read.get(), end) && ::read(read.get(), &answer, 1) == 1 && answer == 'd';
}

} // namespace nimbrel
