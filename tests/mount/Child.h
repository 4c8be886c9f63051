#pragma once

#include <functional>
#include <sys/types.h>

namespace nimbrel::test {

// A second process at work: a copy of this one that runs `work` and exits with what it returns.
// An exception in it is printed and exits with 99.
class Child final
{
public:
    explicit Child(const std::function<int()> &work);
    ~Child(); // kills it where it was not waited for
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    // As RunResult::status.
    [[nodiscard]] int wait();

private:
    pid_t _process = -1;
};

} // namespace nimbrel::test
