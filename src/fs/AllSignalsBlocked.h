#pragma once

#include <csignal>

namespace nimbrel {

// Around the making of a thread, which inherits the mask: the process's signals are for its other
// threads.
class AllSignalsBlocked final
{
public:
    AllSignalsBlocked() noexcept
    {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &_before);
    }
    ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked &) = delete;
    AllSignalsBlocked &operator=(const AllSignalsBlocked &) = delete;

private:
    sigset_t _before{};
};

} // namespace nimbrel
