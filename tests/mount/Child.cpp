#include "mount/Child.h"

#include "mount/Calls.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace nimbrel::test {

Child::Child(const std::function<int()> &work) : _process(must(::fork(), "fork"))
{
    if (_process != 0)
        return;
    int status = 99;
    try {
        status = work();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "in the second process: %s\n", error.what());
    }
    ::_exit(status); // the test's own clean-up belongs to the first process
}

Child::~Child()
{
    if (_process < 0)
        return;
    ::kill(_process, SIGKILL);
    (void)::waitpid(_process, nullptr, 0);
}

int Child::wait()
{
    int waited = 0;
    must(::waitpid(std::exchange(_process, -1), &waited, 0), "waitpid");
    return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

} // namespace nimbrel::test
