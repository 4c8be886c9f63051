// The volumes' session program, in a process of its own.
#pragma once

#include "support/PrivateDesktop.h"
#include "support/Process.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nimbrel::test {

// One command of the session: its words.
using DriverCommand = std::vector<std::string>;

[[nodiscard]] std::unique_ptr<RunningProcess>
startDriver(const PrivateDesktop &desktop, const std::vector<DriverCommand> &commands,
            std::optional<uid_t> user = {});

// Runs the commands to their end; what the program said. Throws std::runtime_error where it fails.
[[nodiscard]] std::string runDriver(const PrivateDesktop &desktop,
                                    const std::vector<DriverCommand> &commands,
                                    std::optional<uid_t> user = {});

// How many lines of `log` are `line`.
[[nodiscard]] long countLines(const std::string &log, const std::string &line);

} // namespace nimbrel::test
