#include "cli/Daemon.h"

#include "cli/CommandError.h"
#include "cli/PrintableText.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel {

namespace {

[[noreturn]] void fail()
{
    throw CommandError(ExitStatus::Failed, "Can't go to the background: " + errorText(errno),
                       "Try --foreground");
}

// True for the byte of a daemon that is ready, false at the end of one that has gone.
bool readReadiness(int descriptor)
{
    char byte = 0;
    ssize_t got = 0;
    do {
        got = ::read(descriptor, &byte, 1);
    } while (got < 0 && errno == EINTR);
    return got == 1;
}

// A status of the daemon is one of ours, since it ends the way this program does.
ExitStatus endLike(pid_t child)
{
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return ExitStatus::Failed;
    if (WIFEXITED(status))
        return static_cast<ExitStatus>(WEXITSTATUS(status));
    ::signal(WTERMSIG(status), SIG_DFL);
    ::raise(WTERMSIG(status));
    return ExitStatus::Failed; // not every signal ends the one who raises it
}

} // namespace

Daemon::Daemon()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        fail();
    UniqueFd readiness(ends[0]);
    UniqueFd announcement(ends[1]);
    // What is buffered here would be written twice.
    std::fflush(nullptr);
    _child = ::fork();
    if (_child < 0)
        fail();
    _pipe = isStarter() ? std::move(readiness) : std::move(announcement);
}

ExitStatus Daemon::awaitReadiness()
{
    // The terminal's ^C is for the daemon, which restores the echo first; this part follows it.
    ::signal(SIGINT, SIG_IGN);
    ::signal(SIGQUIT, SIG_IGN);
    return readReadiness(_pipe.get()) ? ExitStatus::Done : endLike(_child);
}

void Daemon::leaveSession()
{
    if (::setsid() < 0 || ::chdir("/") != 0)
        fail();
}

void Daemon::becomeReady()
{
    const UniqueFd nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (!nothing)
        fail();
    std::fflush(nullptr);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::dup2(nothing.get(), stream) < 0)
            fail();
    const char byte = 0;
    // A starter that was killed meanwhile reads nothing, and the disk serves all the same.
    (void)!::write(_pipe.get(), &byte, 1);
    _pipe.reset();
}

} // namespace nimbrel
