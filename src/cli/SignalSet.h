#pragma once

#include "config/UniqueFd.h"

#include <csignal>
#include <initializer_list>

namespace nimbrel {

// Signals that, while this lives, are read instead of acting. They are blocked in this thread and
// in those that it starts meanwhile.
class SignalSet final
{
public:
    SignalSet(std::initializer_list<int> signals);
    ~SignalSet();
    SignalSet(const SignalSet &) = delete;
    SignalSet &operator=(const SignalSet &) = delete;

    // Readable when a signal waits; for poll(2).
    [[nodiscard]] int descriptor() const noexcept { return _descriptor.get(); }
    // The next signal's number, or 0 when none waits.
    [[nodiscard]] int take() const;

private:
    sigset_t _before{};
    UniqueFd _descriptor;
};

} // namespace nimbrel
