#include "app/TerminationSignals.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace nimbrel {

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

std::atomic<int> pipeForSignals = -1;
std::array<struct sigaction, handledSignals.size()> actionsBefore;

// Nothing but what signal-safety(7) allows.
void noteSignal(int /*number*/)
{
    const int before = errno;
    const char byte = 0;
    (void)!::write(pipeForSignals, &byte, 1); // a full pipe has told already
    errno = before;
}

void drain(int descriptor)
{
    std::array<char, 64> bytes{};
    while (::read(descriptor, bytes.data(), bytes.size()) > 0)
        ;
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> handler)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe2");
    _reading = UniqueFd(ends[0]);
    _writing = UniqueFd(ends[1]);
    pipeForSignals = _writing.get();
    _notifier = std::make_unique<QSocketNotifier>(_reading.get(), QSocketNotifier::Read);
    QObject::connect(_notifier.get(), &QSocketNotifier::activated, _notifier.get(),
                     [descriptor = _reading.get(), handler = std::move(handler)] {
                         drain(descriptor);
                         handler();
                     });
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < handledSignals.size(); ++i)
        ::sigaction(handledSignals[i], &action, &actionsBefore[i]);
}

TerminationSignals::~TerminationSignals()
{
    for (std::size_t i = 0; i < handledSignals.size(); ++i)
        ::sigaction(handledSignals[i], &actionsBefore[i], nullptr);
    pipeForSignals = -1;
}

} // namespace nimbrel
