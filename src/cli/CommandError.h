#pragma once

#include "cli/ExitStatus.h"

#include <stdexcept>
#include <string_view>

namespace nimbrel {

// Ends a command: one line for the user, of the cause and the next step, and the exit status.
class CommandError final : public std::runtime_error
{
public:
    // `nextStep` may be empty; either gets a full stop where it has no end of its own.
    CommandError(ExitStatus status, std::string_view cause, std::string_view nextStep = {});

    [[nodiscard]] ExitStatus status() const noexcept { return _status; }

private:
    ExitStatus _status;
};

} // namespace nimbrel
