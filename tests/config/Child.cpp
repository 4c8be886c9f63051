#include "config/Child.h"

#include <cerrno>
#include <csignal>
#include <grp.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

// There in a build that counts executed lines: _exit would lose what the child did.
extern "C" void __gcov_dump() __attribute__((weak)); // NOLINT(bugprone-reserved-identifier)

namespace nimbrel::test {

Child::Child(const std::function<int()> &work) : _process(::fork())
{
    if (_process < 0)
        throw std::runtime_error("no child process");
    if (_process > 0)
        return;
    int status = 125;
    try {
        status = work();
    } catch (...) {
        status = 124;
    }
    if (__gcov_dump != nullptr)
        __gcov_dump();
    ::_exit(status);
}

Child::~Child()
{
    if (_process < 0)
        return;
    kill();
    static_cast<void>(wait());
}

void Child::kill() const
{
    ::kill(_process, SIGKILL);
}

int Child::wait()
{
    int waited = 0;
    pid_t got = 0;
    do
        got = ::waitpid(_process, &waited, 0);
    while (got < 0 && errno == EINTR);
    _process = -1;
    return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

bool becomeOrdinaryUser()
{
    constexpr uid_t nobody = 65534;
    return ::geteuid() != 0 ||
           (::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(nobody) == 0);
}

} // namespace nimbrel::test
