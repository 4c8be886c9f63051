// Programs run to their end, and programs left running.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

struct RunOptions
{
    std::string input = {};                    // what the program reads from standard input
    std::string folder = {};                   // its working directory; empty: this one's
    std::vector<std::string> environment = {}; // "NAME=value", added to this one's
    std::optional<uid_t> user = {};            // run as (needs root), with its account's group
    std::chrono::seconds limit{120};           // killed after that
    // Killed by the kernel when the thread that started it ends, however that ends.
    bool endsWithThread = false;
};

struct RunResult
{
    int status = -1; // exit status; 128 + signal when a signal ended it; -1 when it never started
    std::string output; // standard output
    std::string error;  // standard error
};

[[nodiscard]] RunResult run(const std::vector<std::string> &command,
                            const RunOptions &options = {});

// `sh -c script`, for tests that are shell work.
[[nodiscard]] RunResult shell(const std::string &script, const RunOptions &options = {});

// A program that goes on running; killed (SIGKILL) and waited for at its end.
class RunningProcess final
{
public:
    RunningProcess(const std::vector<std::string> &command, const RunOptions &options = {});
    ~RunningProcess();
    RunningProcess(const RunningProcess &) = delete;
    RunningProcess &operator=(const RunningProcess &) = delete;

    [[nodiscard]] pid_t id() const noexcept { return _process; }
    void signal(int number) const;
    // Its exit status as in RunResult; nothing when it still runs after `limit`.
    [[nodiscard]] std::optional<int> wait(std::chrono::seconds limit);
    // What it has written to standard output and error so far.
    [[nodiscard]] std::string log() const;

private:
    pid_t _process = -1;
    int _log = -1;
    std::optional<int> _status;
};

// True as soon as `condition` is, false when it isn't within `limit`. Machines are slow at times:
// limits are for what never comes, not for what comes late.
template <class Condition>
[[nodiscard]] bool eventually(Condition condition,
                              std::chrono::milliseconds limit = std::chrono::seconds(30));

void sleepBriefly();

template <class Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        sleepBriefly();
    }
    return true;
}

} // namespace nimbrel::test
