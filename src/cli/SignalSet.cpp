#include "cli/SignalSet.h"

#include "cli/CommandError.h"
#include "cli/PrintableText.h"

#include <cerrno>
#include <sys/signalfd.h>
#include <unistd.h>

namespace nimbrel {

SignalSet::SignalSet(std::initializer_list<int> signals)
{
    sigset_t set;
    ::sigemptyset(&set);
    for (const int signal : signals)
        ::sigaddset(&set, signal);
    _descriptor.reset(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!_descriptor)
        throw CommandError(ExitStatus::Failed, "Signals can't be watched: " + errorText(errno));
    ::pthread_sigmask(SIG_BLOCK, &set, &_before);
}

SignalSet::~SignalSet()
{
    ::pthread_sigmask(SIG_SETMASK, &_before, nullptr);
}

int SignalSet::take() const
{
    signalfd_siginfo information{};
    if (::read(_descriptor.get(), &information, sizeof(information)) !=
        static_cast<ssize_t>(sizeof(information)))
        return 0;
    return static_cast<int>(information.ssi_signo);
}

} // namespace nimbrel
