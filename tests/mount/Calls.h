// System calls that end a test when they fail, and calls that must fail.
#pragma once

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace nimbrel::test {

// What the call returned. Throws std::runtime_error, with `what` and the cause, when it was -1.
template <class Result>
Result must(Result result, const std::string &what)
{
    if (result == Result(-1))
        throw std::runtime_error(what + ": " + std::strerror(errno));
    return result;
}

// The errno with which `call` fails; 0 when it doesn't.
template <class Call>
int errnoOf(Call call)
{
    errno = 0;
    return call() == -1 ? errno : 0;
}

} // namespace nimbrel::test
