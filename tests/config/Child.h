#pragma once

#include <functional>
#include <sys/types.h>

namespace nimbrel::test {

// A copy of this process that runs `work` and ends; for what would harm the test itself (limits,
// another user, sudden death). Killed at its end.
class Child final
{
public:
    // `work` gives the exit status.
    explicit Child(const std::function<int()> &work);
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    void kill() const;
    // The exit status; 128 + signal when a signal ended it.
    [[nodiscard]] int wait();

private:
    pid_t _process;
};

// Becomes a user without rights; does nothing when there are none to lose. False on failure.
[[nodiscard]] bool becomeOrdinaryUser();

} // namespace nimbrel::test
