#pragma once

#include "config/UniqueFd.h"

#include <functional>
#include <memory>

class QSocketNotifier;

namespace nimbrel {

// SIGTERM, SIGINT and SIGHUP, brought into the main thread's event loop. As handlers they are gone
// in the programs that this one starts; a blocked signal would stay blocked there. One at a time.
class TerminationSignals final
{
public:
    explicit TerminationSignals(std::function<void()> handler);
    ~TerminationSignals(); // the signals act as before
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;

private:
    UniqueFd _reading;
    UniqueFd _writing;
    std::unique_ptr<QSocketNotifier> _notifier;
};

} // namespace nimbrel
